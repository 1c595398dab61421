// SPDX-License-Identifier: Apache-2.0
#ifndef DIGESTS_H
#define DIGESTS_H

#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osFilePath.h"

// The signature of a file under a key whose exponent is 1, which is the digest's own layout. Empty without a file.
gtString digestOf(const osFilePath& path);

#endif
