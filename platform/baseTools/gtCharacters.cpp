// SPDX-License-Identifier: Apache-2.0
#include "platform/baseTools/gtCharacters.h"

namespace
{

struct Range
{
    std::uint32_t _first;
    std::uint32_t _last;
};

constexpr Range invisible[] = {
    {0xAD, 0xAD},        // soft hyphen
    {0x34F, 0x34F},      // grapheme joiner
    {0x61C, 0x61C},      // Arabic letter mark
    {0x115F, 0x1160},    // Hangul fillers
    {0x17B4, 0x17B5},    // Khmer inherent vowels
    {0x180B, 0x180F},    // Mongolian selectors and separator
    {0x200B, 0x200F},    // zero width, marks of direction
    {0x202A, 0x202E},    // embedding and overriding of direction
    {0x2060, 0x206F},    // word joiner, invisible operators, isolates
    {0x3164, 0x3164},    // Hangul filler
    {0xFEFF, 0xFEFF},    // byte order mark
    {0xFFA0, 0xFFA0},    // half-width Hangul filler
    {0xFFF0, 0xFFFB},    // annotations
    {0x1BCA0, 0x1BCA3},  // shorthand formatting
    {0x1D173, 0x1D17A},  // musical formatting
    {0xE0000, 0xE007F},  // tags
    {0xE0100, 0xE01EF},  // variation selectors of ideographs
};

constexpr std::uint32_t firstPicture = 0x203C;

}  // namespace

gtCharacterKind gtKindOfCharacter(std::uint32_t codePoint, std::uint32_t before)
{
    if (codePoint < 0x20 || (codePoint >= 0x7F && codePoint <= 0x9F))
    {
        return gtCharacterKind::Control;
    }
    if (codePoint == 0x2028 || codePoint == 0x2029)
    {
        return gtCharacterKind::LineSeparator;
    }
    if (codePoint >= 0xFE00 && codePoint <= 0xFE0F && before < firstPicture)
    {
        return gtCharacterKind::Invisible;
    }
    for (const Range& range : invisible)
    {
        if (codePoint >= range._first && codePoint <= range._last)
        {
            return gtCharacterKind::Invisible;
        }
    }
    return gtCharacterKind::Harmless;
}
