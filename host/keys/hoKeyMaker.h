// SPDX-License-Identifier: Apache-2.0
// Makes a key of what libcrypto has read, once its numbers are seen to be usable.
#ifndef COUNTERSIGN_HO_KEY_MAKER_H
#define COUNTERSIGN_HO_KEY_MAKER_H

#include <memory>

#include "host/keys/hoKeyFile.h"
#include "host/keys/hoLibcryptoObjects.h"

// A number of the key, as libcrypto calls it; null if it has none.
hoBigNumber hoNumberOfKey(const hoLibcryptoKey& key, const char* pName);

class hoKeyMaker
{
public:
    // facts._isPrivate: a private half is wanted. Takes the key away when it succeeds; null, and the facts say why, if
    // it cannot be used. goesOn: see hoLoadKey. Throws std::bad_alloc.
    static std::unique_ptr<const hoKey> makeKey(hoLibcryptoKey& anyKey, hoKeyFileFacts& facts, const hoGoesOn& goesOn);

private:
    static bool load(crRSAEncryptionKey& key, const hoBigNumber& modulus, const hoBigNumber& exponent, int bits);
};

#endif
