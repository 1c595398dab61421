// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoPrivateNumbers.h"

#include <cstddef>
#include <vector>

#include <openssl/core_names.h>

#include "host/keys/hoKeyMaker.h"

namespace
{

constexpr const char* factorNames[] = {
    OSSL_PKEY_PARAM_RSA_FACTOR1, OSSL_PKEY_PARAM_RSA_FACTOR2, OSSL_PKEY_PARAM_RSA_FACTOR3, OSSL_PKEY_PARAM_RSA_FACTOR4,
    OSSL_PKEY_PARAM_RSA_FACTOR5, OSSL_PKEY_PARAM_RSA_FACTOR6, OSSL_PKEY_PARAM_RSA_FACTOR7, OSSL_PKEY_PARAM_RSA_FACTOR8,
    OSSL_PKEY_PARAM_RSA_FACTOR9, OSSL_PKEY_PARAM_RSA_FACTOR10};

// The private exponent for each factor.
constexpr const char* exponentNames[] = {OSSL_PKEY_PARAM_RSA_EXPONENT1, OSSL_PKEY_PARAM_RSA_EXPONENT2,
                                         OSSL_PKEY_PARAM_RSA_EXPONENT3, OSSL_PKEY_PARAM_RSA_EXPONENT4,
                                         OSSL_PKEY_PARAM_RSA_EXPONENT5, OSSL_PKEY_PARAM_RSA_EXPONENT6,
                                         OSSL_PKEY_PARAM_RSA_EXPONENT7, OSSL_PKEY_PARAM_RSA_EXPONENT8,
                                         OSSL_PKEY_PARAM_RSA_EXPONENT9, OSSL_PKEY_PARAM_RSA_EXPONENT10};

// One for every factor but the first.
constexpr const char* coefficientNames[] = {
    OSSL_PKEY_PARAM_RSA_COEFFICIENT1, OSSL_PKEY_PARAM_RSA_COEFFICIENT2, OSSL_PKEY_PARAM_RSA_COEFFICIENT3,
    OSSL_PKEY_PARAM_RSA_COEFFICIENT4, OSSL_PKEY_PARAM_RSA_COEFFICIENT5, OSSL_PKEY_PARAM_RSA_COEFFICIENT6,
    OSSL_PKEY_PARAM_RSA_COEFFICIENT7, OSSL_PKEY_PARAM_RSA_COEFFICIENT8, OSSL_PKEY_PARAM_RSA_COEFFICIENT9};

std::vector<hoBigNumber> factorsOf(const hoLibcryptoKey& key)
{
    std::vector<hoBigNumber> factors;
    for (const char* pName : factorNames)
    {
        hoBigNumber factor = hoNumberOfKey(key, pName);
        if (factor == nullptr)
        {
            break;
        }
        factors.push_back(std::move(factor));
    }
    return factors;
}

// Whether u * v leaves the remainder 1.
bool areInverse(const BIGNUM* pU, const BIGNUM* pV, const BIGNUM* pModulus, BIGNUM* pScratch, BN_CTX* pContext)
{
    return BN_mod_mul(pScratch, pU, pV, pModulus, pContext) == 1 && BN_is_one(pScratch) == 1;
}

}  // namespace

bool hoPrivateNumbersFit(const hoLibcryptoKey& key, BN_CTX* pContext)
{
    const hoBigNumber modulus = hoNumberOfKey(key, OSSL_PKEY_PARAM_RSA_N);
    const hoBigNumber publicExponent = hoNumberOfKey(key, OSSL_PKEY_PARAM_RSA_E);
    const hoBigNumber privateExponent = hoNumberOfKey(key, OSSL_PKEY_PARAM_RSA_D);
    const std::vector<hoBigNumber> factors = factorsOf(key);
    const hoBigNumber product(BN_secure_new());
    const hoBigNumber lessOne(BN_secure_new());
    const hoBigNumber scratch(BN_secure_new());
    if (modulus == nullptr || publicExponent == nullptr || privateExponent == nullptr || factors.size() < 2 ||
        product == nullptr || lessOne == nullptr || scratch == nullptr || BN_one(product.get()) != 1)
    {
        return false;
    }
    for (std::size_t i = 0; i < factors.size(); ++i)
    {
        const BIGNUM* const pFactor = factors[i].get();
        const hoBigNumber exponent = hoNumberOfKey(key, exponentNames[i]);
        if (exponent == nullptr || BN_sub(lessOne.get(), pFactor, BN_value_one()) != 1 ||
            !areInverse(publicExponent.get(), privateExponent.get(), lessOne.get(), scratch.get(), pContext) ||
            BN_mod(scratch.get(), privateExponent.get(), lessOne.get(), pContext) != 1 ||
            BN_cmp(scratch.get(), exponent.get()) != 0)
        {
            return false;
        }
        if (i > 0)
        {
            // The first coefficient belongs to the first factor, the others to the factor after all in front of it.
            const BIGNUM* const pInverted = i == 1 ? pFactor : product.get();
            const BIGNUM* const pOf = i == 1 ? factors[0].get() : pFactor;
            const hoBigNumber coefficient = hoNumberOfKey(key, coefficientNames[i - 1]);
            if (coefficient == nullptr || BN_cmp(coefficient.get(), pOf) >= 0 ||
                !areInverse(coefficient.get(), pInverted, pOf, scratch.get(), pContext))
            {
                return false;
            }
        }
        if (BN_mul(product.get(), product.get(), pFactor, pContext) != 1)
        {
            return false;
        }
    }
    return BN_cmp(product.get(), modulus.get()) == 0;
}

hoPrimality hoTestFactors(const hoLibcryptoKey& key, BN_CTX* pContext, const hoGoesOn& goesOn)
{
    for (const hoBigNumber& factor : factorsOf(key))
    {
        const hoPrimality primality = hoTestPrimality(factor.get(), pContext, goesOn);
        if (primality != hoPrimality::Prime)
        {
            return primality;
        }
    }
    return hoPrimality::Prime;
}
