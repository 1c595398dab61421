// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoKeyRing.h"

#include <openssl/evp.h>

#include <new>

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
    const unsigned int shownBytes = 4;
    gtString shown;
    for (unsigned int i = 0; i < shownBytes; ++i)
    {
        shown.appendFormattedString("%02x", static_cast<unsigned int>(digest[i]));
    }
    return shown;
}
