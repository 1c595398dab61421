// SPDX-License-Identifier: Apache-2.0
#include "crypto/crRSAStringEncryptor.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>

#include "bigdigits.h"
#include "crypto/crDigits.h"
#include "crypto/crRSAEncryptionKey.h"
#include "platform/baseTools/gtString.h"
#include "platform/baseTools/gtWipe.h"

#if defined(__BYTE_ORDER__) && (__BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__)
#error "the bytes of a block are its digits' bytes in memory, the least significant first"
#endif

namespace
{

constexpr int bytesPerDigit = 4;
constexpr unsigned char marker = 0x01;
constexpr unsigned char filler = 0x64;
constexpr int longestText = INT_MAX;
constexpr int maximalAmountOfCipherDigits = longestText / crCharactersPerDigit - 1;
constexpr int maximalAmountOfClaimedDigits = crRSAStringEncryptor::maximalAmountOfClaimedBytes / bytesPerDigit;

// Lays the text out in the buffer, as far as it fits.
void layOutText(unsigned char* pBuffer, int amountOfBytes, int bytesPerBlock, const char* pText, int lengthOfText)
{
    int j = 0;
    for (int taken = 0; taken < lengthOfText && j < amountOfBytes;)
    {
        pBuffer[j++] = marker;
        const int room = bytesPerBlock - 1;
        const int now = lengthOfText - taken < room ? lengthOfText - taken : room;
        std::memcpy(pBuffer + j, pText + taken, static_cast<std::size_t>(now));
        taken += now;
        j += now;
    }
    std::memset(pBuffer + j, filler, static_cast<std::size_t>(amountOfBytes - j));
}

// Appends to a text that has room for so many bytes, and makes more room if need be. A text that grows by itself would
// give its memory back with the plain text in it. Returns whether there was memory.
bool tryToAppend(gtString& output, int& room, const char* pText, int lengthOfText)
{
    try
    {
        const int wanted = output.length() + lengthOfText;
        if (wanted > room)
        {
            room = std::max(wanted, room <= longestText / 2 ? 2 * room : longestText);
            gtString larger;
            larger.reserve(room);
            larger.append(output);
            gtWipe(output);
            output = std::move(larger);
        }
        output.append(pText, lengthOfText);
    }
    catch (const std::bad_alloc&)
    {
        return false;
    }
    return true;
}

}  // namespace

crRSAStringEncryptor::crRSAStringEncryptor(const crRSAEncryptionKey& key) : _key(key) {}

int crRSAStringEncryptor::amountOfDigitsForHoldingText(int lengthOfText) const
{
    const int digitsPerBlock = _key.amountOfProductDigits();
    if (digitsPerBlock <= 0)
    {
        return 0;
    }
    // Nothing here leaves the range of int: two thousand million bytes are 500 million digits, and markers add to that
    // a quarter at most.
    const auto digitsPerBlockAsFloat = static_cast<float>(digitsPerBlock);
    const int digitsOfText = static_cast<int>(std::ceil(static_cast<float>(lengthOfText) * 0.25F));
    const int blocksOfText = static_cast<int>(std::ceil(static_cast<float>(digitsOfText) / digitsPerBlockAsFloat));
    const float bytes = static_cast<float>(lengthOfText) + static_cast<float>(blocksOfText);
    const int digits = static_cast<int>(std::ceil(bytes * 0.25F));
    const int blocks = static_cast<int>(std::ceil(static_cast<float>(digits) / digitsPerBlockAsFloat));
    return digitsPerBlock * blocks;
}

bool crRSAStringEncryptor::encrypt(const gtString& text, gtString& output) const
{
    if (!_key.isUsable())
    {
        return false;
    }
    const int lengthOfText = text.length();
    const int amountOfDigits = amountOfDigitsForHoldingText(lengthOfText);
    if (amountOfDigits > maximalAmountOfCipherDigits)
    {
        return false;
    }
    crTemporaryDigits cipher(amountOfDigits);
    {
        crTemporaryDigits plain(amountOfDigits);
        if (plain.digits() == nullptr || cipher.digits() == nullptr)
        {
            return false;
        }
        const int digitsPerBlock = _key.amountOfProductDigits();
        layOutText(reinterpret_cast<unsigned char*>(plain.digits()), amountOfDigits * bytesPerDigit,
                   digitsPerBlock * bytesPerDigit, text.asCharArray(), lengthOfText);
        for (int i = 0; i < amountOfDigits; i += digitsPerBlock)
        {
            transformBlock(cipher.digits() + i, plain.digits() + i);
        }
    }
    try
    {
        gtString result;
        const auto length = static_cast<unsigned int>(lengthOfText);
        crAppendDigits(result, &length, 1);
        crAppendDigits(result, cipher.digits(), amountOfDigits);
        output = std::move(result);
    }
    catch (const std::bad_alloc&)
    {
        return false;
    }
    return true;
}

bool crRSAStringEncryptor::decrypt(const gtString& cipherText, gtString& output) const
{
    bool isShortOfMemory = false;
    return decrypt(cipherText, output, isShortOfMemory);
}

bool crRSAStringEncryptor::decrypt(const gtString& cipherText, gtString& output, bool& isShortOfMemory,
                                   int enough) const
{
    isShortOfMemory = false;
    gtWipe(output);
    if (cipherText.length() < crCharactersPerDigit)
    {
        return false;
    }
    if (!_key.isUsable())
    {
        return true;
    }
    const int lengthOfText = static_cast<int>(crScanDigit(cipherText.asCharArray()));
    const int amountOfDigits = amountOfDigitsForHoldingText(lengthOfText);
    if (amountOfDigits < 0)
    {
        return true;
    }
    int longestOutput = longestText;
    if (amountOfDigits > cipherText.length() / crCharactersPerDigit - 1)
    {
        if (amountOfDigits >= maximalAmountOfClaimedDigits)
        {
            return true;
        }
        longestOutput = maximalAmountOfClaimedBytes;
    }
    crTemporaryDigits plain(amountOfDigits + 1);
    crTemporaryDigits cipher(amountOfDigits);
    if (plain.digits() == nullptr || cipher.digits() == nullptr)
    {
        isShortOfMemory = true;
        return true;
    }
    for (int i = 0; i < amountOfDigits; ++i)
    {
        // The text's end is a digit of zero.
        const int position = std::min((1 + i) * crCharactersPerDigit, cipherText.length());
        cipher.digits()[i] = crScanDigit(cipherText.asCharArray() + position);
    }

    const int digitsPerBlock = _key.amountOfProductDigits();
    char* pPlainText = reinterpret_cast<char*>(plain.digits());
    int room = 0;
    for (int i = 0; i < amountOfDigits; i += digitsPerBlock)
    {
        transformBlock(plain.digits() + i, cipher.digits() + i);
        // With a digit count that is too small, the place of the NUL byte can lie behind the buffer; the text then ends
        // with the extra digit at the latest, which is zero.
        pPlainText[1 + std::min(lengthOfText, amountOfDigits * bytesPerDigit)] = '\0';
        const auto length = static_cast<int>(std::strlen(pPlainText + 1));
        const bool isWithinLimit = length <= longestOutput - output.length();
        isShortOfMemory = isWithinLimit && !tryToAppend(output, room, pPlainText + 1, length);
        if (!isWithinLimit || isShortOfMemory)
        {
            gtWipe(output);
            return true;
        }
        if (output.length() > enough)
        {
            return true;
        }
    }
    return true;
}

// The result must be all zero before, and keeps to that for a block of zeros, whose power is zero.
void crRSAStringEncryptor::transformBlock(unsigned int* pResult, const unsigned int* pBlock) const
{
    const auto digitsPerBlock = static_cast<unsigned int>(_key.amountOfProductDigits());
    if (mpIsZero(pBlock, digitsPerBlock) == 0)
    {
        mpModExp(pResult, pBlock, _key.numberDigits(), _key.productDigits(), digitsPerBlock);
    }
}
