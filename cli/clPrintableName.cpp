// SPDX-License-Identifier: Apache-2.0
#include "cli/clPrintableName.h"

namespace
{

unsigned char byteAt(const std::string& text, std::size_t position)
{
    return (position < text.size()) ? static_cast<unsigned char>(text[position]) : 0;
}

// The bytes of the UTF-8 character at this position, 0 if there is none: not the overlong forms, nor surrogates, nor
// what lies above Unicode (RFC 3629).
std::size_t lengthOfCharacter(const std::string& text, std::size_t position)
{
    const unsigned char first = byteAt(text, position);
    if (first < 0x80)
    {
        return 1;
    }
    std::size_t length = 0;
    unsigned char lowest = 0x80;
    unsigned char highest = 0xBF;
    if ((first >= 0xC2) && (first <= 0xDF))
    {
        length = 2;
    }
    else if ((first >= 0xE0) && (first <= 0xEF))
    {
        length = 3;
        lowest = (first == 0xE0) ? 0xA0 : lowest;
        highest = (first == 0xED) ? 0x9F : highest;
    }
    else if ((first >= 0xF0) && (first <= 0xF4))
    {
        length = 4;
        lowest = (first == 0xF0) ? 0x90 : lowest;
        highest = (first == 0xF4) ? 0x8F : highest;
    }
    else
    {
        return 0;
    }
    for (std::size_t i = 1; i < length; i++)
    {
        const unsigned char next = byteAt(text, position + i);
        if ((next < lowest) || (next > highest))
        {
            return 0;
        }
        lowest = 0x80;
        highest = 0xBF;
    }
    return length;
}

// Control characters from 0x80 on, and the marks that turn the direction of what follows.
bool isObeyed(const std::string& text, std::size_t position, std::size_t length)
{
    const unsigned char first = byteAt(text, position);
    const unsigned char second = byteAt(text, position + 1);
    const unsigned char third = byteAt(text, position + 2);
    if (length == 2)
    {
        return (first == 0xC2) && (second < 0xA0);
    }
    return (length == 3) && (first == 0xE2) &&
           (((second == 0x80) && (((third >= 0xA8) && (third <= 0xAE)) || (third == 0x8E) || (third == 0x8F))) ||
            ((second == 0x81) && (third >= 0xA6) && (third <= 0xA9)));
}

void appendEscaped(std::string& result, unsigned char byte)
{
    switch (byte)
    {
    case '\n':
        result += "\\n";
        break;
    case '\r':
        result += "\\r";
        break;
    case '\t':
        result += "\\t";
        break;
    case '\\':
        result += "\\\\";
        break;
    default:
        result += "\\x";
        result += "0123456789abcdef"[byte >> 4];
        result += "0123456789abcdef"[byte & 0xf];
        break;
    }
}

}  // namespace

std::string clPrintableName(const std::string& name)
{
    std::string result;
    for (std::size_t i = 0; i < name.size();)
    {
        const unsigned char byte = byteAt(name, i);
        const std::size_t length = lengthOfCharacter(name, i);
        const bool isEscaped =
            (byte < 0x20) || (byte == 0x7F) || (byte == '\\') || (length == 0) || isObeyed(name, i, length);
        const std::size_t taken = (length == 0) ? 1 : length;
        for (std::size_t end = i + taken; i < end; i++)
        {
            if (isEscaped)
            {
                appendEscaped(result, byteAt(name, i));
            }
            else
            {
                result += name[i];
            }
        }
    }
    return result;
}
