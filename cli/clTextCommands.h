// SPDX-License-Identifier: Apache-2.0
// The commands encrypt and decrypt: short texts.
#ifndef COUNTERSIGN_CL_TEXT_COMMANDS_H
#define COUNTERSIGN_CL_TEXT_COMMANDS_H

#include "cli/clArguments.h"

// Return the exit status.
int clPerformEncrypt(const clArguments& arguments);
int clPerformDecrypt(const clArguments& arguments);

#endif
