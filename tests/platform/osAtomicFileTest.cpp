// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TemporaryFolder.h"

#include "platform/osWrappers/osAtomicFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
std::ptrdiff_t amountOfFiles(const TemporaryFolder& folder)
{
    return std::distance(std::filesystem::directory_iterator(folder.path()), std::filesystem::directory_iterator());
}
}  // namespace

TEST(WholeFile, IsWritten)
{
    const TemporaryFolder folder;
    const std::string bytes("a\0\xff\n", 4);
    EXPECT_EQ(osWriteFileAtomically(folder.path("a"), bytes, false)._problem, osWritingProblem::None);
    EXPECT_EQ(folder.read("a"), bytes);
    EXPECT_EQ(osWriteFileAtomically(folder.path("b"), "", true)._problem, osWritingProblem::None);
    EXPECT_EQ(folder.read("b"), "");
    EXPECT_EQ(amountOfFiles(folder), 2);
}

TEST(WholeFile, IsOverwrittenOnlyIfItMayBe)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "old");
    EXPECT_EQ(osWriteFileAtomically(path, "new", false)._problem, osWritingProblem::Exists);
    EXPECT_EQ(folder.read("a"), "old");
    EXPECT_EQ(osWriteFileAtomically(path, "new", true)._problem, osWritingProblem::None);
    EXPECT_EQ(folder.read("a"), "new");
    EXPECT_EQ(amountOfFiles(folder), 1);
}

TEST(WholeFile, FollowsALink)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "old");
    std::filesystem::create_symlink("a", folder.path("link"));
    EXPECT_EQ(osWriteFileAtomically(folder.path("link"), "new", true)._problem, osWritingProblem::None);
    EXPECT_EQ(folder.read("a"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link")));
}

TEST(WholeFile, FollowsALinkToNothing)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path("below"));
    std::filesystem::create_symlink("../target", folder.path("below/second"));
    std::filesystem::create_symlink("below/second", folder.path("first"));
    EXPECT_EQ(osWriteFileAtomically(folder.path("first"), "taken", false)._problem, osWritingProblem::Exists);
    EXPECT_EQ(osWriteFileAtomically(folder.path("first"), "new", true)._problem, osWritingProblem::None);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("first")));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("below/second")));
    EXPECT_EQ(folder.read("target"), "new");

    std::filesystem::create_symlink(folder.path("absolute target"), folder.path("absolute"));
    EXPECT_EQ(osWriteFileAtomically(folder.path("absolute"), "new", true)._problem, osWritingProblem::None);
    EXPECT_EQ(folder.read("absolute target"), "new");
}

TEST(WholeFile, KeepsALinkThatLeadsNowhere)
{
    const TemporaryFolder folder;
    std::filesystem::create_symlink("circle", folder.path("circle"));
    EXPECT_EQ(osWriteFileAtomically(folder.path("circle"), "x", true)._systemError, ELOOP);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("circle")));
    std::filesystem::create_symlink("missing/target", folder.path("deep"));
    EXPECT_EQ(osWriteFileAtomically(folder.path("deep"), "x", true)._systemError, ENOENT);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("deep")));
    EXPECT_EQ(amountOfFiles(folder), 2);
}

TEST(WholeFile, FindsATemporaryNameAmongLeftovers)
{
    const TemporaryFolder folder;
    const auto leave = [&folder](int from, int to)
    {
        for (int i = from; i < to; ++i)
        {
            folder.write(".countersign-" + std::to_string(getpid()) + "-" + std::to_string(i) + ".tmp", "");
        }
    };
    leave(0, 150);
    EXPECT_EQ(osWriteFileAtomically(folder.path("a"), "x", false)._problem, osWritingProblem::None);
    leave(150, 1000);
    // None is left. This is not the answer that something has the wanted name.
    const osWritingResult result = osWriteFileAtomically(folder.path("b"), "x", false);
    EXPECT_EQ(result._problem, osWritingProblem::CannotBeWritten);
    EXPECT_EQ(result._systemError, EEXIST);
    EXPECT_EQ(amountOfFiles(folder), 1001);
}

TEST(WholeFile, CannotHaveANulInItsName)
{
    const TemporaryFolder folder;
    const gtString path(gtString(folder.path("a")).append(gtString("\0b", 2)));
    const osWritingResult result = osWriteFileAtomically(path, "x", true);
    EXPECT_EQ(result._problem, osWritingProblem::CannotBeWritten);
    EXPECT_EQ(result._systemError, EINVAL);
    EXPECT_EQ(amountOfFiles(folder), 0);
}

TEST(WholeFile, ReplacesNothingButFiles)
{
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(osWriteFileAtomically(folder.path("pipe"), "x", true)._problem, osWritingProblem::NotRegular);
    EXPECT_EQ(osWriteFileAtomically(folder.path(), "x", true)._problem, osWritingProblem::IsFolder);
    EXPECT_EQ(osWriteFileAtomically(folder.path("missing/a"), "x", true)._systemError, ENOENT);
    EXPECT_EQ(osWriteFileAtomically("", "x", true)._systemError, ENOENT);
    EXPECT_TRUE(std::filesystem::is_fifo(folder.path("pipe")));
    EXPECT_EQ(amountOfFiles(folder), 1);
}

TEST(WholeFile, KeepsModeAndOwnerOfWhatItReplaces)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "old");
    ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
    const bool isRoot = ::geteuid() == 0;
    ASSERT_TRUE(!isRoot || ::chown(path.c_str(), 1234, 2345) == 0);
    EXPECT_EQ(osWriteFileAtomically(path, "new", true)._problem, osWritingProblem::None);
    struct stat status = {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0444U);
    EXPECT_TRUE(!isRoot || (status.st_uid == 1234 && status.st_gid == 2345));
    EXPECT_EQ(osWriteFileAtomically(path, "new", true, 0640)._problem, osWritingProblem::None);
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
}

TEST(WholeFile, TellsWhatIsReadOnly)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "old");
    EXPECT_FALSE(osIsReadOnly(path));
    ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
    EXPECT_TRUE(osIsReadOnly(path));
    EXPECT_FALSE(osIsReadOnly(folder.path("missing")));
    EXPECT_FALSE(osIsReadOnly(gtString("a\0b", 3)));
}

TEST(WholeFile, HasATemporaryNameUntilItIsWhole)
{
    EXPECT_TRUE(osIsTemporaryName(".countersign-12-0.tmp"));
    EXPECT_FALSE(osIsTemporaryName("countersign-12-0.tmp"));
    EXPECT_FALSE(osIsTemporaryName(".countersign-12-0"));
    EXPECT_FALSE(osIsTemporaryName("/.countersign-12-0.tmp"));
    EXPECT_FALSE(osIsTemporaryName(""));
}

TEST(WholeFile, NeedsAFolderThatLetsItBeMade)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "");
    EXPECT_EQ(osCheckFolderOfFile(path, true), 0);
    EXPECT_EQ(osCheckFolderOfFile("a", false), 0);
    EXPECT_EQ(osCheckFolderOfFile(folder.path("missing/a"), false), ENOENT);
    EXPECT_EQ(osCheckFolderOfFile(path + "/a", false), ENOTDIR);
    EXPECT_EQ(osCheckFolderOfFile(gtString("a\0b", 3), false), EINVAL);
    // The folder of what is overwritten, not that of the link to it.
    std::filesystem::create_symlink("missing/a", folder.path("link"));
    EXPECT_EQ(osCheckFolderOfFile(folder.path("link"), true), ENOENT);
    EXPECT_EQ(osCheckFolderOfFile(folder.path("link"), false), 0);
}

TEST(WholeFile, OfSomebodyElseIsNotReplacedInAStickyFolder)
{
    const uid_t somebody = 65534;
    if (geteuid() != 0)
    {
        GTEST_SKIP() << "only root can have files of two users";
    }
    const TemporaryFolder folder;
    const std::string path = folder.write("roots", "old");
    folder.write("own", "old");
    std::filesystem::create_symlink("roots", folder.path("link"));
    ASSERT_EQ(chown(folder.path("own").c_str(), somebody, static_cast<gid_t>(-1)), 0);
    for (const mode_t mode : {01777U, 0777U})
    {
        ASSERT_EQ(chmod(folder.path().c_str(), mode), 0);
        ASSERT_EQ(seteuid(somebody), 0);
        const int error = mode == 0777U ? 0 : EPERM;
        EXPECT_EQ(osCheckFolderOfFile(folder.path("link"), true), error);
        EXPECT_EQ(osCheckFolderOfFile(path, true), error);
        EXPECT_EQ(osWriteFileAtomically(path, "new", true)._systemError, error);
        EXPECT_EQ(osCheckFolderOfFile(path, false), 0) << "nothing would be replaced";
        EXPECT_EQ(osCheckFolderOfFile(folder.path("own"), true), 0);
        EXPECT_EQ(osCheckFolderOfFile(folder.path("none"), true), 0);
        ASSERT_EQ(seteuid(0), 0);
    }
}

TEST(WholeFile, HasNoNameUntilItIsGivenOne)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("a");
    {
        osPreparedFile file;
        ASSERT_TRUE(file.prepare(path, "bytes", false).isOk());
        EXPECT_FALSE(std::filesystem::exists(path));
        EXPECT_EQ(amountOfFiles(folder), 1);
    }
    EXPECT_EQ(amountOfFiles(folder), 0) << "nobody wants it";
    osPreparedFile first;
    osPreparedFile second;
    ASSERT_TRUE(first.prepare(path, "first", false).isOk());
    ASSERT_TRUE(second.prepare(path, "second", false).isOk());
    EXPECT_TRUE(second.giveName().isOk());
    EXPECT_EQ(first.giveName()._problem, osWritingProblem::Exists);
    EXPECT_EQ(folder.read("a"), "second");
    osPreparedFile third;
    ASSERT_TRUE(third.prepare(path, "third", true).isOk());
    EXPECT_EQ(folder.read("a"), "second");
    EXPECT_TRUE(third.giveName().isOk());
    EXPECT_EQ(folder.read("a"), "third");
}
