// SPDX-License-Identifier: Apache-2.0
// Countersignatures: RSASSA-PSS with SHA-256, MGF1 with SHA-256 and a salt of 32 bytes, by libcrypto.
//
// WHY ONE KEY MAY SIGN BOTH LINES. The block that the toolkit's first line raises to the private exponent holds the
// marker 0x01, lower-case hexadecimal characters and the filler, from the lowest byte on. A block of PSS ends, at its
// lowest byte, in 0xBC, and nothing that the toolkit signs can. So no first line is a countersignature of anything, nor
// the other way round.
// The toolkit's short texts are any bytes behind the same marker, so they do not end in 0xBC either; but whoever
// encrypts texts of others with a private key gives out powers of numbers that others chose. Keys for texts are better
// kept apart from keys for signing.
//
// Nothing here prints or throws but std::bad_alloc. Safe from any thread, any number with the same key: each call makes
// a context of its own, libcrypto locks what a key keeps between uses (its blinding), and gives each thread a generator
// of random numbers of its own.
#ifndef COUNTERSIGN_HO_COUNTERSIGNATURE_H
#define COUNTERSIGN_HO_COUNTERSIGNATURE_H

#include "host/keys/hoKeyFile.h"

#include <array>
#include <optional>
#include <vector>

// The SHA-256 of a file's bytes.
using hoSha256 = std::array<unsigned char, 32>;

// Keys of fewer bits can be broken, so that a countersignature of theirs would say nothing.
constexpr int hoLeastCountersigningBits = 1024;

constexpr bool hoCanCountersign(int bits)
{
    return bits >= hoLeastCountersigningBits;
}

// Empty when libcrypto fails (it has no random numbers, or does not take the key's exponent). The key must have its
// private half.
std::vector<unsigned char> hoMakeCountersignature(const hoKey& key, const hoSha256& digest);

// Whether the bytes are a countersignature of the digest under the public half. Nothing when libcrypto could not tell.
std::optional<bool> hoIsCountersignatureOf(const hoSha256& digest, const hoKey& key,
                                           const std::vector<unsigned char>& countersignature);

#endif
