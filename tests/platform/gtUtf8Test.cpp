// SPDX-License-Identifier: Apache-2.0
#include <cstdint>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "platform/baseTools/gtCharacters.h"
#include "platform/baseTools/gtUtf8.h"

namespace
{

// The bytes that UTF-8 has for a code point, as RFC 3629 spreads its bits.
std::string encoded(std::uint32_t codePoint)
{
    const auto byte = [](std::uint32_t value) { return static_cast<char>(static_cast<unsigned char>(value)); };
    if (codePoint < 0x80)
    {
        return {byte(codePoint)};
    }
    if (codePoint < 0x800)
    {
        return {byte(0xC0 | (codePoint >> 6)), byte(0x80 | (codePoint & 0x3F))};
    }
    if (codePoint < 0x10000)
    {
        return {byte(0xE0 | (codePoint >> 12)), byte(0x80 | ((codePoint >> 6) & 0x3F)),
                byte(0x80 | (codePoint & 0x3F))};
    }
    return {byte(0xF0 | (codePoint >> 18)), byte(0x80 | ((codePoint >> 12) & 0x3F)),
            byte(0x80 | ((codePoint >> 6) & 0x3F)), byte(0x80 | (codePoint & 0x3F))};
}

}  // namespace

TEST(Utf8, TakesEveryCodePointButSurrogates)
{
    for (std::uint32_t codePoint = 0; codePoint <= 0x11FFFF; ++codePoint)
    {
        const std::string bytes = encoded(codePoint);
        const bool isCharacter = (codePoint < 0xD800 || codePoint > 0xDFFF) && codePoint <= 0x10FFFF;
        ASSERT_EQ(gtLengthOfUtf8Character(bytes + "x"), isCharacter ? bytes.size() : 0) << codePoint;
        if (isCharacter)
        {
            ASSERT_EQ(gtCodePointOfUtf8Character(bytes), codePoint);
            ASSERT_EQ(gtLengthOfUtf8Character(bytes.substr(0, bytes.size() - 1)), 0U) << codePoint;
        }
    }
}

TEST(Utf8, RefusesOverlongFormsAndStrayBytes)
{
    for (const std::string bytes : {"\x80", "\xBF", "\xC0\xAF", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF",
                                    "\xF5\x80\x80\x80", "\xFF", "\xE2\x82z", "\xC3z"})
    {
        EXPECT_EQ(gtLengthOfUtf8Character(bytes), 0U);
        EXPECT_FALSE(gtIsUtf8("good" + bytes));
    }
    EXPECT_EQ(gtLengthOfUtf8Character(""), 0U);
    EXPECT_TRUE(gtIsUtf8(""));
    EXPECT_TRUE(gtIsUtf8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x99\x82"));
}

TEST(Utf8, BeginningsEndBetweenCharacters)
{
    const std::string text = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x99\x82";
    const std::size_t ends[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 10};
    for (std::size_t most = 0; most < std::size(ends); ++most)
    {
        EXPECT_EQ(gtBeginningOfUtf8(text, most), text.substr(0, ends[most])) << most;
    }
    EXPECT_EQ(gtBeginningOfUtf8("\xFF\xFF\xFF", 2), "\xFF\xFF");
}

TEST(Characters, AreHarmlessControlsOrInvisible)
{
    for (const std::uint32_t codePoint : {0x0U, 0x1FU, 0x7FU, 0x80U, 0x9FU})
    {
        EXPECT_EQ(gtKindOfCharacter(codePoint, 0), gtCharacterKind::Control) << codePoint;
    }
    for (const std::uint32_t codePoint : {0x20U, 0x7EU, 0xA0U, 0xAEU, 0xE9U, 0x20ACU, 0x1F642U, 0x10FFFDU})
    {
        EXPECT_EQ(gtKindOfCharacter(codePoint, 0), gtCharacterKind::Harmless) << codePoint;
    }
    // From the first to the last of each run, and its neighbours, which have a shape or are a blank.
    const std::pair<std::uint32_t, std::uint32_t> invisible[] = {
        {0xAD, 0xAD},       {0x34F, 0x34F},     {0x61C, 0x61C},   {0x115F, 0x1160},   {0x17B4, 0x17B5},
        {0x180B, 0x180F},   {0x200B, 0x200F},   {0x202A, 0x202E}, {0x2060, 0x206F},   {0x3164, 0x3164},
        {0xFEFF, 0xFEFF},   {0xFFA0, 0xFFA0},   {0xFFF0, 0xFFFB}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A},
        {0xE0000, 0xE007F}, {0xE0100, 0xE01EF},
    };
    for (const auto& [first, last] : invisible)
    {
        EXPECT_EQ(gtKindOfCharacter(first, 0), gtCharacterKind::Invisible) << first;
        EXPECT_EQ(gtKindOfCharacter(last, 0), gtCharacterKind::Invisible) << last;
        EXPECT_NE(gtKindOfCharacter(first - 1, 0), gtCharacterKind::Invisible) << first;
        EXPECT_NE(gtKindOfCharacter(last + 1, 0), gtCharacterKind::Invisible) << last;
    }
    EXPECT_EQ(gtKindOfCharacter(0x2027, 0), gtCharacterKind::Harmless);
    EXPECT_EQ(gtKindOfCharacter(0x2028, 0), gtCharacterKind::LineSeparator);
    EXPECT_EQ(gtKindOfCharacter(0x2029, 0), gtCharacterKind::LineSeparator);
    for (const std::uint32_t selector : {0xFE00U, 0xFE0FU})
    {
        EXPECT_EQ(gtKindOfCharacter(selector, 0x203B), gtCharacterKind::Invisible);
        EXPECT_EQ(gtKindOfCharacter(selector, 0x203C), gtCharacterKind::Harmless);
    }
    EXPECT_EQ(gtKindOfCharacter(0xFDFF, 0), gtCharacterKind::Harmless);
    EXPECT_EQ(gtKindOfCharacter(0xFE10, 0), gtCharacterKind::Harmless);
    EXPECT_EQ(gtKindOfCharacter(0xFE0F, 'a'), gtCharacterKind::Invisible);
    EXPECT_EQ(gtKindOfCharacter(0xFE0F, 0x2764), gtCharacterKind::Harmless);
}
