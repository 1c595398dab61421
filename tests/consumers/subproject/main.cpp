// SPDX-License-Identifier: Apache-2.0
// An outside program that has the sources as a subproject: prints the signature of an empty file under a key whose
// exponent is 1, which is the digest's own layout.
#include <cstdio>

#include "crypto/crRSADigitalSigner.h"
#include "crypto/crRSAEncryptionKey.h"
#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osFilePath.h"

int main(int argc, char** argv)
{
    crRSAEncryptionKey key;
    if (argc != 2 || !key.setKeyFromStringAndFermatPrime(128, gtString("ffffffffffffffffffffffffffffffff"), 1))
    {
        return 1;
    }
    gtString signature;
    if (!crRSADigitalSigner(key).getSignature(osFilePath(gtString(argv[1])), signature))
    {
        return 1;
    }
    std::printf("%s\n", signature.asCharArray());
    return 0;
}
