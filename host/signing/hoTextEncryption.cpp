// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoTextEncryption.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>
#include <vector>

#include "bigdigits.h"
#include "crypto/crDigits.h"
#include "crypto/crRSAEncryptionKey.h"
#include "crypto/crRSAStringEncryptor.h"
#include "platform/baseTools/gtWipe.h"

namespace
{

constexpr char filler = 'd';

// Whether the block that the text makes is below the modulus. Only its highest byte can tell: the others of the modulus
// are as good as anything.
bool isBelowModulus(const crRSAEncryptionKey& key, const gtString& text)
{
    const auto amountOfDigits = static_cast<std::size_t>(key.amountOfProductDigits());
    std::vector<unsigned char> block(amountOfDigits * 4, static_cast<unsigned char>(filler));
    block[0] = 1;
    std::memcpy(&block[1], text.asCharArray(), static_cast<std::size_t>(text.length()));
    crTemporaryDigits digits(key.amountOfProductDigits());
    if (digits.digits() == nullptr)
    {
        throw std::bad_alloc();
    }
    for (std::size_t i = 0; i < block.size(); i++)
    {
        digits.digits()[i / 4] |= static_cast<unsigned int>(block[i]) << (8 * (i % 4));
    }
    gtWipe(block.data(), block.size());
    return mpCompare(digits.digits(), key.productDigits(), static_cast<unsigned int>(amountOfDigits)) < 0;
}

std::string_view withoutBlanksAround(const gtString& text)
{
    const std::string_view bytes = text.asStringView();
    const char* pBlanks = " \t\r\n";
    const std::size_t begin = bytes.find_first_not_of(pBlanks);
    return (begin == std::string_view::npos) ? std::string_view()
                                             : bytes.substr(begin, bytes.find_last_not_of(pBlanks) + 1 - begin);
}

}  // namespace

int hoLongestText(const crRSAEncryptionKey& key)
{
    return key.amountOfProductDigits() * 4 - 1;
}

int hoLengthOfCipherText(const crRSAEncryptionKey& key)
{
    return crCharactersPerDigit * (1 + key.amountOfProductDigits());
}

hoTextResult hoEncryptText(const crRSAEncryptionKey& key, const gtString& text, gtString& cipherText)
{
    if (text.length() > hoLongestText(key))
    {
        return hoTextProblem::TooLong;
    }
    if (std::strlen(text.asCharArray()) != static_cast<std::size_t>(text.length()))
    {
        return hoTextProblem::HoldsNul;
    }
    try
    {
        if (!isBelowModulus(key, text))
        {
            return hoTextProblem::TooLargeForKey;
        }
    }
    catch (const std::bad_alloc&)
    {
        return hoTextProblem::NoMemory;
    }
    return crRSAStringEncryptor(key).encrypt(text, cipherText) ? hoTextProblem::None : hoTextProblem::NoMemory;
}

hoTextResult hoDecryptText(const crRSAEncryptionKey& key, const gtString& cipherText, gtString& text)
{
    try
    {
        const std::string_view cipher = withoutBlanksAround(cipherText);
        if ((cipher.size() < crCharactersPerDigit) ||
            (cipher.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos))
        {
            return hoTextProblem::NotACipherText;
        }
        const unsigned long length = crReadDigit(cipher.data());
        const auto longest = static_cast<unsigned long>(hoLongestText(key));
        const auto wanted = static_cast<std::size_t>((length == 0) ? crCharactersPerDigit : hoLengthOfCipherText(key));
        if ((length > longest) || (cipher.size() != wanted))
        {
            return hoTextProblem::OtherSize;
        }
        if (length == 0)
        {
            text.makeEmpty();
            return hoTextProblem::None;
        }
        // Told that the text takes all of the block, the encryptor gives the filler behind the text away, too.
        const auto wholeBlock = static_cast<unsigned int>(longest);
        gtString wholeCipher;
        crAppendDigits(wholeCipher, &wholeBlock, 1);
        wholeCipher.append(cipher.substr(crCharactersPerDigit));
        gtString plain;
        plain.reserve(hoLongestText(key));
        bool isShortOfMemory = false;
        if (!crRSAStringEncryptor(key).decrypt(wholeCipher, plain, isShortOfMemory) || isShortOfMemory)
        {
            return hoTextProblem::NoMemory;
        }
        bool comesOut = plain.length() == hoLongestText(key);
        for (auto i = static_cast<int>(length); i < plain.length(); i++)
        {
            comesOut = comesOut && (plain[i] == filler);
        }
        if (comesOut)
        {
            text = gtString(plain.asCharArray(), static_cast<int>(length));
        }
        gtWipe(plain);
        return comesOut ? hoTextProblem::None : hoTextProblem::DoesNotComeOut;
    }
    catch (const std::bad_alloc&)
    {
        return hoTextProblem::NoMemory;
    }
}
