// SPDX-License-Identifier: Apache-2.0
// Keys of a test's own, made by libcrypto.
#ifndef COUNTERSIGN_TESTS_HOST_NEW_KEY_H
#define COUNTERSIGN_TESTS_HOST_NEW_KEY_H

#include "host/keys/hoKeyFile.h"

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>

#include <memory>
#include <stdexcept>
#include <string>

// As PEM text; isPublic: the public half alone; passphrase: of an encrypted private one.
inline std::string newKeyText(int bits, bool isPublic = false, const std::string& passphrase = "")
{
    EVP_PKEY* const pKey = EVP_RSA_gen(static_cast<std::size_t>(bits));
    BIO* const pText = BIO_new(BIO_s_mem());
    const EVP_CIPHER* const pCipher = passphrase.empty() ? nullptr : EVP_aes_128_cbc();
    const int written = isPublic ? PEM_write_bio_PUBKEY(pText, pKey)
                                 : PEM_write_bio_PKCS8PrivateKey(pText, pKey, pCipher, passphrase.data(),
                                                                 static_cast<int>(passphrase.size()), nullptr, nullptr);
    char* pBytes = nullptr;
    const long length = BIO_get_mem_data(pText, &pBytes);
    std::string text =
        written == 1 && pBytes != nullptr ? std::string(pBytes, static_cast<std::size_t>(length)) : std::string();
    BIO_free(pText);
    EVP_PKEY_free(pKey);
    if (text.empty())
    {
        throw std::runtime_error("no key");
    }
    return text;
}

inline std::shared_ptr<const hoKey> newKey(int bits)
{
    const std::string text = newKeyText(bits);
    hoKeyFileFacts facts;
    return hoLoadKey(text.data(), static_cast<int>(text.size()), nullptr, facts);
}

// A public key of 64 bits, which is too small for files.
inline std::shared_ptr<const hoKey> tinyKey()
{
    // A product of two primes, with the exponent 65537: SEQUENCE { n, e }.
    const unsigned char der[] = {0x30, 0x10, 0x02, 0x09, 0x00, 0xFF, 0xFF, 0xFF, 0xEA,
                                 0x00, 0x00, 0x00, 0x55, 0x02, 0x03, 0x01, 0x00, 0x01};
    hoKeyFileFacts facts;
    return hoLoadKey(reinterpret_cast<const char*>(der), sizeof der, nullptr, facts);
}

#endif
