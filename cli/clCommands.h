// SPDX-License-Identifier: Apache-2.0
// The commands themselves: they print, and return the exit status.
#ifndef COUNTERSIGN_CL_COMMANDS_H
#define COUNTERSIGN_CL_COMMANDS_H

#include "cli/clArguments.h"

constexpr int clStatusGood = 0;
constexpr int clStatusNotGood = 1;     // checked, and not good
constexpr int clStatusNotChecked = 2;  // could not be checked, or wrong use

int clPerform(const clArguments& arguments);

#endif
