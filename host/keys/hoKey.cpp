// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoKeyFile.h"

#include <memory>

#include "crypto/crDigits.h"

std::unique_ptr<const hoKey> hoKey::publicHalf() const
{
    auto pHalf = std::make_unique<hoKey>();
    pHalf->_bits = _bits;
    pHalf->_pPublicKey = _pPublicKey;
    pHalf->_pLibcryptoPublicKey = _pLibcryptoPublicKey;
    return pHalf;
}

gtString hoFixedWidthText(const unsigned int* pDigits, int amountOfDigits)
{
    gtString text;
    text.reserve(amountOfDigits * crCharactersPerDigit);
    for (int i = amountOfDigits - 1; i >= 0; --i)
    {
        crAppendDigits(text, pDigits + i, 1);
    }
    return text;
}
