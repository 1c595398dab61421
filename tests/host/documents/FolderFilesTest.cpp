// SPDX-License-Identifier: Apache-2.0
// What is below a folder.
#include "tests/support/TemporaryFolder.h"

#include "host/documents/hoFolderFiles.h"

#include <cerrno>
#include <sys/stat.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

bool never()
{
    return false;
}
}  // namespace

TEST(FolderFiles, AreRegularOnesInTheOrderOfTheirNames)
{
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.path("all/b/deep"));
    std::filesystem::create_directories(folder.path("all/empty"));
    std::vector<gtString> expected;
    for (const char* const pName : {"all/.hidden", "all/a", "all/b/deep/x", "all/b/y", "all/c.sig"})
    {
        expected.emplace_back(folder.write(pName, "text"));
    }
    folder.write("all/.countersign-12-0.tmp", "half");
    folder.write("outside", "text");
    std::filesystem::create_symlink("../outside", folder.path("all/link"));
    std::filesystem::create_directory_symlink("..", folder.path("all/loop"));
    ASSERT_EQ(::mkfifo(folder.path("all/pipe").c_str(), 0600), 0);
    const hoFolderFiles files = hoFilesBelow(folder.path("all"), never);
    EXPECT_EQ(files._paths, expected);
    EXPECT_THAT(files._unreadable, IsEmpty());

    std::filesystem::create_directory_symlink("all/b", folder.path("named"));
    EXPECT_THAT(hoFilesBelow(folder.path("named"), never)._paths,
                ElementsAre(folder.path("named/deep/x"), folder.path("named/y")));
    EXPECT_THAT(hoFilesBelow(folder.path("named/"), never)._paths,
                ElementsAre(folder.path("named/deep/x"), folder.path("named/y")));
}

TEST(FolderFiles, ThatCannotBeReadAreTold)
{
    const TemporaryFolder folder;
    const gtString file = folder.write("file", "text");
    for (const gtString& path : {gtString(folder.path("missing")), file, gtString()})
    {
        const hoFolderFiles files = hoFilesBelow(path, never);
        EXPECT_THAT(files._paths, IsEmpty());
        ASSERT_EQ(files._unreadable.size(), 1u);
        EXPECT_EQ(files._unreadable[0]._path, path);
        EXPECT_EQ(files._unreadable[0]._error, path == file ? ENOTDIR : ENOENT);
    }
}

TEST(FolderFiles, EndWhenAsked)
{
    const TemporaryFolder folder;
    folder.write("a", "text");
    EXPECT_THAT(hoFilesBelow(folder.path(), [] { return true; })._paths, IsEmpty());
    int asked = 0;
    hoFilesBelow(folder.path(), [&asked] { return ++asked > 1; });
    EXPECT_EQ(asked, 2);
}
