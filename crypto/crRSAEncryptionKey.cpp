// SPDX-License-Identifier: Apache-2.0
#include "crypto/crRSAEncryptionKey.h"

#include "bigdigits.h"
#include "crypto/crDigits.h"
#include "platform/baseTools/gtString.h"

namespace
{

constexpr int bitsPerDigit = 32;

// Compared in 64 bits: eight times a wild count must not come round to the length of a short text.
bool hasLengthForDigits(const gtString& hex, int count)
{
    return static_cast<long long>(count) * crCharactersPerDigit == hex.length();
}

}  // namespace

crRSAEncryptionKey::crRSAEncryptionKey()
    : _pProductDigits(nullptr),
      _amountOfProductBits(0),
      _pNumberDigits(nullptr),
      _amountOfNumberBits(0),
      _amountOfAllocatedDigits(0)
{
}

crRSAEncryptionKey::~crRSAEncryptionKey()
{
    crReleaseDigits(_pProductDigits, _amountOfAllocatedDigits);
    crReleaseDigits(_pNumberDigits, _amountOfAllocatedDigits);
}

int crRSAEncryptionKey::amountOfBitsPerDigit() const
{
    return bitsPerDigit;
}

int crRSAEncryptionKey::amountOfProductBits() const
{
    return _amountOfProductBits;
}

int crRSAEncryptionKey::amountOfNumberBits() const
{
    return _amountOfNumberBits;
}

int crRSAEncryptionKey::amountOfProductDigits() const
{
    return _amountOfProductBits / bitsPerDigit;
}

int crRSAEncryptionKey::amountOfNumberDigits() const
{
    return _amountOfNumberBits / bitsPerDigit;
}

const unsigned int* crRSAEncryptionKey::productDigits() const
{
    return _pProductDigits;
}

const unsigned int* crRSAEncryptionKey::numberDigits() const
{
    return _pNumberDigits;
}

bool crRSAEncryptionKey::isUsable() const
{
    const int amount = amountOfProductDigits();
    if (_pProductDigits == nullptr || _pNumberDigits == nullptr || amount != _amountOfAllocatedDigits)
    {
        return false;
    }
    // There are no arrays for an amount below 0.
    const auto amountOfDigits = static_cast<unsigned int>(amount);
    return mpSizeof(_pProductDigits, amountOfDigits) > 0 && mpSizeof(_pNumberDigits, amountOfDigits) > 0;
}

bool crRSAEncryptionKey::readDigitsFromHexString(unsigned int* digits, int count, const gtString& hex) const
{
    if (!hasLengthForDigits(hex, count))
    {
        return false;
    }
    const char* pCharacters = hex.asCharArray();
    for (int i = 0; i < count; ++i)
    {
        if (crBeginsWithDigit(pCharacters))
        {
            digits[count - 1 - i] = crReadDigit(pCharacters);
        }
        pCharacters += crCharactersPerDigit;
    }
    return true;
}

bool crRSAEncryptionKey::setKeyFromStrings(int productBits, const gtString& product, int numberBits,
                                           const gtString& number)
{
    _amountOfProductBits = productBits;
    _amountOfNumberBits = numberBits;
    if (productBits % bitsPerDigit != 0 || numberBits % bitsPerDigit != 0 || numberBits > productBits)
    {
        return false;
    }
    if (!allocateArrays())
    {
        return false;
    }
    const bool productRead = readDigitsFromHexString(_pProductDigits, amountOfProductDigits(), product);
    const bool numberRead = readDigitsFromHexString(_pNumberDigits, amountOfNumberDigits(), number);
    return productRead && numberRead;
}

bool crRSAEncryptionKey::setKeyFromStringAndFermatPrime(int bits, const gtString& product, unsigned int fermatPrime)
{
    _amountOfProductBits = bits;
    _amountOfNumberBits = bits;
    if (bits % bitsPerDigit != 0 || !allocateArrays())
    {
        return false;
    }
    const bool productRead = readDigitsFromHexString(_pProductDigits, amountOfProductDigits(), product);
    if (_amountOfAllocatedDigits > 0)
    {
        _pNumberDigits[0] = fermatPrime;
    }
    return productRead;
}

// Both arrays, by the product's count. What an earlier load left stays where it is.
bool crRSAEncryptionKey::allocateArrays()
{
    const int amount = amountOfProductDigits();
    _pProductDigits = crAllocateDigits(amount);
    _pNumberDigits = crAllocateDigits(amount);
    // With one array missing, there is only the other to wipe, and it is still all zero.
    _amountOfAllocatedDigits = amount;
    return _pProductDigits != nullptr && _pNumberDigits != nullptr;
}
