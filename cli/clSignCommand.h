// SPDX-License-Identifier: Apache-2.0
// The command sign: writes signatures.
#ifndef COUNTERSIGN_CL_SIGN_COMMAND_H
#define COUNTERSIGN_CL_SIGN_COMMAND_H

#include "cli/clArguments.h"

// Returns the exit status.
int clPerformSign(const clArguments& arguments);

#endif
