// SPDX-License-Identifier: Apache-2.0
// An outside program that signs a file with a key from a PEM file.
#include <iostream>

#include "countersignVersion.h"
#include "crypto/crRSADigitalSigner.h"
#include "host/keys/hoKeyFile.h"
#include "platform/osWrappers/osFilePath.h"

int main(int argc, char** argv)
{
    hoKeyFileFacts facts;
    const auto pKey = argc == 3 ? hoLoadKeyFile(gtString(argv[1]), nullptr, facts) : nullptr;
    gtString signature;
    if (!pKey || !crRSADigitalSigner(pKey->ownKey()).getSignature(osFilePath(gtString(argv[2])), signature))
    {
        return 1;
    }
    std::cout << signature << '\n' << COUNTERSIGN_VERSION << '\n';
}
