// SPDX-License-Identifier: Apache-2.0
#include "platform/baseTools/gtUtf8.h"

namespace
{

constexpr std::size_t longestCharacter = 4;

unsigned int byteAt(std::string_view text, std::size_t position)
{
    return static_cast<unsigned char>(text[position]);
}

bool isContinuation(unsigned int byte)
{
    return (byte & 0xC0U) == 0x80U;
}

}  // namespace

std::size_t gtLengthOfUtf8Character(std::string_view text)
{
    if (text.empty())
    {
        return 0;
    }
    const unsigned int first = byteAt(text, 0);
    if (first < 0x80U)
    {
        return 1;
    }
    const std::size_t length = first >= 0xF0U ? 4 : (first >= 0xE0U ? 3 : 2);
    if (first < 0xC2U || first > 0xF4U || length > text.size())
    {
        return 0;
    }
    // The second byte rules out overlong forms, surrogates and what lies beyond U+10FFFF.
    const unsigned int second = byteAt(text, 1);
    const unsigned int least = first == 0xE0U ? 0xA0U : (first == 0xF0U ? 0x90U : 0x80U);
    const unsigned int most = first == 0xEDU ? 0x9FU : (first == 0xF4U ? 0x8FU : 0xBFU);
    if (second < least || second > most)
    {
        return 0;
    }
    for (std::size_t i = 2; i < length; ++i)
    {
        if (!isContinuation(byteAt(text, i)))
        {
            return 0;
        }
    }
    return length;
}

std::uint32_t gtCodePointOfUtf8Character(std::string_view character)
{
    const unsigned int first = byteAt(character, 0);
    // The first byte of a character of n > 1 bytes has n ones and a zero in front of its own bits.
    std::uint32_t codePoint = character.size() == 1 ? first : first & (0x7FU >> character.size());
    for (std::size_t i = 1; i < character.size(); ++i)
    {
        codePoint = (codePoint << 6U) | (byteAt(character, i) & 0x3FU);
    }
    return codePoint;
}

bool gtIsUtf8(std::string_view text)
{
    while (!text.empty())
    {
        const std::size_t length = gtLengthOfUtf8Character(text);
        if (length == 0)
        {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::string_view gtBeginningOfUtf8(std::string_view text, std::size_t mostBytes)
{
    if (text.size() <= mostBytes)
    {
        return text;
    }
    for (std::size_t back = 1; back < longestCharacter && back <= mostBytes; ++back)
    {
        const std::size_t start = mostBytes - back;
        if (gtLengthOfUtf8Character(text.substr(start)) > back)
        {
            return text.substr(0, start);
        }
    }
    return text.substr(0, mostBytes);
}
