// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoFileSigning.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "cliTestSupport.h"
#include "crypto/crRSADigitalSigner.h"
#include "platform/osWrappers/osFilePath.h"

namespace
{

class FileSigning : public ::testing::Test
{
protected:
    void SetUp() override
    {
        makeKeys(_folder, 1024);
        _pPrivate = load("private.pem");
        _pPublic = load("public.pem");
        ASSERT_NE(_pPrivate, nullptr);
        ASSERT_NE(_pPublic, nullptr);
    }

    std::unique_ptr<const hoKey> load(const std::string& name)
    {
        hoKeyFileFacts facts;
        return hoLoadKeyFile(gtString((_folder / name).c_str()), nullptr, facts);
    }

    gtString path(const std::string& name) const { return gtString((_folder / name).c_str()); }

    hoVerdict verdict(const hoKey& key, const gtString& signature) const
    {
        return hoTestFile(path("file"), {&key}, signature.asStringView(), nullptr)._verdict;
    }

    TemporaryFolder _folder;
    std::unique_ptr<const hoKey> _pPrivate;
    std::unique_ptr<const hoKey> _pPublic;
};

class Progress : public hoIProgress
{
public:
    bool onProgress(unsigned long long bytesDone, unsigned long long bytesInAll) override
    {
        ++calls;
        EXPECT_GT(bytesDone, done);
        done = bytesDone;
        inAll = bytesInAll;
        if (atFirstCall)
        {
            atFirstCall();
            atFirstCall = nullptr;
        }
        return calls < callsUntilCancelled;
    }

    int calls = 0;
    int callsUntilCancelled = 1000000;
    unsigned long long done = 0;
    unsigned long long inAll = 0;
    std::function<void()> atFirstCall;
};

constexpr std::size_t threeMegabytes = 3 * 1024 * 1024 + 17;

std::string bytes(std::size_t amount)
{
    std::string result(amount, '\0');
    unsigned int state = 1;
    for (char& byte : result)
    {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24);
    }
    return result;
}

}  // namespace

TEST_F(FileSigning, SignsItsFirstLineLikeTheSigner)
{
    for (const std::size_t size : {std::size_t(0), std::size_t(1), std::size_t(59), std::size_t(60), std::size_t(61),
                                   std::size_t(262144), std::size_t(1048576), std::size_t(1048620), threeMegabytes})
    {
        _folder.write("file", bytes(size));
        gtString expected;
        ASSERT_TRUE(crRSADigitalSigner(_pPrivate->privateKey()).getSignature(osFilePath(path("file")), expected));
        gtString signature;
        hoSigningFacts facts = hoSignFile(path("file"), *_pPrivate, hoSignatureLines::DigestOnly, nullptr, signature);
        EXPECT_EQ(facts._problem, hoSigningProblem::None);
        EXPECT_EQ(facts._file._size, size);
        expected.append('\n');
        EXPECT_EQ(signature, expected);
        EXPECT_EQ(verdict(*_pPublic, signature), hoVerdict::Weak);

        facts = hoSignFile(path("file"), *_pPrivate, hoSignatureLines::Both, nullptr, signature);
        EXPECT_EQ(facts._problem, hoSigningProblem::None);
        EXPECT_EQ(facts._file._size, size);
        EXPECT_EQ(signature.asStringView().substr(0, static_cast<std::size_t>(expected.length())),
                  expected.asStringView());
        EXPECT_EQ(verdict(*_pPublic, signature), hoVerdict::Good);
        // A private key file has the public half, too.
        EXPECT_EQ(verdict(*_pPrivate, signature), hoVerdict::Good);
        _folder.write("file", bytes(size) + "x");
        EXPECT_EQ(verdict(*_pPublic, signature), hoVerdict::Bad);
    }
}

TEST_F(FileSigning, TakesAPrivateKeyThatIsLargeEnough)
{
    _folder.write("file", "contents");
    gtString signature("kept");
    EXPECT_EQ(hoSignFile(path("file"), *_pPublic, hoSignatureLines::Both, nullptr, signature)._problem,
              hoSigningProblem::NoPrivateKey);
    runOpenSSL(_folder, {"genrsa", "-out", "small.pem", "992"});
    const std::unique_ptr<const hoKey> pSmall = load("small.pem");
    ASSERT_NE(pSmall, nullptr);
    EXPECT_EQ(hoSignFile(path("file"), *pSmall, hoSignatureLines::Both, nullptr, signature)._problem,
              hoSigningProblem::CannotCountersign);
    EXPECT_EQ(signature, gtString("kept"));
    EXPECT_EQ(hoSignFile(path("file"), *pSmall, hoSignatureLines::DigestOnly, nullptr, signature)._problem,
              hoSigningProblem::None);
    EXPECT_EQ(verdict(*pSmall, signature), hoVerdict::Weak);
}

TEST_F(FileSigning, TriesEveryKeyAndReadsTheFileOnce)
{
    _folder.write("file", bytes(threeMegabytes));
    runOpenSSL(_folder, {"genrsa", "-out", "other.pem", "1024"});
    runOpenSSL(_folder, {"genrsa", "-out", "large.pem", "2048"});
    const std::unique_ptr<const hoKey> pOther = load("other.pem");
    const std::unique_ptr<const hoKey> pLarge = load("large.pem");
    gtString signature;
    ASSERT_EQ(hoSignFile(path("file"), *_pPrivate, hoSignatureLines::Both, nullptr, signature)._problem,
              hoSigningProblem::None);
    Progress progress;
    const hoTestFacts facts =
        hoTestFile(path("file"), {pLarge.get(), pOther.get(), _pPublic.get()}, signature.asStringView(), &progress);
    EXPECT_EQ(facts._verdict, hoVerdict::Good);
    EXPECT_EQ(facts._key, 2U);
    EXPECT_EQ(facts._keyBits, 1024);
    EXPECT_EQ(progress.done, threeMegabytes);
    EXPECT_EQ(progress.calls, 3);
    // A file whose signature is nobody's is not read at all.
    EXPECT_EQ(hoTestFile(path("file"), {pLarge.get(), pOther.get()}, signature.asStringView(), &progress)._verdict,
              hoVerdict::AnotherKey);
    EXPECT_EQ(progress.calls, 3);
}

TEST_F(FileSigning, TellsWhyAFileCannotBeRead)
{
    ASSERT_EQ(mkdir((_folder / "folder").c_str(), 0700), 0);
    ASSERT_EQ(mkfifo((_folder / "pipe").c_str(), 0600), 0);
    gtString signature;
    _folder.write("file", "contents");
    ASSERT_EQ(hoSignFile(path("file"), *_pPrivate, hoSignatureLines::Both, nullptr, signature)._problem,
              hoSigningProblem::None);
    struct Case
    {
        const char* pName;
        osFileProblem problem;
        hoVerdict verdict;
    };
    const Case cases[] = {{"missing", osFileProblem::NotThere, hoVerdict::Missing},
                          {"folder", osFileProblem::IsFolder, hoVerdict::Unreadable},
                          {"pipe", osFileProblem::NotRegular, hoVerdict::Unreadable}};
    for (const Case& aCase : cases)
    {
        gtString text("kept");
        const hoTestFacts tested = hoTestFile(path(aCase.pName), {_pPublic.get()}, signature.asStringView(), nullptr);
        for (const hoSigningFacts& facts :
             {hoSignFile(path(aCase.pName), *_pPrivate, hoSignatureLines::Both, nullptr, text), hoSigningFacts(tested),
              hoDigestOfFile(path(aCase.pName), *_pPublic, nullptr, text)})
        {
            EXPECT_EQ(facts._problem, hoSigningProblem::FileCannotBeRead);
            EXPECT_EQ(facts._fileProblem, aCase.problem);
        }
        EXPECT_EQ(text, gtString("kept"));
        EXPECT_EQ(tested._verdict, aCase.verdict);
        // Also when there is something wrong with the signature.
        EXPECT_EQ(hoTestFile(path(aCase.pName), {_pPublic.get()}, "x", nullptr)._verdict, aCase.verdict);
    }
}

// The system opens this file and refuses to read from its start.
TEST_F(FileSigning, TakesNoReadErrorForTheEndOfTheFile)
{
    gtString signature;
    _folder.write("file", "");
    ASSERT_EQ(hoSignFile(path("file"), *_pPrivate, hoSignatureLines::Both, nullptr, signature)._problem,
              hoSigningProblem::None);
    gtString text("kept");
    const hoTestFacts tested = hoTestFile("/proc/self/mem", {_pPublic.get()}, signature.asStringView(), nullptr);
    for (const hoSigningFacts& facts :
         {hoSignFile("/proc/self/mem", *_pPrivate, hoSignatureLines::Both, nullptr, text), hoSigningFacts(tested),
          hoDigestOfFile("/proc/self/mem", *_pPublic, nullptr, text)})
    {
        EXPECT_EQ(facts._problem, hoSigningProblem::FileCannotBeRead);
        EXPECT_EQ(facts._systemError, EIO);
    }
    EXPECT_EQ(text, gtString("kept"));
    EXPECT_EQ(tested._verdict, hoVerdict::Unreadable);
}

TEST_F(FileSigning, ReportsItsProgress)
{
    _folder.write("file", bytes(threeMegabytes));
    Progress progress;
    gtString signature;
    EXPECT_EQ(hoSignFile(path("file"), *_pPrivate, hoSignatureLines::Both, &progress, signature)._problem,
              hoSigningProblem::None);
    EXPECT_EQ(progress.done, threeMegabytes);
    EXPECT_EQ(progress.inAll, threeMegabytes);
    EXPECT_EQ(progress.calls, 3);
    // Not of the moment for which the reading of a young file waits.
    for (int round = 0; round < 200; ++round)
    {
        _folder.write("young", std::to_string(round));
        Progress once;
        gtString digest;
        EXPECT_EQ(hoDigestOfFile(path("young"), *_pPublic, &once, digest)._problem, hoSigningProblem::None);
        EXPECT_EQ(once.calls, 1);
    }
}

TEST_F(FileSigning, CanBeCancelled)
{
    _folder.write("file", bytes(threeMegabytes));
    Progress progress;
    progress.callsUntilCancelled = 2;
    gtString signature("kept");
    EXPECT_EQ(hoSignFile(path("file"), *_pPrivate, hoSignatureLines::Both, &progress, signature)._problem,
              hoSigningProblem::Cancelled);
    EXPECT_EQ(progress.calls, 2);
    EXPECT_EQ(signature, gtString("kept"));
}

TEST_F(FileSigning, NoticesThatTheFileChanges)
{
    const std::string file = _folder / "file";
    const std::function<void()> changes[] = {
        [&] { ASSERT_EQ(truncate(file.c_str(), 1000), 0); },
        [&] { std::ofstream(file, std::ios::app) << "more"; },
        [&]
        {
            std::fstream open(file, std::ios::in | std::ios::out | std::ios::binary);
            open.seekp(5);
            open << "other bytes";
        },
        [&]
        {
            _folder.write("new", bytes(threeMegabytes));
            ASSERT_EQ(rename((_folder / "new").c_str(), file.c_str()), 0);
        },
        [&] { ASSERT_EQ(unlink(file.c_str()), 0); },
    };
    for (const std::function<void()>& change : changes)
    {
        _folder.write("file", bytes(threeMegabytes));
        gtString signature;
        ASSERT_EQ(hoSignFile(path("file"), *_pPrivate, hoSignatureLines::Both, nullptr, signature)._problem,
                  hoSigningProblem::None);
        Progress progress;
        progress.atFirstCall = change;
        const hoTestFacts facts = hoTestFile(path("file"), {_pPublic.get()}, signature.asStringView(), &progress);
        EXPECT_EQ(facts._problem, hoSigningProblem::FileChanged);
        EXPECT_EQ(facts._verdict, hoVerdict::Changed);
        EXPECT_GT(progress.calls, 0);
    }
}

TEST_F(FileSigning, GivesTheDigestsText)
{
    _folder.write("file", "contents of a file");
    crRSADigitalSigner signer(_pPublic->publicKey());
    ASSERT_TRUE(signer.createMessageDigestDigits());
    ASSERT_TRUE(signer.createFileMessageDigest(osFilePath(path("file"))));
    gtString expected;
    signer.messageDigestToString(expected);
    gtString text;
    EXPECT_EQ(hoDigestOfFile(path("file"), *_pPublic, nullptr, text)._problem, hoSigningProblem::None);
    EXPECT_EQ(text, expected);
}

TEST_F(FileSigning, NoticesChangesOfAnOpenFile)
{
    const auto always = [](int) { return true; };
    const std::string contents = bytes(threeMegabytes);
    const std::string file = _folder.write("file", "line" + contents);
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    // What stands before is not the document's.
    ASSERT_EQ(lseek(descriptor, 4, SEEK_SET), 4);
    gtString signature;
    EXPECT_EQ(
        hoSignDocument(hoDocumentSource(descriptor, always), *_pPrivate, hoSignatureLines::Both, nullptr, signature)
            ._problem,
        hoSigningProblem::None);
    _folder.write("other", contents);
    EXPECT_EQ(hoTestFile(path("other"), {_pPublic.get()}, signature.asStringView(), nullptr)._verdict, hoVerdict::Good);

    for (const bool isCut : {false, true})
    {
        ASSERT_EQ(lseek(descriptor, 4, SEEK_SET), 4);
        Progress progress;
        progress.atFirstCall = [&]
        {
            if (isCut)
            {
                ASSERT_EQ(truncate(file.c_str(), 1000), 0);
            }
            else
            {
                std::ofstream(file, std::ios::app) << "more";
            }
        };
        EXPECT_EQ(
            hoTestDocument(hoDocumentSource(descriptor, always), {_pPublic.get()}, signature.asStringView(), &progress)
                ._verdict,
            hoVerdict::Changed);
        EXPECT_EQ(progress.atFirstCall, nullptr);
    }
    ::close(descriptor);
}

TEST_F(FileSigning, ReadsAPipeToItsEndOrUntilItIsGivenUp)
{
    const std::string contents = bytes(threeMegabytes);
    _folder.write("file", contents);
    gtString signature;
    ASSERT_EQ(hoSignFile(path("file"), *_pPrivate, hoSignatureLines::Both, nullptr, signature)._problem,
              hoSigningProblem::None);
    for (const int mostWaits : {1, 1 << 30})
    {
        int ends[2] = {-1, -1};
        ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
        int waits = 0;
        std::thread writer(
            [&]
            {
                std::string_view rest = contents;
                while (!rest.empty())
                {
                    const ssize_t amount = ::write(ends[1], rest.data(), rest.size());
                    if (amount <= 0)
                    {
                        break;
                    }
                    rest.remove_prefix(static_cast<std::size_t>(amount));
                }
                ::close(ends[1]);
            });
        const hoTestFacts facts = hoTestDocument(hoDocumentSource(ends[0], [&](int) { return waits++ < mostWaits; }),
                                                 {_pPublic.get()}, signature.asStringView(), nullptr);
        if (mostWaits == 1)
        {
            EXPECT_EQ(facts._problem, hoSigningProblem::Cancelled);
            // So that the writer ends.
            std::string rest(1 << 16, ' ');
            while (::read(ends[0], rest.data(), rest.size()) > 0)
            {
            }
        }
        else
        {
            EXPECT_EQ(facts._verdict, hoVerdict::Good);
        }
        writer.join();
        ::close(ends[0]);
    }
}
