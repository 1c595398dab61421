// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoDisplayText.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{
std::string shown(const std::string& bytes, std::size_t most = hoMostCharactersShown)
{
    return hoDisplayText(gtString(bytes.data(), static_cast<int>(bytes.size())), most).utf8_string();
}
}  // namespace

TEST(DisplayText, LeavesOrdinaryTextAlone)
{
    for (const char* text : {"", "notes.txt", "caf\xc3\xa9 \xe6\x97\xa5\xe6\x9c\xac \xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d",
                             "\xf0\x9f\x98\x80", " & % \\ \" '"})
    {
        EXPECT_EQ(shown(text), text);
    }
}

TEST(DisplayText, ShowsControlCharactersAsPictures)
{
    EXPECT_EQ(shown("a\nb\tc\x7f"), "a\xe2\x90\x8a"
                                    "b\xe2\x90\x89"
                                    "c\xe2\x90\xa1");
    EXPECT_EQ(shown(std::string("\0", 1)), "\xe2\x90\x80");
    for (char control = 0; control < 0x20; ++control)
    {
        const wxString text = hoDisplayText(gtString(&control, 1));
        ASSERT_EQ(text.length(), 1U);
        EXPECT_EQ(text[0].GetValue(), 0x2400U + static_cast<unsigned int>(control));
    }
}

TEST(DisplayText, HidesNoInvisibleCharacters)
{
    const std::string replaced = "a\xef\xbf\xbd"
                                 "b";
    EXPECT_EQ(shown("a\xe2\x80\xae"
                    "b"),
              replaced);  // right-to-left override
    EXPECT_EQ(shown("a\xe2\x81\xa6"
                    "b"),
              replaced);  // isolate
    EXPECT_EQ(shown("a\xe2\x80\x8b"
                    "b"),
              replaced);  // space of no width
    EXPECT_EQ(shown("a\xef\xbb\xbf"
                    "b"),
              replaced);  // byte order mark
    EXPECT_EQ(shown("a\xc2\x85"
                    "b"),
              replaced);  // a control character of eight bits
    EXPECT_EQ(shown("a\xe2\x80\xa8"
                    "b"),
              "a\xe2\x90\xa4"
              "b");  // line separator
}

TEST(DisplayText, NeverGetsEmptyByBytesThatAreNoText)
{
    EXPECT_EQ(shown("a\xff"
                    "b"),
              "a\xc3\xbf"
              "b");
    EXPECT_EQ(shown("\xed\xa0\x80").empty(), false);
    EXPECT_EQ(shown("\xf5\x80\x80\x80").empty(), false);
}

TEST(DisplayText, LosesItsMiddleWhenItIsLong)
{
    EXPECT_EQ(shown("0123456789", 10), "0123456789");
    EXPECT_EQ(shown("0123456789.txt", 10), "012345\xe2\x80\xa6"
                                           "txt");
    const std::string text = shown(std::string(1000000, 'x') + ".end");
    EXPECT_EQ(hoDisplayText(gtString(text.c_str())).length(), hoMostCharactersShown);
    EXPECT_EQ(text.substr(text.size() - 4), ".end");
}

TEST(TimeText, IsLocalTimeThatSorts)
{
    setenv("TZ", "UTC-2", 1);
    tzset();
    EXPECT_EQ(hoTimeText(1234567890), "2009-02-14 01:31");
    EXPECT_EQ(hoTimeText(1234567890, true), "2009-02-14 01:31:30");
    EXPECT_EQ(hoTimeText(std::numeric_limits<std::int64_t>::max()), "?");
    unsetenv("TZ");
    tzset();
}
