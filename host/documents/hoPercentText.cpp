// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoPercentText.h"

#include <cstring>

namespace
{
const char* const digits = "0123456789ABCDEF";

int valueOf(char digit)
{
    if (digit >= '0' && digit <= '9')
    {
        return digit - '0';
    }
    if (digit >= 'A' && digit <= 'F')
    {
        return digit - 'A' + 10;
    }
    return digit >= 'a' && digit <= 'f' ? digit - 'a' + 10 : -1;
}

bool isPlain(char byte)
{
    const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
    const bool isDigit = byte >= '0' && byte <= '9';
    return isLetter || isDigit || (byte != '\0' && std::strchr("-._~/", byte) != nullptr);
}
}  // namespace

gtString hoToPercentText(const gtString& bytes)
{
    gtString text;
    for (const char byte : bytes.asStringView())
    {
        if (isPlain(byte))
        {
            text.append(byte);
        }
        else
        {
            const unsigned int value = static_cast<unsigned char>(byte);
            text.append('%').append(digits[value / 16]).append(digits[value % 16]);
        }
    }
    return text;
}

gtString hoFromPercentText(const gtString& text)
{
    gtString bytes;
    for (int i = 0; i < text.length(); ++i)
    {
        if (text[i] == '%' && i + 2 < text.length() && valueOf(text[i + 1]) >= 0 && valueOf(text[i + 2]) >= 0)
        {
            bytes.append(static_cast<char>(valueOf(text[i + 1]) * 16 + valueOf(text[i + 2])));
            i += 2;
        }
        else
        {
            bytes.append(text[i]);
        }
    }
    return bytes;
}
