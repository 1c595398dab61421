// SPDX-License-Identifier: Apache-2.0
// Which URIs name files of this machine, and which bytes their paths have.
#include "host/desktop/hoUriList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <sys/utsname.h>

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

hoUriList read(const std::string& text)
{
    return hoReadUriList(text, "thishost");
}
}  // namespace

TEST(UriList, GivesThePathsInOrder)
{
    const hoUriList list = read("file:///b\r\nfile:///a%20c\r\n");
    EXPECT_THAT(list._paths, ElementsAre("/b", "/a c"));
    EXPECT_THAT(list._refused, IsEmpty());
}

TEST(UriList, TakesEveryBytePathsCanHold)
{
    EXPECT_THAT(read("file:///%ff%0a%25%E2%82%ac")._paths, ElementsAre("/\xff\n%\xe2\x82\xac"));
    EXPECT_THAT(read("file:///\xff/caf\xc3\xa9")._paths, ElementsAre("/\xff/caf\xc3\xa9"));
    EXPECT_THAT(read("file:///100%25/%41")._paths, ElementsAre("/100%/A"));
}

TEST(UriList, TakesThisMachinesFilesOnly)
{
    const hoUriList list =
        read("file://localhost/a\nFILE:/b\nfile://ThisHost/c\nfile://elsewhere/d\n"
             "http://thishost/e\nfile:relative\nfile://nopath\n/plain\nfile:///%00\nfile:///100%/%zz");
    EXPECT_THAT(list._paths, ElementsAre("/a", "/b", "/c"));
    EXPECT_THAT(list._refused, ElementsAre("file://elsewhere/d", "http://thishost/e", "file:relative", "file://nopath",
                                           "/plain", "file:///%00", "file:///100%/%zz"));
}

TEST(UriList, PassesOverRemarksAndEmptyLines)
{
    const std::string text = "# file:///remark\r\n\r\n  \n\t file:///a \r\n#\n";
    EXPECT_THAT(read(text)._paths, ElementsAre("/a"));
    EXPECT_THAT(read(text + std::string("\0file:///b", 10))._paths, ElementsAre("/a"));
    EXPECT_THAT(read("")._paths, IsEmpty());
}

TEST(UriList, PathsOfThisMachineAreTheSameForTheBus)
{
    EXPECT_EQ(hoPathOfUri("file:///a%20b", "thishost"), "/a b");
    EXPECT_EQ(hoPathOfUri("file://THISHOST/a", "thishost"), "/a");
    EXPECT_TRUE(hoPathOfUri("file://elsewhere/a", "thishost").isEmpty());
    EXPECT_FALSE(hoThisHost().isEmpty());
}

TEST(UriList, KnowsThisHost)
{
    struct utsname names = {};
    ASSERT_EQ(uname(&names), 0);
    // A shell's own idea of it does not count.
    const char* const pBefore = std::getenv("HOSTNAME");
    const std::string before = pBefore == nullptr ? "" : pBefore;
    setenv("HOSTNAME", "elsewhere.invalid", 1);
    EXPECT_EQ(hoThisHost(), names.nodename);
    setenv("HOSTNAME", before.c_str(), 1);
}
