// SPDX-License-Identifier: Apache-2.0
// The keys that are loaded: at most one private one, which signs, and any number of public ones, which test.
//
// Keys live in memory alone and are never written down. Owned and used by one thread; a key that was given out may be
// used by others and stays as long as anybody has it.
#ifndef COUNTERSIGN_HO_KEY_RING_H
#define COUNTERSIGN_HO_KEY_RING_H

#include "host/keys/hoKeyFile.h"

#include <cstddef>
#include <memory>
#include <vector>

#pragma GCC visibility push(default)

struct hoLoadedKey
{
    std::shared_ptr<const hoKey> _pKey;  // null: there is none
    gtString _path;
    bool _isOpenToOthers = false;        // a private key's file that others than the owner may read or change,
    bool _isFolderOpenToOthers = false;  // or put another one in the place of (see hoKeyFileFacts)
    bool _isInMemoryForGood = false;     // a private key of which libcrypto leaves traces in memory
};

// A key that tests, and what people call it by among the others.
struct hoTestingKey
{
    std::shared_ptr<const hoKey> _pKey;
    // The name of its file; where another key's file has the same name, the short fingerprint stands behind it.
    gtString _name;
};

struct hoKeyRing
{
    hoLoadedKey _private;
    std::vector<hoLoadedKey> _publics;  // in the order in which they were loaded; none has a null key

    bool canSign() const { return _private._pKey != nullptr; }
    // The private key's partner tests too.
    bool canTest() const { return canSign() || !_publics.empty(); }

    // Takes the place of the same key, and of the one that was loaded from this file before, and comes last.
    void addPublic(const hoLoadedKey& key);

    // All keys: the private one first, if there is one. A position is the number of a key for the next two.
    std::vector<hoLoadedKey> keys() const;
    bool isPrivate(std::size_t number) const { return canSign() && number == 0; }
    // Nothing happens when there is no such number.
    void forget(std::size_t number);

    // Each key that tests, once, in the order in which they are tried: the public one that was loaded last comes first,
    // the partner of the private one last. Throws std::bad_alloc.
    std::vector<hoTestingKey> testingKeys() const;
};

// Whether the two keys are the same, or halves of the same pair.
bool hoIsSamePair(const hoKey& left, const hoKey& right);

// Whether both have the same keys in the same order: not such as are equal, but the very same.
bool hoIsSameRing(const hoKeyRing& left, const hoKeyRing& right);

// By which two keys are told apart by people: the first eight hexadecimal digits of the SHA-256 of the modulus's
// fixed-width text. Both halves of a pair have the same. Empty if libcrypto has no memory. Throws std::bad_alloc.
gtString hoShortFingerprint(const hoKey& key);

#pragma GCC visibility pop

#endif
