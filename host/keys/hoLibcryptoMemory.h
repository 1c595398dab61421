// SPDX-License-Identifier: Apache-2.0
// libcrypto frees what it has decoded without overwriting it. Every program that links this gives libcrypto an
// allocator that overwrites, before main, and keeps libcrypto from tidying up at the program's end, when a thread may
// still be at work in it.
#ifndef COUNTERSIGN_HO_LIBCRYPTO_MEMORY_H
#define COUNTERSIGN_HO_LIBCRYPTO_MEMORY_H

#pragma GCC visibility push(default)

// False if libcrypto did not take the allocator, because something in the program used libcrypto even earlier. Any
// thread may ask, from main on.
bool hoIsLibcryptoMemoryWiped();

#pragma GCC visibility pop

#endif
