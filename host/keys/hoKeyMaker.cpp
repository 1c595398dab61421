// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoKeyMaker.h"

#include <cstddef>
#include <new>
#include <utility>

#include <openssl/core_names.h>
#include <openssl/err.h>
#include <openssl/param_build.h>

#include "host/keys/hoPrivateNumbers.h"
#include "host/keys/hoSecretBytes.h"
#include "platform/baseTools/gtWipe.h"

namespace
{

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

// The problem where one number is not what it must be.
hoKeyFileProblem problemOf(hoPrimality found, hoPrimality wanted, hoKeyFileProblem otherwise, const hoGoesOn& goesOn)
{
    if (found == wanted)
    {
        return hoKeyFileProblem::None;
    }
    if (found != hoPrimality::Unknown)
    {
        return otherwise;
    }
    return goesOn && !goesOn() ? hoKeyFileProblem::Cancelled : hoKeyFileProblem::NoMemory;
}

bool passesPublicCheck(const hoLibcryptoKey& key)
{
    const hoKeyContext context(EVP_PKEY_CTX_new_from_pkey(nullptr, key.get(), nullptr));
    if (context == nullptr)
    {
        throw std::bad_alloc();
    }
    return EVP_PKEY_public_check(context.get()) == 1;
}

// Unsafe where texts under the key stay what they are, or everybody can have them back.
hoKeyFileProblem publicProblem(const hoBigNumber& modulus, const hoBigNumber& exponent,
                               const hoLibcryptoKey& publicHalf, BN_CTX* pContext, const hoGoesOn& goesOn)
{
    if (BN_is_odd(modulus.get()) == 0 || BN_is_odd(exponent.get()) == 0 || BN_is_one(exponent.get()) == 1)
    {
        return hoKeyFileProblem::Unsafe;
    }
    const int bits = BN_num_bits(modulus.get());
    if (bits > hoMostCheckedBits)
    {
        return hoKeyFileProblem::None;
    }
    // libcrypto's check does the same, and cannot be ended; with a composite number it is quick.
    const hoPrimality primality = hoTestPrimality(modulus.get(), pContext, goesOn);
    const hoKeyFileProblem problem = problemOf(primality, hoPrimality::Composite, hoKeyFileProblem::Unsafe, goesOn);
    // libcrypto's check knows no smaller modulus.
    const int leastCheckedBits = 512;
    if (problem != hoKeyFileProblem::None || bits < leastCheckedBits || passesPublicCheck(publicHalf))
    {
        return problem;
    }
    return hoKeyFileProblem::Unsafe;
}

hoKeyFileProblem privateProblem(const hoLibcryptoKey& key, int bits, BN_CTX* pContext, const hoGoesOn& goesOn)
{
    if (!hoPrivateNumbersFit(key, pContext))
    {
        const bool isMemory = ERR_GET_REASON(ERR_peek_last_error()) == ERR_R_MALLOC_FAILURE;
        return isMemory ? hoKeyFileProblem::NoMemory : hoKeyFileProblem::Damaged;
    }
    return bits > hoMostCheckedBits
               ? hoKeyFileProblem::None
               : problemOf(hoTestFactors(key, pContext, goesOn), hoPrimality::Prime, hoKeyFileProblem::Damaged, goesOn);
}

}  // namespace

hoBigNumber hoNumberOfKey(const hoLibcryptoKey& key, const char* pName)
{
    BIGNUM* pNumber = nullptr;
    EVP_PKEY_get_bn_param(key.get(), pName, &pNumber);
    return hoBigNumber(pNumber);
}

std::unique_ptr<const hoKey> hoKeyMaker::makeKey(hoLibcryptoKey& anyKey, hoKeyFileFacts& facts, const hoGoesOn& goesOn)
{
    const hoBigNumber modulus = hoNumberOfKey(anyKey, OSSL_PKEY_PARAM_RSA_N);
    const hoBigNumber publicExponent = hoNumberOfKey(anyKey, OSSL_PKEY_PARAM_RSA_E);
    facts._bits = modulus == nullptr ? 0 : BN_num_bits(modulus.get());
    if (modulus == nullptr || !isExponent(publicExponent, modulus))
    {
        facts._problem = hoKeyFileProblem::Damaged;
        return nullptr;
    }
    if (facts._bits % bitsPerDigit != 0 || facts._bits > hoLargestKeyBits)
    {
        facts._problem = hoKeyFileProblem::SizeNotSupported;
        return nullptr;
    }
    hoLibcryptoKey publicHalf = makePublicHalf(modulus, publicExponent);
    const hoNumberContext context(BN_CTX_secure_new());
    if (publicHalf == nullptr || context == nullptr)
    {
        facts._problem = hoKeyFileProblem::NoMemory;
        return nullptr;
    }
    facts._problem = publicProblem(modulus, publicExponent, publicHalf, context.get(), goesOn);
    if (facts._problem != hoKeyFileProblem::None)
    {
        return nullptr;
    }
    hoBigNumber privateExponent;
    if (facts._isPrivate)
    {
        privateExponent = hoNumberOfKey(anyKey, OSSL_PKEY_PARAM_RSA_D);
        facts._problem = isExponent(privateExponent, modulus)
                             ? privateProblem(anyKey, facts._bits, context.get(), goesOn)
                             : hoKeyFileProblem::Damaged;
        if (facts._problem != hoKeyFileProblem::None)
        {
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
