// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoKeyMaker.h"

#include <cstddef>
#include <new>
#include <utility>

#include <openssl/core_names.h>
#include <openssl/param_build.h>

#include "host/keys/hoSecretBytes.h"
#include "platform/baseTools/gtWipe.h"

namespace
{

using NumberContext = std::unique_ptr<BN_CTX, hoReleaser<BN_CTX, BN_CTX_free>>;
using NumberParameters = std::unique_ptr<OSSL_PARAM_BLD, hoReleaser<OSSL_PARAM_BLD, OSSL_PARAM_BLD_free>>;
using Parameters = std::unique_ptr<OSSL_PARAM, hoReleaser<OSSL_PARAM, OSSL_PARAM_free>>;

constexpr int bitsPerDigit = 32;

// libcrypto's key of these two numbers alone; null without memory.
hoLibcryptoKey makePublicHalf(const hoBigNumber& modulus, const hoBigNumber& exponent)
{
    const NumberParameters list(OSSL_PARAM_BLD_new());
    if (list == nullptr || OSSL_PARAM_BLD_push_BN(list.get(), OSSL_PKEY_PARAM_RSA_N, modulus.get()) != 1 ||
        OSSL_PARAM_BLD_push_BN(list.get(), OSSL_PKEY_PARAM_RSA_E, exponent.get()) != 1)
    {
        return nullptr;
    }
    const Parameters parameters(OSSL_PARAM_BLD_to_param(list.get()));
    const hoKeyContext context(EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr));
    EVP_PKEY* pKey = nullptr;
    if (parameters != nullptr && context != nullptr && EVP_PKEY_fromdata_init(context.get()) > 0 &&
        EVP_PKEY_fromdata(context.get(), &pKey, EVP_PKEY_PUBLIC_KEY, parameters.get()) <= 0)
    {
        pKey = nullptr;
    }
    return hoLibcryptoKey(pKey);
}

// Whether the private exponent undoes the public one, tried on one number.
bool exponentsFit(const BIGNUM* pModulus, const BIGNUM* pPublicExponent, BIGNUM* pPrivateExponent)
{
    const NumberContext context(BN_CTX_new());
    const hoBigNumber number(BN_new());
    BN_set_flags(pPrivateExponent, BN_FLG_CONSTTIME);
    return context != nullptr && number != nullptr && BN_set_word(number.get(), 2) == 1 &&
           BN_mod_exp(number.get(), number.get(), pPublicExponent, pModulus, context.get()) == 1 &&
           BN_mod_exp(number.get(), number.get(), pPrivateExponent, pModulus, context.get()) == 1 &&
           BN_is_word(number.get(), 2) == 1;
}

// Of so many digits, which the number must fit. To be wiped when it is secret.
void fixedWidthText(const BIGNUM* pNumber, int amountOfDigits, gtString& text)
{
    const int amountOfBytes = amountOfDigits * 4;
    hoSecretBytes bytes(static_cast<std::size_t>(amountOfBytes));
    if (bytes.bytes() == nullptr)
    {
        throw std::bad_alloc();
    }
    BN_bn2binpad(pNumber, reinterpret_cast<unsigned char*>(bytes.bytes()), amountOfBytes);
    text.reserve(amountOfBytes * 2);
    for (int i = 0; i < amountOfBytes; ++i)
    {
        const auto byte = static_cast<unsigned char>(bytes.bytes()[i]);
        text.append("0123456789abcdef"[byte >> 4]);
        text.append("0123456789abcdef"[byte & 0xf]);
    }
}

// Whether the number is an exponent that a key of the modulus can have.
bool isExponent(const hoBigNumber& number, const hoBigNumber& modulus)
{
    return number != nullptr && BN_is_negative(number.get()) == 0 && BN_is_zero(number.get()) == 0 &&
           BN_cmp(number.get(), modulus.get()) < 0;
}

bool holdsBy(int (*check)(EVP_PKEY_CTX*), const hoLibcryptoKey& key)
{
    const hoKeyContext context(EVP_PKEY_CTX_new_from_pkey(nullptr, key.get(), nullptr));
    if (context == nullptr)
    {
        throw std::bad_alloc();
    }
    return check(context.get()) == 1;
}

// Whether texts under the key are no longer what they were, and cannot be had back by everybody. libcrypto's check
// knows no modulus of less than 512 bits.
bool isSafe(const hoBigNumber& modulus, const hoBigNumber& exponent, const hoLibcryptoKey& publicHalf, int bits)
{
    const int leastCheckedBits = 512;
    return BN_is_odd(modulus.get()) == 1 && BN_is_odd(exponent.get()) == 1 && BN_is_one(exponent.get()) == 0 &&
           (bits < leastCheckedBits || bits > hoMostCheckedBits || holdsBy(EVP_PKEY_public_check, publicHalf));
}

}  // namespace

hoBigNumber hoNumberOfKey(const hoLibcryptoKey& key, const char* pName)
{
    BIGNUM* pNumber = nullptr;
    EVP_PKEY_get_bn_param(key.get(), pName, &pNumber);
    return hoBigNumber(pNumber);
}

std::unique_ptr<const hoKey> hoKeyMaker::makeKey(hoLibcryptoKey& anyKey, hoKeyFileFacts& facts)
{
    const hoBigNumber modulus = hoNumberOfKey(anyKey, OSSL_PKEY_PARAM_RSA_N);
    const hoBigNumber publicExponent = hoNumberOfKey(anyKey, OSSL_PKEY_PARAM_RSA_E);
    if (modulus == nullptr || !isExponent(publicExponent, modulus))
    {
        facts._problem = hoKeyFileProblem::Damaged;
        return nullptr;
    }
    facts._bits = BN_num_bits(modulus.get());
    if (facts._bits % bitsPerDigit != 0 || facts._bits > hoLargestKeyBits)
    {
        facts._problem = hoKeyFileProblem::SizeNotSupported;
        return nullptr;
    }
    hoLibcryptoKey publicHalf = makePublicHalf(modulus, publicExponent);
    if (publicHalf == nullptr)
    {
        facts._problem = hoKeyFileProblem::NoMemory;
        return nullptr;
    }
    if (!isSafe(modulus, publicExponent, publicHalf, facts._bits))
    {
        facts._problem = hoKeyFileProblem::Unsafe;
        return nullptr;
    }
    hoBigNumber privateExponent;
    if (facts._isPrivate)
    {
        privateExponent = hoNumberOfKey(anyKey, OSSL_PKEY_PARAM_RSA_D);
        if (!isExponent(privateExponent, modulus) ||
            !exponentsFit(modulus.get(), publicExponent.get(), privateExponent.get()) ||
            (facts._bits <= hoMostCheckedBits && !holdsBy(EVP_PKEY_check, anyKey)))
        {
            facts._problem = hoKeyFileProblem::Damaged;
            return nullptr;
        }
    }

    auto pKey = std::make_unique<hoKey>();
    pKey->_bits = facts._bits;
    const auto pPublicKey = std::make_shared<crRSAEncryptionKey>();
    bool isLoaded = load(*pPublicKey, modulus, publicExponent, facts._bits);
    pKey->_pPublicKey = pPublicKey;
    if (facts._isPrivate)
    {
        pKey->_pPrivateKey = std::make_unique<crRSAEncryptionKey>();
        isLoaded = load(*pKey->_pPrivateKey, modulus, privateExponent, facts._bits) && isLoaded;
    }
    if (!isLoaded)
    {
        facts._problem = hoKeyFileProblem::NoMemory;
        return nullptr;
    }
    pKey->_pLibcryptoPublicKey = std::shared_ptr<EVP_PKEY>(std::move(publicHalf));
    if (facts._isPrivate)
    {
        pKey->_pLibcryptoPrivateKey = std::shared_ptr<EVP_PKEY>(std::move(anyKey));
    }
    return pKey;
}

bool hoKeyMaker::load(crRSAEncryptionKey& key, const hoBigNumber& modulus, const hoBigNumber& exponent, int bits)
{
    const int digitsOfExponent = (BN_num_bits(exponent.get()) + bitsPerDigit - 1) / bitsPerDigit;
    gtWipedText modulusText;
    gtWipedText exponentText;
    fixedWidthText(modulus.get(), bits / bitsPerDigit, modulusText._text);
    fixedWidthText(exponent.get(), digitsOfExponent, exponentText._text);
    return key.setKeyFromStrings(bits, modulusText._text, digitsOfExponent * bitsPerDigit, exponentText._text);
}
