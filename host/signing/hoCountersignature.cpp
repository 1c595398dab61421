// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoCountersignature.h"

#include <openssl/err.h>
#include <openssl/rsa.h>

#include <new>

#include "host/keys/hoLibcryptoObjects.h"

namespace
{

constexpr int lengthOfSalt = 32;

void throwIfNoMemory()
{
    bool isMemory = false;
    for (unsigned long error = ERR_get_error(); error != 0; error = ERR_get_error())
    {
        isMemory = isMemory || ERR_GET_REASON(error) == ERR_R_MALLOC_FAILURE;
    }
    if (isMemory)
    {
        throw std::bad_alloc();
    }
}

// Null when libcrypto fails.
hoKeyContext context(EVP_PKEY* pKey, int (*begin)(EVP_PKEY_CTX*))
{
    hoKeyContext pContext(pKey == nullptr ? nullptr : EVP_PKEY_CTX_new_from_pkey(nullptr, pKey, nullptr));
    const bool isReady = pContext != nullptr && begin(pContext.get()) > 0 &&
                         EVP_PKEY_CTX_set_rsa_padding(pContext.get(), RSA_PKCS1_PSS_PADDING) > 0 &&
                         EVP_PKEY_CTX_set_signature_md(pContext.get(), EVP_sha256()) > 0 &&
                         EVP_PKEY_CTX_set_rsa_mgf1_md(pContext.get(), EVP_sha256()) > 0 &&
                         EVP_PKEY_CTX_set_rsa_pss_saltlen(pContext.get(), lengthOfSalt) > 0;
    if (!isReady)
    {
        throwIfNoMemory();
        return nullptr;
    }
    return pContext;
}

}  // namespace

std::vector<unsigned char> hoMakeCountersignature(const hoKey& key, const hoSha256& digest)
{
    ERR_clear_error();
    const hoKeyContext pContext = context(key.libcryptoPrivateKey(), EVP_PKEY_sign_init);
    std::vector<unsigned char> signature(static_cast<std::size_t>(key.bits()) / 8);
    std::size_t length = signature.size();
    if (pContext == nullptr ||
        EVP_PKEY_sign(pContext.get(), signature.data(), &length, digest.data(), digest.size()) <= 0 ||
        length != signature.size())
    {
        throwIfNoMemory();
        return std::vector<unsigned char>();
    }
    return signature;
}

std::optional<bool> hoIsCountersignatureOf(const hoSha256& digest, const hoKey& key,
                                           const std::vector<unsigned char>& countersignature)
{
    ERR_clear_error();
    const hoKeyContext pContext = context(key.libcryptoPublicKey(), EVP_PKEY_verify_init);
    if (pContext == nullptr)
    {
        return std::nullopt;
    }
    const bool isGood = EVP_PKEY_verify(pContext.get(), countersignature.data(), countersignature.size(), digest.data(),
                                        digest.size()) == 1;
    throwIfNoMemory();
    return isGood;
}
