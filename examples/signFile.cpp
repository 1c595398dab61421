// SPDX-License-Identifier: Apache-2.0
// Signs a file with a private key from a PEM file, and tests the signature with the other half of the pair.
//
//   signFile KEY.pem FILE
#include <iostream>

#include "crypto/crRSADigitalSigner.h"
#include "host/keys/hoKeyFile.h"
#include "platform/osWrappers/osFilePath.h"

int main(int argc, char** argv)
{
    if (argc != 3)
    {
        std::cerr << "usage: signFile KEY.pem FILE\n";
        return 2;
    }
    hoKeyFileFacts facts;
    const auto pKey = hoLoadKeyFile(gtString(argv[1]), nullptr, facts);
    if (!pKey)
    {
        std::cerr << "The key cannot be used.\n";
        return 2;
    }
    const osFilePath file{gtString(argv[2])};
    gtString signature;
    if (!crRSADigitalSigner(pKey->ownKey()).getSignature(file, signature))
    {
        std::cerr << "The file cannot be signed.\n";
        return 2;
    }
    const bool isGood = crRSADigitalSigner(pKey->publicKey()).testSignature(file, signature);
    std::cout << "signature of " << signature.length() << " characters, " << (isGood ? "good" : "BAD") << '\n';
    return isGood ? 0 : 1;
}
