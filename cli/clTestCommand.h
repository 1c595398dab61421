// SPDX-License-Identifier: Apache-2.0
// The command test: tests documents against their signatures.
#ifndef COUNTERSIGN_CL_TEST_COMMAND_H
#define COUNTERSIGN_CL_TEST_COMMAND_H

#include "cli/clArguments.h"

// Returns the exit status.
int clPerformTest(const clArguments& arguments);

#endif
