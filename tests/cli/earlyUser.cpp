// SPDX-License-Identifier: Apache-2.0
// Takes memory of libcrypto as soon as it is loaded, which is before the program can give libcrypto an allocator.
#include <openssl/crypto.h>

namespace
{
void* const pMemory = OPENSSL_malloc(1);
}  // namespace
