// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoPercentText.h"
#include "host/documents/hoUriList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> plain(const std::vector<gtString>& texts)
{
    std::vector<std::string> found;
    for (const gtString& text : texts)
    {
        found.emplace_back(text.asCharArray(), static_cast<std::size_t>(text.length()));
    }
    return found;
}

hoUriList read(const std::string& text)
{
    return hoReadUriList(text, "thishost");
}
}  // namespace

TEST(UriList, GivesThePathsInOrder)
{
    const hoUriList list = read("file:///b\r\nfile:///a%20c\r\n");
    EXPECT_THAT(plain(list._paths), ElementsAre("/b", "/a c"));
    EXPECT_THAT(list._refused, IsEmpty());
}

TEST(UriList, TakesEveryBytePathsCanHold)
{
    EXPECT_THAT(plain(read("file:///%ff%0a%25%E2%82%ac")._paths), ElementsAre("/\xff\n%\xe2\x82\xac"));
    EXPECT_THAT(plain(read("file:///\xff/caf\xc3\xa9")._paths), ElementsAre("/\xff/caf\xc3\xa9"));
    EXPECT_THAT(plain(read("file:///100%/%4/%zz%41")._paths), ElementsAre("/100%/%4/%zzA"));
}

TEST(UriList, TakesThisMachinesFilesOnly)
{
    const hoUriList list = read("file://localhost/a\nFILE:/b\nfile://ThisHost/c\nfile://elsewhere/d\n"
                                "http://thishost/e\nfile:relative\nfile://nopath\n/plain\nfile:///%00");
    EXPECT_THAT(plain(list._paths), ElementsAre("/a", "/b", "/c"));
    EXPECT_THAT(plain(list._refused), ElementsAre("file://elsewhere/d", "http://thishost/e", "file:relative",
                                                  "file://nopath", "/plain", "file:///%00"));
}

TEST(UriList, PassesOverRemarksAndEmptyLines)
{
    const std::string text = "# file:///remark\r\n\r\n  \n\t file:///a \r\n#\n";
    EXPECT_THAT(plain(read(text)._paths), ElementsAre("/a"));
    EXPECT_THAT(plain(read(text + std::string("\0file:///b", 10))._paths), ElementsAre("/a"));
    EXPECT_THAT(read("")._paths, IsEmpty());
}

TEST(PercentText, ComesBackForEveryByte)
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
    {
        bytes += static_cast<char>(byte);
    }
    const std::string text = hoToPercentText(bytes + bytes);
    EXPECT_EQ(hoFromPercentText(text), bytes + bytes);
    for (const char byte : text)
    {
        EXPECT_TRUE(byte > ' ' && byte < 0x7f && byte != '=');
    }
    EXPECT_EQ(hoToPercentText("/a b~"), "/a%20b~");
    EXPECT_EQ(hoFromPercentText("%"), "%");
    EXPECT_EQ(hoFromPercentText("%4"), "%4");
    EXPECT_EQ(hoFromPercentText("%4g%2F"), "%4g/");
}
