// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoSignatureFile.h"

#include <cerrno>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "cliTestSupport.h"

namespace
{

// By their form signatures of a key of 1024 bits and of one of 512.
const std::string oldSignature = "00000078" + std::string(256, '0') + "\n";
const std::string newSignature = "00000038" + std::string(128, 'a') + "\n";

class SignatureFile : public ::testing::Test
{
protected:
    gtString path(const std::string& name) const { return gtString((_folder / name).c_str()); }

    hoSignatureFileProblem write(const std::string& name, const std::string& text, bool mayOverwrite) const
    {
        return hoWriteSignatureFile(path(name), text, mayOverwrite)._problem;
    }

    TemporaryFolder _folder;
};

}  // namespace

TEST_F(SignatureFile, StandsBesideTheFile)
{
    EXPECT_EQ(hoSignaturePath("report.pdf"), gtString("report.pdf.sig"));
    EXPECT_EQ(hoSignaturePath("/a/b"), gtString("/a/b.sig"));
    EXPECT_EQ(hoDocumentOfSignature("/a/b.sig"), gtString("/a/b"));
    EXPECT_EQ(hoDocumentOfSignature("b.sig"), gtString("b"));
    for (const char* pNone : {"", "/a/b", ".sig", "/a/.sig", "./.sig", "sig", "b.sig/"})
    {
        EXPECT_TRUE(hoDocumentOfSignature(pNone).isEmpty()) << pNone;
    }
}

TEST_F(SignatureFile, ComesBack)
{
    EXPECT_EQ(write("a.sig", "0123abc\n", false), hoSignatureFileProblem::None);
    EXPECT_EQ(_folder.read("a.sig"), "0123abc\n");
    gtString text;
    EXPECT_EQ(hoReadSignatureFile(path("a.sig"), text)._problem, hoSignatureFileProblem::None);
    EXPECT_EQ(text, gtString("0123abc\n"));
    EXPECT_EQ(_folder.names(), std::vector<std::string>{"a.sig"});
    struct stat status = {};
    ASSERT_EQ(stat((_folder / "a.sig").c_str(), &status), 0);
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(status.st_mode & 0777U, 0666U & ~mask);
}

TEST_F(SignatureFile, IsReadByteByByte)
{
    for (const std::string& contents :
         {std::string(), std::string("abc"), std::string("abc \t\r\n\n"), std::string("a\0b", 3)})
    {
        _folder.write("a.sig", contents);
        gtString text("left over");
        EXPECT_EQ(hoReadSignatureFile(path("a.sig"), text)._problem, hoSignatureFileProblem::None);
        EXPECT_EQ(text.asStdString(), contents);
    }
}

TEST_F(SignatureFile, ThatCannotBeReadIsToldAbout)
{
    gtString text("kept");
    EXPECT_EQ(hoReadSignatureFile(path("missing"), text)._systemError, ENOENT);
    EXPECT_EQ(hoReadSignatureFile(path("missing"), text)._problem, hoSignatureFileProblem::CannotBeRead);
    EXPECT_EQ(hoReadSignatureFile(gtString(_folder.path().c_str()), text)._systemError, EISDIR);
    EXPECT_EQ(hoReadSignatureFile("/proc/self/mem", text)._problem, hoSignatureFileProblem::CannotBeRead);
    EXPECT_EQ(hoReadSignatureFile("/proc/self/mem", text)._systemError, EIO);
    _folder.write("large", std::string(static_cast<std::size_t>(hoLargestSignatureFile) + 1, 'x'));
    EXPECT_EQ(hoReadSignatureFile(path("large"), text)._problem, hoSignatureFileProblem::TooLarge);
    EXPECT_EQ(text, gtString("kept"));
    _folder.write("large", std::string(static_cast<std::size_t>(hoLargestSignatureFile), 'x'));
    EXPECT_EQ(hoReadSignatureFile(path("large"), text)._problem, hoSignatureFileProblem::None);
}

TEST_F(SignatureFile, IsNotOverwrittenWithoutLeave)
{
    _folder.write("a.sig", oldSignature);
    EXPECT_EQ(hoCheckSignaturePath(path("a.sig"), false)._problem, hoSignatureFileProblem::Exists);
    EXPECT_EQ(write("a.sig", newSignature, false), hoSignatureFileProblem::Exists);
    EXPECT_EQ(_folder.read("a.sig"), oldSignature);
    EXPECT_EQ(hoCheckSignaturePath(path("a.sig"), true)._problem, hoSignatureFileProblem::None);
    EXPECT_EQ(write("a.sig", newSignature, true), hoSignatureFileProblem::None);
    EXPECT_EQ(_folder.read("a.sig"), newSignature);
    EXPECT_EQ(_folder.names(), std::vector<std::string>{"a.sig"});
    // A link that leads nowhere is something, too.
    ASSERT_EQ(symlink("nowhere", (_folder / "link.sig").c_str()), 0);
    EXPECT_EQ(hoCheckSignaturePath(path("link.sig"), false)._problem, hoSignatureFileProblem::Exists);
    EXPECT_EQ(hoCheckSignaturePath(path("link.sig"), true)._problem, hoSignatureFileProblem::None);
    EXPECT_EQ(write("link.sig", newSignature, false), hoSignatureFileProblem::Exists);
    EXPECT_EQ(_folder.names(), (std::vector<std::string>{"a.sig", "link.sig"}));
}

TEST_F(SignatureFile, IsWrittenThroughALink)
{
    ASSERT_EQ(mkdir((_folder / "elsewhere").c_str(), 0700), 0);
    _folder.write("elsewhere/a.sig", oldSignature);
    ASSERT_EQ(symlink("elsewhere/a.sig", (_folder / "a.sig").c_str()), 0);
    EXPECT_EQ(write("a.sig", newSignature, true), hoSignatureFileProblem::None);
    EXPECT_EQ(_folder.read("elsewhere/a.sig"), newSignature);
    struct stat status = {};
    ASSERT_EQ(lstat((_folder / "a.sig").c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
}

TEST_F(SignatureFile, ReplacesNothingOfOthers)
{
    const std::string contents[] = {"",
                                    "\n",
                                    "x",
                                    "precious",
                                    oldSignature.substr(1),
                                    oldSignature + "\n",
                                    "untrusted comment: of another program\nRWQ=\n",
                                    "-----BEGIN PGP SIGNATURE-----\n",
                                    std::string(2 * 1024 * 1024, '0')};
    for (const std::string& content : contents)
    {
        _folder.write("a.sig", content);
        for (const bool mayOverwrite : {false, true})
        {
            EXPECT_EQ(hoCheckSignaturePath(path("a.sig"), mayOverwrite)._problem, hoSignatureFileProblem::NotOurs);
            EXPECT_EQ(write("a.sig", newSignature, mayOverwrite), hoSignatureFileProblem::NotOurs);
        }
        EXPECT_EQ(_folder.read("a.sig"), content);
    }
    EXPECT_EQ(_folder.names(), std::vector<std::string>{"a.sig"});
}

TEST_F(SignatureFile, IsPreparedOnlyWhereItMayBeWritten)
{
    _folder.write("other.sig", "precious");
    _folder.write("old.sig", oldSignature);
    for (const bool mayOverwrite : {false, true})
    {
        EXPECT_FALSE(hoPreparedSignature().prepare(path("other.sig"), newSignature, mayOverwrite));
        EXPECT_FALSE(hoPreparedSignature().prepare(path("missing/a.sig"), newSignature, mayOverwrite));
    }
    EXPECT_FALSE(hoPreparedSignature().prepare(path("old.sig"), newSignature, false));
    EXPECT_EQ(_folder.names(), (std::vector<std::string>{"old.sig", "other.sig"})) << "nothing is left behind";
    hoPreparedSignature prepared;
    ASSERT_TRUE(prepared.prepare(path("old.sig"), newSignature, true));
    EXPECT_EQ(_folder.read("old.sig"), oldSignature);
    EXPECT_TRUE(prepared.giveName().isOk());
    EXPECT_EQ(_folder.read("old.sig"), newSignature);
    EXPECT_EQ(_folder.read("other.sig"), "precious");
}

TEST_F(SignatureFile, ReplacesNothingButFiles)
{
    ASSERT_EQ(mkdir((_folder / "folder").c_str(), 0700), 0);
    ASSERT_EQ(mkfifo((_folder / "pipe").c_str(), 0600), 0);
    for (const char* pName : {"folder", "pipe"})
    {
        EXPECT_EQ(write(pName, "new", true), hoSignatureFileProblem::NotRegular) << pName;
        EXPECT_EQ(write(pName, "new", false), hoSignatureFileProblem::NotRegular) << pName;
    }
    EXPECT_EQ(hoWriteSignatureFile("/dev/null", "new", true)._problem, hoSignatureFileProblem::NotRegular);
    EXPECT_EQ(_folder.names(), (std::vector<std::string>{"folder", "pipe"}));
}

TEST_F(SignatureFile, NeedsAFolder)
{
    const hoSignatureFileResult facts = hoWriteSignatureFile(path("missing/a.sig"), "new", false);
    EXPECT_EQ(facts._problem, hoSignatureFileProblem::CannotBeWritten);
    EXPECT_EQ(facts._systemError, ENOENT);
    EXPECT_EQ(hoWriteSignatureFile("", "new", false)._problem, hoSignatureFileProblem::CannotBeWritten);
    EXPECT_EQ(hoWriteSignatureFile("", "new", true)._problem, hoSignatureFileProblem::CannotBeWritten);
    EXPECT_EQ(hoWriteSignatureFile(gtString("a\0b", 3), "new", true)._problem, hoSignatureFileProblem::CannotBeWritten);
    const std::string longName(300, 'x');
    EXPECT_EQ(hoWriteSignatureFile(path(longName), "new", false)._systemError, ENAMETOOLONG);
    EXPECT_EQ(hoWriteSignatureFile(path(longName), "new", true)._systemError, ENAMETOOLONG);
    EXPECT_TRUE(_folder.names().empty());
}

TEST_F(SignatureFile, LeavesNothingBehindWhenItCannotBeWritten)
{
    _folder.write("a.sig", oldSignature);
    struct rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    struct rlimit tight = before;
    tight.rlim_cur = 2;
    ASSERT_NE(signal(SIGXFSZ, SIG_IGN), SIG_ERR);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
    const hoSignatureFileResult overwriting = hoWriteSignatureFile(path("a.sig"), "a new signature", true);
    const hoSignatureFileResult writing = hoWriteSignatureFile(path("b.sig"), "a new signature", false);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    EXPECT_EQ(overwriting._problem, hoSignatureFileProblem::CannotBeWritten);
    EXPECT_EQ(overwriting._systemError, EFBIG);
    EXPECT_EQ(writing._problem, hoSignatureFileProblem::CannotBeWritten);
    EXPECT_EQ(_folder.names(), std::vector<std::string>{"a.sig"});
    EXPECT_EQ(_folder.read("a.sig"), oldSignature);
}

TEST_F(SignatureFile, StepsOverLeftovers)
{
    for (int i = 0; i < 3; ++i)
    {
        _folder.write(".countersign-" + std::to_string(getpid()) + "-" + std::to_string(i) + ".tmp", "leftover");
    }
    EXPECT_EQ(write("a.sig", newSignature, false), hoSignatureFileProblem::None);
    EXPECT_EQ(_folder.read("a.sig"), newSignature);
    EXPECT_EQ(_folder.names().size(), 4U);
}

TEST_F(SignatureFile, IsWonByOneOfMany)
{
    for (int round = 0; round < 20; ++round)
    {
        const std::string name = std::to_string(round) + ".sig";
        int successes[4] = {};
        std::vector<std::thread> threads;
        for (int& success : successes)
        {
            threads.emplace_back([&] { success = write(name, "0123456789\n", false) == hoSignatureFileProblem::None; });
        }
        for (std::thread& thread : threads)
        {
            thread.join();
        }
        EXPECT_EQ(successes[0] + successes[1] + successes[2] + successes[3], 1);
        EXPECT_EQ(_folder.read(name), "0123456789\n");
    }
    EXPECT_EQ(_folder.names().size(), 20U);
}
