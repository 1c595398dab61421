// SPDX-License-Identifier: Apache-2.0
// A key file whose passphrase takes hours to try.
#ifndef COUNTERSIGN_TESTS_HOST_SLOW_KEY_H
#define COUNTERSIGN_TESTS_HOST_SLOW_KEY_H

#include <climits>
#include <memory>
#include <string>

#include <openssl/pem.h>
#include <openssl/x509.h>

// In PEM. What it encrypts is no key, which nobody finds out. Empty if libcrypto fails.
inline std::string slowKey()
{
    const std::unique_ptr<BIO, decltype(&BIO_free)> pText(BIO_new(BIO_s_mem()), &BIO_free);
    const std::unique_ptr<X509_SIG, decltype(&X509_SIG_free)> pKey(X509_SIG_new(), &X509_SIG_free);
    const std::unique_ptr<X509_ALGOR, decltype(&X509_ALGOR_free)> pAlgorithm(
        PKCS5_pbe2_set_iv(EVP_aes_256_cbc(), INT_MAX, nullptr, 0, nullptr, NID_hmacWithSHA512), &X509_ALGOR_free);
    X509_ALGOR* pPlace = nullptr;
    ASN1_OCTET_STRING* pBytes = nullptr;
    X509_SIG_getm(pKey.get(), &pPlace, &pBytes);
    const std::string bytes(1216, '\x55');
    if (X509_ALGOR_copy(pPlace, pAlgorithm.get()) != 1 ||
        ASN1_OCTET_STRING_set(pBytes, reinterpret_cast<const unsigned char*>(bytes.data()),
                              static_cast<int>(bytes.size())) != 1 ||
        PEM_write_bio_PKCS8(pText.get(), pKey.get()) != 1)
    {
        return std::string();
    }
    char* pCharacters = nullptr;
    const long length = BIO_get_mem_data(pText.get(), &pCharacters);
    return std::string(pCharacters, static_cast<std::size_t>(length));
}

#endif
