// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoTextEncryption.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

#include "bigdigits.h"
#include "crypto/crDigits.h"
#include "crypto/crRSAEncryptionKey.h"
#include "crypto/crRSAStringEncryptor.h"
#include "host/signing/hoOpenedBlock.h"

namespace
{

// Whether the block that the text makes is below the modulus. Only its highest byte can tell: the others of the modulus
// are as good as anything.
bool isBelowModulus(const crRSAEncryptionKey& key, const gtString& text)
{
    const auto amountOfDigits = static_cast<std::size_t>(key.amountOfProductDigits());
    crTemporaryDigits digits(key.amountOfProductDigits());
    if (digits.digits() == nullptr)
    {
        throw std::bad_alloc();
    }
    const std::string_view bytes = text.asStringView();
    for (std::size_t i = 0; i < amountOfDigits * 4; ++i)
    {
        const char byte = i == 0 ? hoOpenedBlock::marker : (i <= bytes.size() ? bytes[i - 1] : hoOpenedBlock::filler);
        digits.digits()[i / 4] |= static_cast<unsigned int>(static_cast<unsigned char>(byte)) << (8 * (i % 4));
    }
    return mpCompare(digits.digits(), key.productDigits(), static_cast<unsigned int>(amountOfDigits)) < 0;
}

std::string_view withoutBlanksAround(const gtString& text)
{
    const std::string_view bytes = text.asStringView();
    const char* pBlanks = " \t\r\n";
    const std::size_t begin = bytes.find_first_not_of(pBlanks);
    return begin == std::string_view::npos ? std::string_view()
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
        if (cipher.size() < crCharactersPerDigit ||
            cipher.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        {
            return hoTextProblem::NotACipherText;
        }
        const unsigned long length = crReadDigit(cipher.data());
        const auto longest = static_cast<unsigned long>(hoLongestText(key));
        const auto wanted = static_cast<std::size_t>(length == 0 ? crCharactersPerDigit : hoLengthOfCipherText(key));
        if (length > longest || cipher.size() != wanted)
        {
            return hoTextProblem::OtherSize;
        }
        if (length == 0)
        {
            text.makeEmpty();
            return hoTextProblem::None;
        }
        const hoOpenedBlock block(key, cipher.substr(crCharactersPerDigit));
        const std::string_view found = block.text().substr(0, length);
        const bool comesOut =
            block.hasMarker() && found.find('\0') == std::string_view::npos &&
            block.text().substr(length).find_first_not_of(hoOpenedBlock::filler) == std::string_view::npos;
        if (!comesOut)
        {
            return hoTextProblem::DoesNotComeOut;
        }
        // Into its own memory: one that is given away leaves what it holds in itself.
        text.makeEmpty();
        text.reserve(static_cast<int>(found.size()));
        text.append(found);
        return hoTextProblem::None;
    }
    catch (const std::bad_alloc&)
    {
        return hoTextProblem::NoMemory;
    }
}
