// SPDX-License-Identifier: Apache-2.0
// The keys that are loaded: at most one private one, which signs, and at most one public one, which tests.
//
// Keys live in memory alone and are never written down. Owned and used by one thread; a key that was given out may be
// used by others and stays as long as anybody has it.
#ifndef COUNTERSIGN_HO_KEY_RING_H
#define COUNTERSIGN_HO_KEY_RING_H

#include "host/keys/hoKeyFile.h"

#include <memory>

#pragma GCC visibility push(default)

struct hoLoadedKey
{
    std::shared_ptr<const hoKey> _pKey;  // null: there is none
    gtString _path;
    bool _isOpenToOthers = false;        // a private key's file that others than the owner may read or change,
    bool _isFolderOpenToOthers = false;  // or put another one in the place of (see hoKeyFileFacts)
    bool _isInMemoryForGood = false;     // a private key of which libcrypto leaves traces in memory
};

struct hoKeyRing
{
    hoLoadedKey _private;
    hoLoadedKey _public;

    bool canSign() const { return _private._pKey != nullptr; }
    // The private key's partner tests too.
    bool canTest() const { return canSign() || _public._pKey != nullptr; }
};

// By which two keys are told apart by people: the first eight hexadecimal digits of the SHA-256 of the modulus's
// fixed-width text. Both halves of a pair have the same. Empty if libcrypto has no memory. Throws std::bad_alloc.
gtString hoShortFingerprint(const hoKey& key);

#pragma GCC visibility pop

#endif
