// SPDX-License-Identifier: Apache-2.0
// The command digest: prints the digest texts of documents.
#ifndef COUNTERSIGN_CL_DIGEST_COMMAND_H
#define COUNTERSIGN_CL_DIGEST_COMMAND_H

#include "cli/clArguments.h"

// Returns the exit status.
int clPerformDigest(const clArguments& arguments);

#endif
