// SPDX-License-Identifier: Apache-2.0
// Loads the keys that the arguments name, and tells what is wrong with them on standard error.
#ifndef COUNTERSIGN_CL_KEY_LOADING_H
#define COUNTERSIGN_CL_KEY_LOADING_H

#include <memory>

#include "cli/clArguments.h"
#include "host/keys/hoKeyFile.h"

// Null when it cannot be loaded, which has been told then. A private key is warned of as the window does, unless
// --no-warnings is given.
std::unique_ptr<const hoKey> clLoadKey(const clArguments& arguments, const gtString& path, hoKeyNeed need,
                                       hoKeyFileFacts& facts);

#endif
