// SPDX-License-Identifier: Apache-2.0
// Numbers as people read them, the same in every locale. Plain functions; safe from any thread.
#ifndef GT_NUMBER_TEXT_H
#define GT_NUMBER_TEXT_H

#include "platform/baseTools/gtString.h"

#include <cstdint>

#pragma GCC visibility push(default)

// A number with its digits in groups of three: "12,345". Throws std::bad_alloc.
gtString gtNumberText(std::uint64_t number);

#pragma GCC visibility pop

#endif
