// SPDX-License-Identifier: Apache-2.0
// The public half of a key as others take it. Both throw std::bad_alloc.
#ifndef COUNTERSIGN_HO_PUBLIC_KEY_H
#define COUNTERSIGN_HO_PUBLIC_KEY_H

#include "host/keys/hoKeyFile.h"

#pragma GCC visibility push(default)

// The SHA-256 of the public key in DER (SubjectPublicKeyInfo), 64 hexadecimal characters. Both halves of a pair have
// the same.
gtString hoFingerprint(const hoKey& key);

// The public key in PEM (SubjectPublicKeyInfo).
gtString hoPublicKeyPem(const hoKey& key);

#pragma GCC visibility pop

#endif
