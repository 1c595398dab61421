// SPDX-License-Identifier: Apache-2.0
// libcrypto's objects, which go away with their owner.
#ifndef COUNTERSIGN_HO_LIBCRYPTO_OBJECTS_H
#define COUNTERSIGN_HO_LIBCRYPTO_OBJECTS_H

#include <memory>

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/evp.h>

template <class T, void (*release)(T*)>
struct hoReleaser
{
    void operator()(T* pObject) const { release(pObject); }
};

// BIO_free returns something. Memory of the kind BIO_s_secmem is overwritten.
inline void hoReleaseBio(BIO* pBio)
{
    BIO_free(pBio);
}

using hoBio = std::unique_ptr<BIO, hoReleaser<BIO, hoReleaseBio>>;
using hoBigNumber = std::unique_ptr<BIGNUM, hoReleaser<BIGNUM, BN_clear_free>>;
using hoLibcryptoKey = std::unique_ptr<EVP_PKEY, hoReleaser<EVP_PKEY, EVP_PKEY_free>>;
using hoKeyContext = std::unique_ptr<EVP_PKEY_CTX, hoReleaser<EVP_PKEY_CTX, EVP_PKEY_CTX_free>>;

#endif
