// SPDX-License-Identifier: Apache-2.0
#ifndef DIGESTS_H
#define DIGESTS_H

#include <string>

// The signature of a file under a key whose exponent is 1, which is the digest's own layout. Empty without a file.
std::string digestOf(const std::string& path);

#endif
