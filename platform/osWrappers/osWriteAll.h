// SPDX-License-Identifier: Apache-2.0
// Writes to a descriptor until everything is written.
#ifndef OS_WRITE_ALL_H
#define OS_WRITE_ALL_H

#include <string_view>

#pragma GCC visibility push(default)

// Writes the bytes, also when the system takes them in pieces, and goes on after a signal unless isToStop, which may be
// null, says otherwise. 0, or the system's error number; EIO where the system takes nothing and names no error.
// Allocates nothing; safe from any thread, and in a signal handler if isToStop is.
int osWriteAll(int descriptor, std::string_view bytes, bool (*isToStop)() = nullptr) noexcept;

#pragma GCC visibility pop

#endif
