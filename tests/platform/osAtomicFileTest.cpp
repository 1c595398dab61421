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
