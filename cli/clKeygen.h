// SPDX-License-Identifier: Apache-2.0
// The command keygen: makes a pair of keys.
#ifndef COUNTERSIGN_CL_KEYGEN_H
#define COUNTERSIGN_CL_KEYGEN_H

#include "cli/clArguments.h"

// Makes NAME.pem and NAME.pub.pem, or neither of them. Overwrites nothing. Returns the exit status.
int clPerformKeygen(const clArguments& arguments);

#endif
