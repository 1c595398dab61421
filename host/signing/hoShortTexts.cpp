// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoShortTexts.h"

#include "crypto/crDigits.h"
#include "crypto/crRSAEncryptionKey.h"
#include "crypto/crRSAStringEncryptor.h"

#include <cstddef>
#include <cstdio>

namespace
{

const std::size_t bytesInALine = 16;

// How many bytes the character at the position has; 0 when there is none that is well formed.
std::size_t lengthOfCharacter(std::string_view bytes, std::size_t position)
{
    const auto at = [&](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
    const unsigned int first = at(position);
    if (first < 0x80U)
    {
        return 1;
    }
    const std::size_t length = first >= 0xF0U ? 4 : (first >= 0xE0U ? 3 : 2);
    if (first < 0xC2U || first > 0xF4U || position + length > bytes.size())
    {
        return 0;
    }
    // The second byte rules out overlong forms, surrogates and what lies beyond U+10FFFF.
    const unsigned int second = at(position + 1);
    const unsigned int least = first == 0xE0U ? 0xA0U : (first == 0xF0U ? 0x90U : 0x80U);
    const unsigned int most = first == 0xEDU ? 0x9FU : (first == 0xF4U ? 0x8FU : 0xBFU);
    if (second < least || second > most)
    {
        return 0;
    }
    for (std::size_t i = 2; i < length; ++i)
    {
        if ((at(position + i) & 0xC0U) != 0x80U)
        {
            return 0;
        }
    }
    return length;
}

}  // namespace

hoReadableText hoDecryptForReading(const crRSAEncryptionKey& key, const gtString& cipherText)
{
    hoReadableText result;
    result._problem = hoDecryptText(key, cipherText, result._bytes);
    if (result._problem == hoTextProblem::None)
    {
        result._isText = hoIsReadable(result._bytes);
    }
    else if (result._problem == hoTextProblem::DoesNotComeOut)
    {
        // Its form has been found right: with blanks around it and nothing else.
        const std::string_view cipher = cipherText.asStringView();
        const std::size_t begin = cipher.find_first_not_of(" \t\r\n");
        result._bytes.reserve(hoLongestText(key));
        static_cast<void>(crRSAStringEncryptor(key).decrypt(cipher.substr(begin), result._bytes));
    }
    return result;
}

bool hoIsReadable(const gtString& bytes)
{
    const std::string_view text = bytes.asStringView();
    std::size_t position = 0;
    while (position < text.size())
    {
        const std::size_t length = text[position] == '\0' ? 0 : lengthOfCharacter(text, position);
        if (length == 0)
        {
            return false;
        }
        position += length;
    }
    return true;
}

gtString hoHexDump(const gtString& bytes)
{
    const std::string_view all = bytes.asStringView();
    std::string dump;
    for (std::size_t begin = 0; begin < all.size(); begin += bytesInALine)
    {
        char number[24];
        static_cast<void>(std::snprintf(number, sizeof number, "%08zx ", begin));
        dump += number;
        std::string right;
        for (std::size_t i = 0; i < bytesInALine; ++i)
        {
            dump += i == bytesInALine / 2 ? "  " : " ";
            if (begin + i < all.size())
            {
                const auto byte = static_cast<unsigned char>(all[begin + i]);
                static_cast<void>(std::snprintf(number, sizeof number, "%02x", static_cast<unsigned int>(byte)));
                dump += number;
                right += byte >= 0x20U && byte < 0x7FU ? static_cast<char>(byte) : '.';
            }
            else
            {
                dump += "  ";
            }
        }
        dump += "  |" + right + "|\n";
    }
    return dump;
}
