// SPDX-License-Identifier: Apache-2.0
#include "cli/clPrintableName.h"

#include <set>

#include <gtest/gtest.h>

TEST(PrintableName, LeavesWhatCanBeShown)
{
    for (const std::string name : {"", "report.pdf", "with blanks", "Ma\xC3\x9F und Zahl", "\xE6\x97\xA5\xE6\x9C\xAC",
                                   "\xF0\x9F\x99\x82", "'\"$&"})
    {
        EXPECT_EQ(clPrintableName(name), name);
    }
}

TEST(PrintableName, EscapesWhatATerminalObeys)
{
    EXPECT_EQ(clPrintableName("a\nb\tc\rd"), "a\\nb\\tc\\rd");
    EXPECT_EQ(clPrintableName("\x1b[31m\x7f"), "\\x1b[31m\\x7f");
    EXPECT_EQ(clPrintableName("back\\slash"), "back\\\\slash");
    EXPECT_EQ(clPrintableName(std::string("a\0b", 3)), "a\\x00b");
    // A control character of two bytes, and a mark that turns the direction.
    EXPECT_EQ(clPrintableName("\xC2\x9B"), "\\xc2\\x9b");
    EXPECT_EQ(clPrintableName("\xE2\x80\xAE"), "\\xe2\\x80\\xae");
    EXPECT_EQ(clPrintableName("\xE2\x81\xA6"), "\\xe2\\x81\\xa6");
}

TEST(PrintableName, EscapesWhatCannotBeSeen)
{
    EXPECT_EQ(clPrintableName("a\xD8\x9C"), "a\\xd8\\x9c");           // U+061C
    EXPECT_EQ(clPrintableName("a\xE2\x80\x8B"), "a\\xe2\\x80\\x8b");  // U+200B
    EXPECT_EQ(clPrintableName("a\xC2\xAD"), "a\\xc2\\xad");           // U+00AD
    EXPECT_EQ(clPrintableName("a\xEF\xBB\xBF"), "a\\xef\\xbb\\xbf");  // U+FEFF
    EXPECT_EQ(clPrintableName("a\xEF\xB8\x8F"), "a\\xef\\xb8\\x8f");  // U+FE0F behind a letter
    const std::string heart = "\xE2\x9D\xA4\xEF\xB8\x8F";             // and behind a picture
    EXPECT_EQ(clPrintableName(heart), heart);
}

TEST(PrintableName, EscapesWhatIsNoUtf8)
{
    EXPECT_EQ(clPrintableName("\xff"), "\\xff");
    EXPECT_EQ(clPrintableName("\xC3"), "\\xc3");
    EXPECT_EQ(clPrintableName("\xC3z"), "\\xc3z");
    EXPECT_EQ(clPrintableName("\xC0\xAF"), "\\xc0\\xaf");
    EXPECT_EQ(clPrintableName("\xE0\x80\xAF"), "\\xe0\\x80\\xaf");
    EXPECT_EQ(clPrintableName("\xED\xA0\x80"), "\\xed\\xa0\\x80");
    EXPECT_EQ(clPrintableName("\xF4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
    EXPECT_EQ(clPrintableName("\xF0\x9F\x99"), "\\xf0\\x9f\\x99");
}

TEST(PrintableName, KeepsDifferentNamesDifferent)
{
    std::set<gtString> seen;
    for (unsigned int first = 0; first < 256; ++first)
    {
        for (unsigned int second = 0; second < 256; ++second)
        {
            std::string name;
            name += static_cast<char>(first);
            name += static_cast<char>(second);
            EXPECT_TRUE(seen.insert(clPrintableName(name)).second) << first << " " << second;
        }
    }
    EXPECT_NE(clPrintableName("\n"), clPrintableName("\\n"));
}
