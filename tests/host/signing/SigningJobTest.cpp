// SPDX-License-Identifier: Apache-2.0
// Signing and testing on the thread, and states that never outlive the bytes they were found with.
#include "tests/host/NewKey.h"
#include "tests/support/TemporaryFolder.h"

#include "host/documents/hoDocumentList.h"
#include "host/keys/hoKeyRing.h"
#include "host/messages/hoMessages.h"
#include "host/signing/hoSigningJob.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

#include <fcntl.h>
#include <sys/stat.h>

namespace
{
using Kind = hoSigningJob::Kind;

// By its form one of a key of 1024 bits.
const std::string anOldSignature = "00000078" + std::string(256, '0') + "\n";

class DocumentWork : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        mine = newKey(1024);
        theirs = newKey(1024);
    }
    static void TearDownTestSuite()
    {
        mine = nullptr;
        theirs = nullptr;
    }

    void open(const std::string& name, const std::string& contents)
    {
        ASSERT_EQ(_list.open(_folder.write(name, contents).c_str())._result._problem, osFileProblem::None);
    }

    std::vector<hoDocument> all() const
    {
        std::vector<hoDocument> documents;
        for (std::size_t i = 0; i < _list.size(); ++i)
        {
            documents.push_back(_list[i]);
        }
        return documents;
    }

    std::vector<hoSigningOutcome> perform(Kind kind, const hoKeyRing& keys, bool mayOverwrite = false)
    {
        hoSigningJob work(kind, all(), keys, mayOverwrite);
        while (!work.isFinished())
        {
            std::this_thread::yield();
        }
        const hoSigningJob::Progress progress = work.progress();
        EXPECT_EQ(progress._bytesDone, progress._bytesInAll);
        EXPECT_EQ(progress._documentsDone, _list.size());
        EXPECT_TRUE(progress._path.isEmpty());
        std::vector<hoSigningOutcome> outcomes = work.takeOutcomes();
        EXPECT_TRUE(work.takeOutcomes().empty());
        for (const hoSigningOutcome& outcome : outcomes)
        {
            _list.setVerdict(outcome._path, outcome._verdict);
        }
        return outcomes;
    }

    // The keys' files are key0, key1 and so on.
    static hoKeyRing ring(const std::shared_ptr<const hoKey>& pPrivate,
                          const std::vector<std::shared_ptr<const hoKey>>& publics = {})
    {
        hoKeyRing keys;
        keys._private._pKey = pPrivate;
        keys._private._path = "/keys/mine";
        for (const std::shared_ptr<const hoKey>& pKey : publics)
        {
            hoLoadedKey key;
            key._pKey = pKey;
            key._path = "/keys/key" + std::to_string(keys._publics.size());
            keys._publics.push_back(key);
        }
        return keys;
    }

    hoDocumentState state(std::size_t position) const { return _list[position]._verdict._state; }

    static std::shared_ptr<const hoKey> mine;
    static std::shared_ptr<const hoKey> theirs;
    TemporaryFolder _folder;
    hoDocumentList _list;
};
std::shared_ptr<const hoKey> DocumentWork::mine;
std::shared_ptr<const hoKey> DocumentWork::theirs;
}  // namespace

TEST_F(DocumentWork, SignsAndTests)
{
    open("a", "some text");
    open("b", std::string(3000000, 'b'));
    EXPECT_EQ(state(0), hoDocumentState::NotSigned);
    perform(Kind::Test, ring(mine));
    EXPECT_EQ(state(0), hoDocumentState::NotSigned);
    EXPECT_EQ(state(1), hoDocumentState::NotSigned);

    perform(Kind::Sign, ring(mine));
    EXPECT_EQ(state(0), hoDocumentState::SignedByMe);
    EXPECT_EQ(state(1), hoDocumentState::SignedByMe);
    EXPECT_TRUE(std::filesystem::exists(_folder.path("a.sig")));

    _list.forgetStates();
    EXPECT_EQ(state(0), hoDocumentState::NotTested);
    perform(Kind::Test, ring(nullptr, {mine}));
    EXPECT_EQ(state(0), hoDocumentState::Good);
    perform(Kind::Test, ring(mine));
    EXPECT_EQ(state(0), hoDocumentState::SignedByMe);
    perform(Kind::Test, ring(mine, {theirs}));
    EXPECT_EQ(state(1), hoDocumentState::SignedByMe);
    perform(Kind::Test, ring(nullptr, {theirs}));
    EXPECT_EQ(state(0), hoDocumentState::AnotherKey);
    EXPECT_EQ(state(1), hoDocumentState::AnotherKey);
}

TEST_F(DocumentWork, SaysWhichOfSeveralKeysAVerdictCameFrom)
{
    const std::shared_ptr<const hoKey> pOther = newKey(1024);
    const auto name = [this](std::size_t position) { return _list[position]._verdict._keyName.asStdString(); };
    open("a", "some text");
    open("b", "other text");
    perform(Kind::Sign, ring(mine));
    EXPECT_EQ(name(0), "") << "there is no other key";
    std::filesystem::remove(_folder.path("b.sig"));
    ASSERT_TRUE(_list.refresh(1));
    perform(Kind::Sign, ring(theirs, {mine}));
    EXPECT_EQ(name(1), "mine");

    perform(Kind::Test, ring(nullptr, {mine, theirs, pOther}));
    EXPECT_EQ(state(0), hoDocumentState::Good);
    EXPECT_EQ(name(0), "key0");
    EXPECT_EQ(state(1), hoDocumentState::Good);
    EXPECT_EQ(name(1), "key1");
    perform(Kind::Test, ring(mine, {theirs, pOther}));
    EXPECT_EQ(state(0), hoDocumentState::SignedByMe);
    EXPECT_EQ(name(0), "mine");
    EXPECT_EQ(name(1), "key0");
    perform(Kind::Test, ring(mine, {mine}));
    EXPECT_EQ(state(0), hoDocumentState::SignedByMe);
    EXPECT_EQ(name(0), "") << "both halves of a pair are one key";

    _folder.write("a", "some test");
    const std::vector<hoSigningOutcome> outcomes = perform(Kind::Test, ring(nullptr, {pOther, mine}));
    EXPECT_EQ(state(0), hoDocumentState::Bad);
    EXPECT_EQ(name(0), "key1");
    EXPECT_EQ(state(1), hoDocumentState::AnotherKey);
    EXPECT_EQ(name(1), "");
    EXPECT_EQ(hoVerdictReason(outcomes[1]._signing).asStdString(), "the signature was made with the key " +
                                                                       hoShortFingerprint(*theirs).asStdString() +
                                                                       ", which is none of those given");
}

TEST_F(DocumentWork, TellsAnAlteredDocument)
{
    open("a", "some text");
    perform(Kind::Sign, ring(mine));
    _folder.write("a", "some test");
    EXPECT_TRUE(_list.refresh(0));
    EXPECT_EQ(state(0), hoDocumentState::Changed);
    perform(Kind::Test, ring(mine));
    EXPECT_EQ(state(0), hoDocumentState::Bad);
    EXPECT_FALSE(_list.refresh(0));
}

TEST_F(DocumentWork, AGoodStateDoesNotOutliveItsBytes)
{
    open("a", "some text");
    perform(Kind::Sign, ring(mine));
    const hoDocumentVerdict good = _list[0]._verdict;

    // The same size and time, other bytes.
    struct stat before;
    ASSERT_EQ(stat(_folder.path("a").c_str(), &before), 0);
    _folder.write("a", "same size");
    const struct timespec times[2] = {before.st_atim, before.st_mtim};
    ASSERT_EQ(utimensat(AT_FDCWD, _folder.path("a").c_str(), times, 0), 0);
    _list.setVerdict(_folder.path("a").c_str(), good);
    EXPECT_EQ(state(0), hoDocumentState::Changed);

    // Nor that of the signature.
    perform(Kind::Sign, ring(mine), true);
    EXPECT_EQ(state(0), hoDocumentState::SignedByMe);
    _folder.write("a.sig", "00000000");
    EXPECT_TRUE(_list.refresh(0));
    EXPECT_EQ(state(0), hoDocumentState::Changed);

    std::filesystem::remove(_folder.path("a"));
    EXPECT_TRUE(_list.refresh(0));
    EXPECT_EQ(state(0), hoDocumentState::Missing);
    perform(Kind::Test, ring(mine));
    EXPECT_EQ(state(0), hoDocumentState::Missing);
    _folder.write("a", "some text");
    EXPECT_TRUE(_list.refresh(0));
    EXPECT_EQ(state(0), hoDocumentState::NotTested);
}

TEST_F(DocumentWork, OverwritesNothingUnasked)
{
    open("a", "some text");
    _folder.write("a.sig", anOldSignature);
    const std::vector<hoSigningOutcome> kept = perform(Kind::Sign, ring(mine));
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_EQ(kept[0]._signatureFile._problem, hoSignatureFileProblem::Exists);
    EXPECT_EQ(std::filesystem::file_size(_folder.path("a.sig")), anOldSignature.size());
    perform(Kind::Sign, ring(mine), true);
    EXPECT_EQ(state(0), hoDocumentState::SignedByMe);
}

TEST_F(DocumentWork, OverwritesNothingOfOthers)
{
    open("a", "some text");
    for (const char* pContents : {"precious", "", "untrusted comment: of another program\nRWQ=\n"})
    {
        _folder.write("a.sig", pContents);
        for (const bool mayOverwrite : {false, true})
        {
            const std::vector<hoSigningOutcome> kept = perform(Kind::Sign, ring(mine), mayOverwrite);
            ASSERT_EQ(kept.size(), 1U);
            EXPECT_EQ(kept[0]._signatureFile._problem, hoSignatureFileProblem::NotOurs);
            EXPECT_EQ(_folder.read("a.sig"), pContents);
        }
        perform(Kind::Test, ring(mine));
        EXPECT_EQ(state(0), hoDocumentState::NotASignature);
        EXPECT_FALSE(_list.refresh(0));
    }
}

TEST_F(DocumentWork, SignsWeaklyWhereAskedTo)
{
    open("a", "some text");
    hoSigningJob work(Kind::Sign, all(), ring(mine), false, nullptr, hoSignatureLines::DigestOnly);
    while (!work.isFinished())
    {
        std::this_thread::yield();
    }
    EXPECT_EQ(_folder.read("a.sig").size(), anOldSignature.size());
    const std::vector<hoSigningOutcome> outcomes = work.takeOutcomes();
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_EQ(outcomes[0]._verdict._state, hoDocumentState::Weak) << "whoever has signed it";
    perform(Kind::Test, ring(mine));
    EXPECT_EQ(state(0), hoDocumentState::Weak);
    EXPECT_FALSE(_list.refresh(0));
    _folder.write("a", "other text");
    EXPECT_TRUE(_list.refresh(0));
    EXPECT_EQ(state(0), hoDocumentState::Changed);
    perform(Kind::Test, ring(mine));
    EXPECT_EQ(state(0), hoDocumentState::Bad);
}

TEST_F(DocumentWork, KeepsASignatureThatIsToBeKept)
{
    open("a", "some text");
    open("b", "other text");
    _folder.write("a.sig", anOldSignature);
    _folder.write("b.sig", anOldSignature);
    std::vector<hoDocument> documents = all();
    documents[0]._isSignatureKept = true;
    hoSigningJob work(Kind::Sign, documents, ring(mine), true);
    while (!work.isFinished())
    {
        std::this_thread::yield();
    }
    const std::vector<hoSigningOutcome> outcomes = work.takeOutcomes();
    ASSERT_EQ(outcomes.size(), 2U);
    EXPECT_EQ(outcomes[0]._signatureFile._problem, hoSignatureFileProblem::Exists);
    EXPECT_EQ(_folder.read("a.sig"), anOldSignature);
    EXPECT_EQ(outcomes[1]._verdict._state, hoDocumentState::SignedByMe);
}

TEST_F(DocumentWork, TellsItsEnd)
{
    std::atomic<int> changes{0};
    {
        const hoSigningJob work(Kind::Test, {}, ring(mine), false, [&] { ++changes; });
        while (!work.isFinished())
        {
            std::this_thread::yield();
        }
    }
    EXPECT_EQ(changes, 1) << "of no document there is nothing else to tell";
}

TEST_F(DocumentWork, NeverHasMoreDoneThanThereIs)
{
    open("huge", "small");
    std::filesystem::resize_file(_folder.path("huge"), 64ULL << 30);
    ASSERT_EQ(_list[0]._facts._size, 5U) << "it has grown since the list looked at it";
    hoSigningJob work(Kind::Sign, all(), ring(mine), false);
    hoSigningJob::Progress progress = work.progress();
    while (progress._bytesDone <= 5)
    {
        EXPECT_EQ(progress._bytesInAll, 5U);
        std::this_thread::yield();
        progress = work.progress();
    }
    EXPECT_EQ(progress._bytesInAll, progress._bytesDone);
    work.cancel();
}

TEST_F(DocumentWork, GoesOnAfterADocumentThatCannotBeRead)
{
    open("a", "1");
    open("b", "2");
    std::filesystem::remove(_folder.path("a"));
    const std::vector<hoSigningOutcome> outcomes = perform(Kind::Sign, ring(mine));
    ASSERT_EQ(outcomes.size(), 2U);
    EXPECT_EQ(outcomes[0]._signing._problem, hoSigningProblem::FileCannotBeRead);
    EXPECT_EQ(state(0), hoDocumentState::Missing);
    EXPECT_EQ(state(1), hoDocumentState::SignedByMe);
}

TEST_F(DocumentWork, IsTheSameOnAnyAmountOfThreads)
{
    // The first take longest, so that the others are done before them.
    for (int number = 0; number < 20; ++number)
    {
        open(std::to_string(number), std::string(number < 2 ? 5000000 : 10, 'x'));
    }
    for (const char* pName : {"0", "7", "19"})
    {
        std::filesystem::remove(_folder.path(pName));
    }
    for (const unsigned int threads : {1U, 2U, 8U, 100U})
    {
        hoSigningJob work(Kind::Sign, all(), ring(mine), true, nullptr, hoSignatureLines::Both, threads);
        std::vector<hoSigningOutcome> outcomes;
        while (outcomes.size() < 20)
        {
            const bool isFinished = work.isFinished();
            for (const hoSigningOutcome& outcome : work.takeOutcomes())
            {
                outcomes.push_back(outcome);
            }
            ASSERT_TRUE(!isFinished || outcomes.size() == 20) << threads;
        }
        for (std::size_t number = 0; number < 20; ++number)
        {
            EXPECT_EQ(outcomes[number]._path, _list[number]._path) << threads;
            const bool isGone = number == 0 || number == 7 || number == 19;
            EXPECT_EQ(outcomes[number]._signing._problem,
                      isGone ? hoSigningProblem::FileCannotBeRead : hoSigningProblem::None);
            EXPECT_EQ(outcomes[number]._verdict._state,
                      isGone ? hoDocumentState::CannotBeRead : hoDocumentState::SignedByMe);
        }
    }
}

TEST_F(DocumentWork, CancelsAllThatAreBeingRead)
{
    for (const char* pName : {"a", "b", "c"})
    {
        open(pName, "");
        std::filesystem::resize_file(_folder.path(pName), 64ULL << 30);
        ASSERT_TRUE(_list.refresh(_list.size() - 1));
    }
    hoSigningJob work(Kind::Sign, all(), ring(mine), false, nullptr, hoSignatureLines::Both, 2);
    while (work.progress()._bytesDone == 0)
    {
        std::this_thread::yield();
    }
    work.cancel();
    while (!work.isFinished())
    {
        std::this_thread::yield();
    }
    EXPECT_LE(work.progress()._documentsDone, 2U);
    EXPECT_TRUE(work.takeOutcomes().empty());
    EXPECT_FALSE(std::filesystem::exists(_folder.path("a.sig")));
}

TEST_F(DocumentWork, CanBeCancelled)
{
    // A sparse file that takes many seconds to read.
    open("huge", "");
    std::filesystem::resize_file(_folder.path("huge"), 64ULL << 30);
    ASSERT_TRUE(_list.refresh(0));
    hoSigningJob work(Kind::Sign, all(), ring(mine), false);
    while (work.progress()._bytesDone == 0)
    {
        std::this_thread::yield();
    }
    EXPECT_EQ(work.progress()._bytesInAll, 64ULL << 30);
    EXPECT_STREQ(work.progress()._path.asCharArray(), _folder.path("huge").c_str());
    work.cancel();
    while (!work.isFinished())
    {
        std::this_thread::yield();
    }
    EXPECT_TRUE(work.takeOutcomes().empty());
    EXPECT_FALSE(std::filesystem::exists(_folder.path("huge.sig")));
}

TEST_F(DocumentWork, EndsWhenItIsDestroyed)
{
    open("huge", "");
    std::filesystem::resize_file(_folder.path("huge"), 64ULL << 30);
    _list.refresh(0);
    {
        const hoSigningJob work(Kind::Sign, all(), ring(mine), false);
    }
    EXPECT_FALSE(std::filesystem::exists(_folder.path("huge.sig")));
}

TEST_F(DocumentWork, KeysHaveShortFingerprints)
{
    EXPECT_EQ(hoShortFingerprint(*mine).length(), 8);
    EXPECT_NE(hoShortFingerprint(*mine), hoShortFingerprint(*theirs));
}
