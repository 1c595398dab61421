// SPDX-License-Identifier: Apache-2.0
// What EVP_PKEY_check looks at in an RSA key, in steps that can be ended: its test for primes takes no callback.
#ifndef COUNTERSIGN_HO_PRIVATE_NUMBERS_H
#define COUNTERSIGN_HO_PRIVATE_NUMBERS_H

#include "host/keys/hoPrimality.h"

// Whether the factors, of which there may be more than two, have the modulus as their product, the exponents undo each
// other with each of them, and the numbers for the Chinese remainder theorem fit. A key without its factors does not.
bool hoPrivateNumbersFit(const hoLibcryptoKey& key, BN_CTX* pContext);

// Whether each factor is prime, or why that is not known.
hoPrimality hoTestFactors(const hoLibcryptoKey& key, BN_CTX* pContext, const hoGoesOn& goesOn);

#endif
