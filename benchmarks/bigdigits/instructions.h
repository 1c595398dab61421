// SPDX-License-Identifier: Apache-2.0
// Counts instructions where no counter of the processor's can be had, whatever instructions they are.
#ifndef COUNTERSIGN_BENCHMARKS_INSTRUCTIONS_H
#define COUNTERSIGN_BENCHMARKS_INSTRUCTIONS_H

#include <cstdint>
#include <functional>

// How many instructions the operation takes once it has been done before: a child process goes through it step by step,
// at some microseconds an instruction. Ends the program where processes cannot be stepped through.
uint64_t instructionsOf(const std::function<void()>& operation);

#endif
