// SPDX-License-Identifier: Apache-2.0
// libcrypto's test for primes, and its end before it is done.
#ifndef COUNTERSIGN_HO_PRIMALITY_H
#define COUNTERSIGN_HO_PRIMALITY_H

#include "host/keys/hoKeyFile.h"
#include "host/keys/hoLibcryptoObjects.h"

using hoNumberContext = std::unique_ptr<BN_CTX, hoReleaser<BN_CTX, BN_CTX_free>>;

enum class hoPrimality
{
    Prime,
    Composite,
    Unknown  // goesOn has said no, or there is no memory
};

// goesOn: see hoLoadKey; asked before the test and in it, some ten times a second or more.
hoPrimality hoTestPrimality(const BIGNUM* pNumber, BN_CTX* pContext, const hoGoesOn& goesOn);

#endif
