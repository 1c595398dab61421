// SPDX-License-Identifier: Apache-2.0
// The command key: what a key file holds.
#ifndef COUNTERSIGN_CL_KEY_COMMAND_H
#define COUNTERSIGN_CL_KEY_COMMAND_H

#include "cli/clArguments.h"
#include "host/keys/hoKeyFile.h"

// Returns the exit status.
int clPerformKey(const clArguments& arguments);

// Whether the key has the private half, if --private asks for it. If not, that is told.
bool clHasWantedHalf(const clArguments& arguments, const hoKey& key);

#endif
