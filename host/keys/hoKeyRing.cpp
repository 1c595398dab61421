// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoKeyRing.h"

#include <openssl/evp.h>

#include <new>

#include "host/keys/hoHexText.h"

gtString hoShortFingerprint(const hoKey& key)
{
    const crRSAEncryptionKey& half = key.publicKey();
    const gtString text = hoFixedWidthText(half.productDigits(), half.amountOfProductDigits());
    unsigned char digest[EVP_MAX_MD_SIZE] = {};
    unsigned int length = 0;
    if (EVP_Digest(text.asCharArray(), static_cast<std::size_t>(text.length()), digest, &length, EVP_sha256(),
                   nullptr) != 1)
    {
        throw std::bad_alloc();
    }
    const std::size_t shownBytes = 4;
    return hoHexText(digest, shownBytes);
}
