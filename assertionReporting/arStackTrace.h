// SPDX-License-Identifier: Apache-2.0
// The calls that a thread is in: taken as bare addresses where an assertion fails, which is quick, and turned into
// words when somebody wants to read them, which is not.
//
// Threads: safe from any.
#ifndef AR_STACK_TRACE_H
#define AR_STACK_TRACE_H

#include "platform/baseTools/gtString.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#pragma GCC visibility push(default)

constexpr std::size_t arMostFrames = 100;

// The addresses of the calls, innermost first, without this function's own; those of the innermost arMostFrames. Empty
// without memory, and where the kit was built without a library that reads stacks. Lets nothing out.
std::vector<std::uintptr_t> arStackOfThisThread() noexcept;

// Whether the kit was built with a library that reads stacks.
bool arHasStacks();

// A line for each call: "function at file:line", as much of it as the program's debugging information tells; else the
// library that it lies in, or the bare address. The frames in which the failed check is reported, which are the same
// for all, are left out. Lets std::bad_alloc out. The first call reads the debugging information and takes a while.
std::vector<gtString> arStackLines(const std::vector<std::uintptr_t>& stack);

#pragma GCC visibility pop

#endif
