// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoPublicKey.h"

#include <new>

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include "host/keys/hoHexText.h"
#include "host/keys/hoLibcryptoObjects.h"

namespace
{

// libcrypto's memory, with what the function writes there.
template <class Write>
hoBio written(Write write)
{
    hoBio bio(BIO_new(BIO_s_mem()));
    if (bio == nullptr || write(bio.get()) != 1)
    {
        throw std::bad_alloc();
    }
    return bio;
}

}  // namespace

gtString hoFingerprint(const hoKey& key)
{
    const hoBio der = written([&key](BIO* pBio) { return i2d_PUBKEY_bio(pBio, key.libcryptoPublicKey()); });
    char* pBytes = nullptr;
    const long length = BIO_get_mem_data(der.get(), &pBytes);
    unsigned char digest[EVP_MAX_MD_SIZE] = {};
    unsigned int lengthOfDigest = 0;
    if (EVP_Digest(pBytes, static_cast<std::size_t>(length), digest, &lengthOfDigest, EVP_sha256(), nullptr) != 1)
    {
        throw std::bad_alloc();
    }
    return hoHexText(digest, lengthOfDigest);
}

gtString hoPublicKeyPem(const hoKey& key)
{
    const hoBio pem = written([&key](BIO* pBio) { return PEM_write_bio_PUBKEY(pBio, key.libcryptoPublicKey()); });
    char* pBytes = nullptr;
    const long length = BIO_get_mem_data(pem.get(), &pBytes);
    return gtString(pBytes, static_cast<int>(length));
}
