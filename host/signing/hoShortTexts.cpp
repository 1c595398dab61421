// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoShortTexts.h"

#include "crypto/crDigits.h"
#include "crypto/crRSAEncryptionKey.h"
#include "crypto/crRSAStringEncryptor.h"
#include "platform/baseTools/gtUtf8.h"

#include <cstddef>
#include <cstdio>

namespace
{

const std::size_t bytesInALine = 16;

}  // namespace

hoReadableText hoDecryptForReading(const crRSAEncryptionKey& key, const gtString& cipherText)
{
    hoReadableText result;
    static_cast<hoTextResult&>(result) = hoDecryptText(key, cipherText, result._bytes);
    if (result.isOk())
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
    return text.find('\0') == std::string_view::npos && gtIsUtf8(text);
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
