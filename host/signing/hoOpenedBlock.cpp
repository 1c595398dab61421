// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoOpenedBlock.h"

#include "bigdigits.h"
#include "crypto/crDigits.h"
#include "crypto/crRSAEncryptionKey.h"

#include <openssl/crypto.h>

#include <new>

namespace
{
constexpr int bytesPerDigit = 4;
}  // namespace

hoOpenedBlock::hoOpenedBlock(const crRSAEncryptionKey& key, std::string_view cipherDigits)
{
    const int amount = key.amountOfProductDigits();
    if (!key.isUsable() || cipherDigits.size() != static_cast<std::size_t>(amount) * crCharactersPerDigit)
    {
        return;
    }
    crTemporaryDigits cipher(amount);
    crTemporaryDigits plain(amount);
    if (cipher.digits() == nullptr || plain.digits() == nullptr)
    {
        throw std::bad_alloc();
    }
    for (int i = 0; i < amount; ++i)
    {
        cipher.digits()[i] = crReadDigit(cipherDigits.data() + static_cast<std::ptrdiff_t>(i) * crCharactersPerDigit);
    }
    const auto length = static_cast<unsigned int>(amount);
    if (mpCompare(cipher.digits(), key.productDigits(), length) >= 0)
    {
        return;
    }
    _bytes.resize(static_cast<std::size_t>(amount) * bytesPerDigit);
    // A power of zero is zero, which the digits are.
    if (mpIsZero(cipher.digits(), length) == 0)
    {
        mpModExp(plain.digits(), cipher.digits(), key.numberDigits(), key.productDigits(), length);
    }
    for (std::size_t i = 0; i < _bytes.size(); ++i)
    {
        const unsigned int digit = plain.digits()[i / bytesPerDigit];
        _bytes[i] = static_cast<char>(static_cast<unsigned char>(digit >> (8 * (i % bytesPerDigit))));
    }
}

hoOpenedBlock::~hoOpenedBlock()
{
    OPENSSL_cleanse(_bytes.data(), _bytes.size());
}

bool hoOpenedBlock::hasMarker() const
{
    return isOpen() && _bytes.front() == marker;
}

std::string_view hoOpenedBlock::text() const
{
    return isOpen() ? std::string_view(_bytes.data(), _bytes.size()).substr(1) : std::string_view();
}
