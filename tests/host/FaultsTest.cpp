// SPDX-License-Identifier: Apache-2.0
// Every system call and every allocation of what the windows stand on goes wrong in turn: the work is done all the same
// or is said not to be done, no half file is left, nothing is called good or bad that is not, and lists stay whole.
#include "tests/host/NewKey.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/tsSystemFault.h"

#include "assertionReporting/arAssertionReport.h"
#include "assertionReporting/arAssertionReportText.h"
#include "host/documents/hoDocumentList.h"
#include "host/documents/hoRecentDocuments.h"
#include "host/documents/hoSettings.h"
#include "host/keys/hoNewKeyPair.h"
#include "host/signing/hoSigningJob.h"
#include "host/signing/hoTextEncryption.h"
#include "platform/baseTools/gtWipe.h"
#include "tests/support/failingAllocation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <set>
#include <system_error>
#include <thread>

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{
// The rights that files have had when they were given others, as long as a test wants to know.
std::atomic<bool> areRightsWanted{false};
std::atomic<unsigned int> rightsBefore{0};
}  // namespace

// In front of the system's.
extern "C" int fchmod(int descriptor, mode_t rights)
{
    struct stat status = {};
    if (areRightsWanted && ::fstat(descriptor, &status) == 0)
    {
        rightsBefore |= status.st_mode & 0777U;
    }
    return static_cast<int>(syscall(SYS_fchmod, descriptor, rights));
}

namespace
{
// By its form one of a key of 1024 bits.
const std::string anOldSignature = "00000078" + std::string(256, '0') + "\n";

struct Fault
{
    const char* _call;
    int _error;
};

const std::vector<Fault> faults = {
    {"open", EACCES}, {"open", EMFILE},  {"open", EINTR},  {"read", EIO},        {"read", EINTR}, {"read", 0},
    {"write", EIO},   {"write", ENOSPC}, {"write", EINTR}, {"write", 0},         {"fsync", EIO},  {"fsync", ENOSPC},
    {"close", EIO},   {"close", EINTR},  {"link", EPERM},  {"link", EIO},        {"rename", EIO}, {"rename", EACCES},
    {"stat", EIO},    {"stat", EACCES},  {"fstat", EIO},   {"realpath", EACCES},
};

// How often each call goes wrong where something is made that is not there, or made anew.
const std::map<std::string, int> callsOfSigning = {{"close", 10}, {"fstat", 10}, {"fsync", 4},    {"link", 2},
                                                   {"open", 10},  {"read", 8},   {"realpath", 4}, {"rename", 0},
                                                   {"stat", 10},  {"write", 2}};
const std::map<std::string, int> callsOfSigningAnew = {{"close", 14}, {"fstat", 14}, {"fsync", 4},    {"link", 0},
                                                       {"open", 14},  {"read", 16},  {"realpath", 6}, {"rename", 2},
                                                       {"stat", 10},  {"write", 2}};
const std::map<std::string, int> callsOfSettings = {{"close", 2}, {"fstat", 0}, {"fsync", 2},    {"link", 0},
                                                    {"open", 2},  {"read", 0},  {"realpath", 1}, {"rename", 1},
                                                    {"stat", 1},  {"write", 1}};
const std::map<std::string, int> callsOfAKey = {{"close", 2}, {"fstat", 0}, {"fsync", 2},    {"link", 1},
                                                {"open", 2},  {"read", 0},  {"realpath", 0}, {"rename", 0},
                                                {"stat", 1},  {"write", 1}};
const std::map<std::string, int> callsOfAKeyAnew = {{"close", 2}, {"fstat", 0}, {"fsync", 2},    {"link", 0},
                                                    {"open", 2},  {"read", 0},  {"realpath", 1}, {"rename", 1},
                                                    {"stat", 1},  {"write", 1}};

// Whether a sticky folder keeps a file from being replaced is not asked for root: twice for each of two documents.
std::map<std::string, int> ofThisUser(std::map<std::string, int> calls)
{
    if (geteuid() != 0)
    {
        calls["stat"] += 4;
    }
    return calls;
}

// What is in the files of a folder, by their names.
std::map<std::string, std::string> contentsOf(const TemporaryFolder& folder)
{
    std::map<std::string, std::string> contents;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
    {
        contents[entry.path().filename()] = folder.read(entry.path().filename());
    }
    return contents;
}

// Does something with the first, the second and every further call of the kind going wrong; gives how many there were.
int failEach(const std::string& folder, const Fault& fault, const std::function<void()>& prepare,
             const std::function<void()>& work, const std::function<void()>& check)
{
    for (int number = 1;; ++number)
    {
        SCOPED_TRACE(std::string(fault._call) + " " + std::to_string(number) + ": " + std::to_string(fault._error));
        prepare();
        bool hasHappened = false;
        {
            const tsSystemFault broken(folder, fault._call, number, fault._error);
            work();
            hasHappened = broken.hasHappened();
        }
        if (!hasHappened)
        {
            return number - 1;
        }
        check();
        if (testing::Test::HasFailure())
        {
            return number;
        }
    }
}

// The same with the allocations of all threads.
int failEachAllocation(const std::function<void()>& prepare, const std::function<void()>& work,
                       const std::function<void(bool isThrown)>& check)
{
    for (long number = 0;; ++number)
    {
        SCOPED_TRACE("allocation " + std::to_string(number));
        prepare();
        bool isThrown = false;
        bool hasHappened = false;
        {
            const OneFailingAllocation broken(number);
            try
            {
                work();
            }
            catch (const std::bad_alloc&)
            {
                isThrown = true;
            }
            hasHappened = broken.hasFailed();
        }
        if (!hasHappened)
        {
            return static_cast<int>(number);
        }
        check(isThrown);
        if (testing::Test::HasFailure())
        {
            return static_cast<int>(number);
        }
    }
}

class WindowEngineFaults : public testing::Test
{
protected:
    void SetUp() override
    {
        _key = newKey(1024);
        _otherKey = newKey(1024);
        // More than is read at once, and one that is read in one piece.
        _folder.write("large", std::string(1200000, 'l'));
        _folder.write("small", "s");
        open();
        work(hoSigningJob::Kind::Sign, _key);
        ASSERT_EQ(_outcomes.size(), 2U);
        _signed = contentsOf(_folder);
        ASSERT_EQ(_signed.size(), 4U);
    }

    void open()
    {
        hoDocumentList list;
        list.open(_folder.path("large").c_str());
        list.open(_folder.path("small").c_str());
        _documents = {list[0], list[1]};
    }

    void work(hoSigningJob::Kind kind, const std::shared_ptr<const hoKey>& pKey)
    {
        _outcomes.clear();
        // On one thread, so that the calls come in the same order each time.
        hoKeyRing keys;
        keys._private._pKey = pKey;
        hoSigningJob worker(kind, _documents, keys, true, nullptr, hoSignatureLines::Both, 1);
        while (!worker.isFinished())
        {
            std::this_thread::yield();
        }
        _outcomes = worker.takeOutcomes();
    }

    // Each document's outcome is there, and tells what has become of it.
    void checkSigning(const std::string& before)
    {
        ASSERT_EQ(_outcomes.size(), 2U);
        std::map<std::string, std::string> contents = contentsOf(_folder);
        for (const hoSigningOutcome& outcome : _outcomes)
        {
            const std::string name = std::filesystem::path(outcome._path.asCharArray()).filename().string() + ".sig";
            const std::string now = contents[name];
            const bool isNew = now != before && isGoodSignature(outcome._path, now);
            EXPECT_TRUE(now == before || isNew) << name << ": " << now;
            const bool isDone = outcome._verdict._state == hoDocumentState::SignedByMe;
            EXPECT_TRUE(!isDone || isNew);
            EXPECT_TRUE(isDone || outcome._signing._problem != hoSigningProblem::None ||
                        outcome._signatureFile._problem != hoSignatureFileProblem::None);
            contents.erase(name);
        }
        contents.erase("large");
        contents.erase("small");
        EXPECT_THAT(contents, testing::IsEmpty());
    }

    bool isGoodSignature(const gtString& path, const std::string& signature) const
    {
        return hoTestFile(path, {_key.get()}, signature, nullptr)._verdict == hoVerdict::Good;
    }

    void resetSignatures(const std::string& contents)
    {
        for (const char* pName : {"large.sig", "small.sig"})
        {
            std::filesystem::remove(_folder.path(pName));
            if (!contents.empty())
            {
                _folder.write(pName, contents);
            }
        }
    }

    const TemporaryFolder _folder;
    std::shared_ptr<const hoKey> _key;
    std::shared_ptr<const hoKey> _otherKey;
    std::vector<hoDocument> _documents;
    std::vector<hoSigningOutcome> _outcomes;
    std::map<std::string, std::string> _signed;
};
}  // namespace

TEST_F(WindowEngineFaults, LeaveAWholeSignatureOrTheOneBefore)
{
    // Two documents, in two pieces and in one.
    for (const std::string& before : {std::string(), anOldSignature})
    {
        std::map<std::string, int> met;
        for (const Fault& fault : faults)
        {
            met[fault._call] = failEach(
                _folder.path(), fault, [&] { resetSignatures(before); },
                [this] { work(hoSigningJob::Kind::Sign, _key); }, [&] { checkSigning(before); });
        }
        // Fewer would mean that calls are not met any more, and that nothing is tried in their place.
        EXPECT_EQ(met, ofThisUser(before.empty() ? callsOfSigning : callsOfSigningAnew));
    }
}

TEST_F(WindowEngineFaults, MakeNothingGoodAndNothingBad)
{
    for (const Fault& fault : faults)
    {
        failEach(
            _folder.path(), fault, [] {}, [this] { work(hoSigningJob::Kind::Test, _key); },
            [this]
            {
                ASSERT_EQ(_outcomes.size(), 2U);
                for (const hoSigningOutcome& outcome : _outcomes)
                {
                    EXPECT_NE(outcome._verdict._state, hoDocumentState::Bad);
                    // Whoever cannot read says so.
                    EXPECT_TRUE(outcome._verdict._state == hoDocumentState::SignedByMe ||
                                outcome._verdict._state == hoDocumentState::Changed ||
                                outcome._signing._problem != hoSigningProblem::None ||
                                outcome._signatureFile._problem != hoSignatureFileProblem::None);
                }
            });
        failEach(
            _folder.path(), fault, [] {}, [this] { work(hoSigningJob::Kind::Test, _otherKey); },
            [this]
            {
                for (const hoSigningOutcome& outcome : _outcomes)
                {
                    EXPECT_NE(outcome._verdict._state, hoDocumentState::SignedByMe);
                    EXPECT_NE(outcome._verdict._state, hoDocumentState::Good);
                }
            });
    }
}

TEST_F(WindowEngineFaults, AReadErrorIsNotTheEndOfTheFile)
{
    // The second read is within the large document, at the end of a piece: what was read so far is no smaller file.
    for (int number = 1; number <= 4; ++number)
    {
        resetSignatures("");
        const tsSystemFault broken(_folder.path(), "read", number, EIO);
        work(hoSigningJob::Kind::Sign, _key);
        ASSERT_TRUE(broken.hasHappened());
        const bool isLarge = _outcomes[0]._signing._problem != hoSigningProblem::None;
        const hoSigningOutcome& outcome = _outcomes[isLarge ? 0 : 1];
        EXPECT_EQ(outcome._signing._problem, hoSigningProblem::FileCannotBeRead);
        EXPECT_EQ(outcome._signing._systemError, EIO);
        EXPECT_EQ(outcome._verdict._state, hoDocumentState::CannotBeRead);
    }
}

TEST_F(WindowEngineFaults, DocumentsThatChangeWhileTheyAreSignedAreNotSigned)
{
    const std::string path = _folder.path("large");
    const std::vector<std::function<void()>> changes = {
        [&] { std::filesystem::resize_file(path, 1000); },
        [&] { std::filesystem::resize_file(path, 0); },
        [&] { std::ofstream(path, std::ios::app) << "more"; },
        [&] { _folder.write("large", std::string(1200000, 'x')); },
        [&]
        {
            _folder.write("other", std::string(1200000, 'l'));
            std::filesystem::rename(_folder.path("other"), path);
        },
        [&] { std::filesystem::remove(path); },
    };
    for (const std::function<void()>& change : changes)
    {
        _folder.write("large", std::string(1200000, 'l'));
        open();
        resetSignatures(anOldSignature);
        // The first two read the signature that is there.
        const tsSystemFault meanwhile(_folder.path(), "read", 4, change);
        work(hoSigningJob::Kind::Sign, _key);
        ASSERT_TRUE(meanwhile.hasHappened());
        ASSERT_EQ(_outcomes.size(), 2U);
        EXPECT_EQ(_outcomes[0]._signing._problem, hoSigningProblem::FileChanged);
        EXPECT_NE(_outcomes[0]._verdict._state, hoDocumentState::SignedByMe);
        EXPECT_EQ(_folder.read("large.sig"), anOldSignature);
        EXPECT_EQ(_outcomes[1]._verdict._state, hoDocumentState::SignedByMe);
    }
}

// Within the second that the file was written in, as large as before: no time stamp tells, unless the reading has
// waited.
TEST_F(WindowEngineFaults, DocumentsThatChangeWithinTheirTimeStampAreNotSigned)
{
    for (const bool isWholeSeconds : {false, true})
    {
        std::unique_ptr<tsWholeSecondStamps> pStamps;
        if (isWholeSeconds)
        {
            pStamps = std::make_unique<tsWholeSecondStamps>();
        }
        for (int round = 0; round < (isWholeSeconds ? 2 : 50); ++round)
        {
            open();
            resetSignatures("");
            _folder.write("large", std::string(1200000, 'l'));
            const auto change = [this]
            {
                std::fstream file(_folder.path("large"), std::ios::in | std::ios::out | std::ios::binary);
                file.seekp(700000);
                file << "other bytes";
            };
            const tsSystemFault meanwhile(_folder.path(), "read", 2, change);
            work(hoSigningJob::Kind::Sign, _key);
            ASSERT_TRUE(meanwhile.hasHappened());
            ASSERT_EQ(_outcomes.size(), 2U);
            EXPECT_EQ(_outcomes[0]._signing._problem, hoSigningProblem::FileChanged) << round;
        }
    }
}

TEST_F(WindowEngineFaults, SignaturesThatAreExchangedWhileTheyAreTestedAreChanged)
{
    gtString anothers;
    ASSERT_TRUE(hoSignFile(_folder.path("large"), *_otherKey, hoSignatureLines::Both, nullptr, anothers).isOk());
    const std::vector<std::function<void()>> changes = {
        [&] { _folder.write("large.sig", anothers.asStdString()); },
        [&] { std::ofstream(_folder.path("large.sig"), std::ios::app) << "more"; },
        [&]
        {
            _folder.write("another", _signed["large.sig"]);
            std::filesystem::rename(_folder.path("another"), _folder.path("large.sig"));
        },
        [&] { std::filesystem::remove(_folder.path("large.sig")); },
    };
    for (const std::function<void()>& change : changes)
    {
        _folder.write("large.sig", _signed["large.sig"]);
        // By then the signature is read, and the document is not.
        const tsSystemFault meanwhile(_folder.path(), "read", 4, change);
        work(hoSigningJob::Kind::Test, _key);
        ASSERT_TRUE(meanwhile.hasHappened());
        ASSERT_EQ(_outcomes.size(), 2U);
        EXPECT_TRUE(_outcomes[0]._signing.isOk());
        EXPECT_EQ(_outcomes[0]._verdict._state, hoDocumentState::Changed);
        EXPECT_EQ(_outcomes[1]._verdict._state, hoDocumentState::SignedByMe);
    }
}

// Nobody has looked whose it is, and it is not overwritten, although signatures may be.
TEST_F(WindowEngineFaults, WhatComesAfterTheCheckIsNotReplaced)
{
    resetSignatures("");
    const tsSystemFault meanwhile(_folder.path(), "fsync", 1, [this] { _folder.write("large.sig", "precious"); });
    work(hoSigningJob::Kind::Sign, _key);
    ASSERT_TRUE(meanwhile.hasHappened());
    ASSERT_EQ(_outcomes.size(), 2U);
    EXPECT_EQ(_outcomes[0]._signatureFile._problem, hoSignatureFileProblem::Exists);
    EXPECT_EQ(_folder.read("large.sig"), "precious");
    EXPECT_EQ(_outcomes[1]._verdict._state, hoDocumentState::SignedByMe);
}

TEST_F(WindowEngineFaults, MissingMemoryLeavesAWholeSignatureOrTheOneBefore)
{
    bool isThrown = false;
    const int amount =
        failEachAllocation([&] { resetSignatures(anOldSignature); }, [this] { work(hoSigningJob::Kind::Sign, _key); },
                           [&](bool isOut)
                           {
                               isThrown = isThrown || isOut;
                               if (!isOut)
                               {
                                   checkSigning(anOldSignature);
                               }
                           });
    EXPECT_TRUE(isThrown);  // before there is a thread, and when the outcomes are taken
    EXPECT_GT(amount, 50);
}

TEST_F(WindowEngineFaults, MissingMemoryMakesNothingGoodAndNothingBad)
{
    failEachAllocation([] {}, [this] { work(hoSigningJob::Kind::Test, _key); },
                       [&](bool)
                       {
                           for (const hoSigningOutcome& outcome : _outcomes)
                           {
                               EXPECT_NE(outcome._verdict._state, hoDocumentState::Bad);
                           }
                       });
    failEachAllocation([] {}, [this] { work(hoSigningJob::Kind::Test, _otherKey); },
                       [&](bool)
                       {
                           for (const hoSigningOutcome& outcome : _outcomes)
                           {
                               EXPECT_NE(outcome._verdict._state, hoDocumentState::SignedByMe);
                           }
                       });
}

TEST_F(WindowEngineFaults, WithoutAThreadWorkIsNotBegun)
{
    {
        const tsSystemFault broken(_folder.path(), "thread", 1, EAGAIN);
        EXPECT_THROW(work(hoSigningJob::Kind::Sign, _key), std::system_error);
    }
    {
        const tsSystemFault broken(_folder.path(), "thread", 1, EAGAIN);
        EXPECT_THROW(hoNewKeyPair pair(512), std::system_error);
    }
    EXPECT_TRUE(contentsOf(_folder) == _signed);
}

TEST_F(WindowEngineFaults, FewerThreadsDoAsWell)
{
    resetSignatures("");
    hoKeyRing keys;
    keys._private._pKey = _key;
    const tsSystemFault broken(_folder.path(), "thread", 2, EAGAIN);
    hoSigningJob worker(hoSigningJob::Kind::Sign, _documents, keys, false, nullptr, hoSignatureLines::Both, 2);
    EXPECT_TRUE(broken.hasHappened());
    while (!worker.isFinished())
    {
        std::this_thread::yield();
    }
    const std::vector<hoSigningOutcome> outcomes = worker.takeOutcomes();
    ASSERT_EQ(outcomes.size(), 2U);
    for (const hoSigningOutcome& outcome : outcomes)
    {
        EXPECT_EQ(outcome._verdict._state, hoDocumentState::SignedByMe);
    }
}

TEST_F(WindowEngineFaults, MissingMemoryLeavesTheListAsItWas)
{
    hoDocumentList list;
    std::vector<std::string> before;
    const auto paths = [&]
    {
        std::vector<std::string> found;
        for (std::size_t i = 0; i < list.size(); ++i)
        {
            found.emplace_back(list[i]._path.asCharArray());
        }
        return found;
    };
    const auto check = [&](bool isThrown)
    {
        EXPECT_TRUE(isThrown);
        EXPECT_EQ(paths(), before);
        for (std::size_t i = 0; i < list.size(); ++i)
        {
            EXPECT_EQ(list.positionOf(list[i]._path), i);
        }
    };
    const auto prepare = [&]
    {
        list.closeAll();
        for (const char* pName : {"b", "a", "c"})
        {
            list.open(_folder.write(pName, "x").c_str());
        }
        before = paths();
    };
    const gtString another(_folder.path("small").c_str());
    EXPECT_GT(failEachAllocation(
                  prepare, [&] { list.open(another); }, check),
              5);
    EXPECT_GT(failEachAllocation(
                  prepare, [&] { list.sort(hoDocumentList::Column::Path, true); }, check),
              5);
    EXPECT_GT(failEachAllocation(
                  prepare, [&] { list.close({0}); }, check),
              2);
    EXPECT_GT(failEachAllocation(
                  prepare, [&] { list.refresh(1); }, check),
              0);

    // What another key has found must not outlive it.
    failEachAllocation(
        [&]
        {
            prepare();
            for (const std::string& path : before)
            {
                hoDocumentVerdict verdict;
                verdict._state = hoDocumentState::Good;
                osReadFileFacts(path.c_str(), verdict._file);
                list.setVerdict(path.c_str(), verdict);
            }
            ASSERT_EQ(list[2]._verdict._state, hoDocumentState::Good);
        },
        [&] { list.forgetStates(); },
        [&](bool)
        {
            for (std::size_t i = 0; i < list.size(); ++i)
            {
                EXPECT_TRUE(list[i]._verdict._state == hoDocumentState::NotTested ||
                            list[i]._verdict._state == hoDocumentState::NotSigned);
            }
        });
}

TEST_F(WindowEngineFaults, MissingMemoryLeavesTheReportAsItWas)
{
    std::unique_ptr<arAssertionReport> pReport;
    const std::string text(100, 't');
    const auto prepare = [&]
    {
        pReport = std::make_unique<arAssertionReport>();
        pReport->record("f", "/a.c", 1, "m", 1, 1);
    };
    const auto check = [&](bool isThrown)
    {
        EXPECT_TRUE(isThrown);
        EXPECT_EQ(pReport->amountOfFailures(), 1U);
        ASSERT_EQ(pReport->rows().size(), 1U);
        EXPECT_EQ(pReport->rows()[0]._count, 1U);
        EXPECT_EQ(pReport->rows()[0]._message, "m");
    };
    EXPECT_GT(failEachAllocation(
                  prepare, [&] { pReport->record(text.c_str(), text.c_str(), 2, text.c_str(), 1, 2); }, check),
              3);
    EXPECT_GT(failEachAllocation(
                  prepare, [&] { pReport->record(text.c_str(), "/a.c", 1, text.c_str(), 1, 2); }, check),
              1);
    prepare();
    const std::vector<arAssertionRow> rows = pReport->rows();
    EXPECT_GT(failEachAllocation([] {}, [&] { static_cast<void>(arAssertionReportLines(rows, 1)); },
                                 [](bool isThrown) { EXPECT_TRUE(isThrown); }),
              3);
}

// Memory that is given back holds no plain text, wherever the work on a short text has ended.
TEST_F(WindowEngineFaults, MissingMemoryLeavesNoPlainTextBehind)
{
    static constexpr std::string_view secret = "the gate is open after midnight";
    static int timesGivenBack;
    struct Watch
    {
        Watch()
        {
            timesGivenBack = 0;
            watchWhatIsGivenBack(
                [](const void* pMemory, std::size_t size)
                { timesGivenBack += ::memmem(pMemory, size, secret.data(), secret.size()) != nullptr ? 1 : 0; });
        }
        ~Watch() { watchWhatIsGivenBack(nullptr); }
        Watch(const Watch&) = delete;
        Watch& operator=(const Watch&) = delete;
    };
    gtString text(secret);
    gtString cipherText;
    ASSERT_TRUE(hoEncryptText(_key->publicKey(), text, cipherText).isOk());
    {
        const Watch watch;
        hoTextResult result;
        const auto check = [&](bool isThrown)
        {
            EXPECT_FALSE(isThrown);
            EXPECT_EQ(result._problem, hoTextProblem::NoMemory);
            EXPECT_EQ(timesGivenBack, 0);
        };
        EXPECT_GT(failEachAllocation([] {},
                                     [&]
                                     {
                                         gtString encrypted;
                                         result = hoEncryptText(_key->publicKey(), text, encrypted);
                                     },
                                     check),
                  1);
        EXPECT_GT(failEachAllocation([] {},
                                     [&]
                                     {
                                         gtString decrypted;
                                         result = hoDecryptText(_key->privateKey(), cipherText, decrypted);
                                         gtWipe(decrypted);
                                     },
                                     check),
                  2);
        EXPECT_EQ(timesGivenBack, 0);
        // What is not wiped is seen.
        static_cast<void>(std::make_unique<std::string>(secret));
        EXPECT_EQ(timesGivenBack, 1);
    }
    gtWipe(text);
}

TEST_F(WindowEngineFaults, LeaveNoMemoryBehind)
{
    const long before = amountOfLiveAllocations();
    {
        hoRecentDocuments recent;
        recent.add("/a/path/that/is/longer/than/short/strings/are");
        failEachAllocation([] {}, [&] { recent.add("/another/path/that/is/longer/than/short/strings"); },
                           [&](bool) { EXPECT_LE(recent.paths().size(), 2U); });
    }
    EXPECT_LE(amountOfLiveAllocations(), before + 8);  // the framework's own
}

TEST_F(WindowEngineFaults, LeaveWholeSettings)
{
    const std::string path = _folder.path("settings");
    hoSettings before;
    before.setText("name", "before");
    hoSettings after;
    after.setText("name", std::string(5000, 'a'));
    std::map<std::string, int> met;
    for (const Fault& fault : faults)
    {
        bool isSaved = false;
        met[fault._call] = failEach(
            _folder.path(), fault, [&] { ASSERT_TRUE(before.save(path)); }, [&] { isSaved = after.save(path); },
            [&]
            {
                hoSettings found;
                EXPECT_TRUE(found.load(path));
                EXPECT_EQ(found.text("name"), isSaved ? std::string(5000, 'a') : "before");
                EXPECT_EQ(contentsOf(_folder).size(), 5U);
            });
    }
    EXPECT_EQ(met, callsOfSettings);
    failEachAllocation([&] { ASSERT_TRUE(before.save(path)); }, [&] { after.save(path); },
                       [&](bool)
                       {
                           hoSettings found;
                           EXPECT_TRUE(found.load(path));
                           EXPECT_THAT(found.text("name"), testing::AnyOf(std::string(5000, 'a'), "before"));
                           EXPECT_EQ(contentsOf(_folder).size(), 5U);
                       });
}

TEST_F(WindowEngineFaults, SettingsThatCannotBeReadAreNone)
{
    const std::string path = _folder.path("settings");
    hoSettings settings;
    settings.setText("a", "1");
    settings.setText("b", std::string(100000, 'b'));
    ASSERT_TRUE(settings.save(path));
    int amount = 0;
    for (const Fault& fault : {Fault{"read", EIO}, Fault{"open", EACCES}, Fault{"read", 0}})
    {
        hoSettings found;
        bool isLoaded = false;
        amount += failEach(
            _folder.path(), fault, [] {}, [&] { isLoaded = found.load(path); },
            [&]
            {
                EXPECT_EQ(found.text("a"), isLoaded ? "1" : "");
                EXPECT_EQ(found.text("b").length(), isLoaded ? 100000 : 0);
                EXPECT_TRUE(isLoaded || fault._error != 0);
            });
    }
    EXPECT_GT(amount, 3);
}

TEST_F(WindowEngineFaults, LeaveAWholeKeyOrTheOneBefore)
{
    hoNewKeyPair pair(512);
    while (!pair.isFinished())
    {
        std::this_thread::yield();
    }
    ASSERT_TRUE(pair.isMade());
    ASSERT_EQ(pair.writePrivateKey(_folder.path("key.pem").c_str(), "", false)._problem, osWritingProblem::None);
    const std::string whole = _folder.read("key.pem");
    for (const std::string& before : {std::string(), std::string("old")})
    {
        std::map<std::string, int> met;
        for (const Fault& fault : faults)
        {
            osWritingResult writing;
            met[fault._call] = failEach(
                _folder.path(), fault,
                [&]
                {
                    std::filesystem::remove(_folder.path("key.pem"));
                    if (!before.empty())
                    {
                        _folder.write("key.pem", before);
                    }
                },
                [&] { writing = pair.writePrivateKey(_folder.path("key.pem").c_str(), "", !before.empty()); },
                [&]
                {
                    const std::string now = contentsOf(_folder)["key.pem"];
                    EXPECT_TRUE(now == before || now == whole) << now;
                    EXPECT_TRUE(!writing.isOk() || now == whole);
                    EXPECT_TRUE(writing.isOk() || writing._systemError != 0);
                    EXPECT_LE(contentsOf(_folder).size(), 5U);
                });
        }
        EXPECT_EQ(met, before.empty() ? callsOfAKey : callsOfAKeyAnew);
    }
}

namespace
{
// What the writing of a private key asks of the system.
class KeyFileCalls : public testing::Test
{
protected:
    KeyFileCalls() : _umask(::umask(0))
    {
        while (!_pair.isFinished())
        {
            std::this_thread::yield();
        }
    }
    ~KeyFileCalls() override { ::umask(_umask); }

    bool hasName() const { return std::filesystem::exists(_folder.path("keys/key.pem")); }
    osWritingResult write(bool mayOverwrite) { return _pair.writePrivateKey(_path, "", mayOverwrite); }

    const TemporaryFolder _folder;
    const bool _isFolderMade = std::filesystem::create_directory(_folder.path("keys"));
    const gtString _path = _folder.path("keys/key.pem");
    hoNewKeyPair _pair{512};

private:
    const mode_t _umask;
};
}  // namespace

TEST_F(KeyFileCalls, BringTheFileAndItsNameToTheDisk)
{
    for (const bool mayOverwrite : {false, true})
    {
        std::filesystem::remove(_folder.path("keys/key.pem"));
        std::vector<bool> hadName;
        hadName.reserve(10);
        tsFault eachCall{"fsync", std::vector<long>(10, tsWorks)};
        eachCall._folder = _folder.path();
        eachCall._before = [&](const char*) { hadName.push_back(hasName()); };
        const tsSystemFault watch(eachCall);
        ASSERT_TRUE(write(mayOverwrite).isOk());
        EXPECT_EQ(hadName, (std::vector<bool>{false, true})) << "the file, and then the folder with its name";
    }
}

TEST_F(KeyFileCalls, GiveTheRightsFromTheBeginning)
{
    for (const bool mayOverwrite : {false, true})
    {
        rightsBefore = 0;
        areRightsWanted = true;
        const osWritingResult writing = write(mayOverwrite);
        areRightsWanted = false;
        ASSERT_TRUE(writing.isOk());
        EXPECT_EQ(rightsBefore, 0600U);
        EXPECT_EQ(std::filesystem::status(_folder.path("keys/key.pem")).permissions(), std::filesystem::perms(0600));
    }
}
