// SPDX-License-Identifier: Apache-2.0
#include "digests.h"

#include "crypto/crRSADigitalSigner.h"
#include "crypto/crRSAEncryptionKey.h"

gtString digestOf(const osFilePath& path)
{
    crRSAEncryptionKey key;
    gtString signature;
    if (!key.setKeyFromStringAndFermatPrime(128, gtString("ffffffffffffffffffffffffffffffff"), 1) ||
        !crRSADigitalSigner(key).getSignature(path, signature))
    {
        return gtString();
    }
    return signature;
}
