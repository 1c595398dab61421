// SPDX-License-Identifier: Apache-2.0
#include "digests.h"

#include "crypto/crRSADigitalSigner.h"
#include "crypto/crRSAEncryptionKey.h"
#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osFilePath.h"

std::string digestOf(const std::string& path)
{
    crRSAEncryptionKey key;
    gtString signature;
    if (!key.setKeyFromStringAndFermatPrime(128, gtString("ffffffffffffffffffffffffffffffff"), 1) ||
        !crRSADigitalSigner(key).getSignature(osFilePath(path), signature))
    {
        return std::string();
    }
    return signature.asStdString();
}
