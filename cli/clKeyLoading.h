// SPDX-License-Identifier: Apache-2.0
// Loads the keys that the arguments name, and tells what is wrong with them on standard error.
#ifndef COUNTERSIGN_CL_KEY_LOADING_H
#define COUNTERSIGN_CL_KEY_LOADING_H

#include <memory>
#include <vector>

#include "cli/clArguments.h"
#include "host/keys/hoKeyFile.h"

struct clLoadedKey
{
    gtString _path;
    std::unique_ptr<const hoKey> _pKey;
};

using clKeys = std::vector<clLoadedKey>;

// Null when it cannot be loaded, which has been told then. A private key is warned of as the window does, unless
// --no-warnings is given.
std::unique_ptr<const hoKey> clLoadKey(const clArguments& arguments, const gtString& path, hoKeyNeed need,
                                       hoKeyFileFacts& facts);

// The keys of --key, of which each must load, and those of --key-dir, sorted by name: of a folder's files those that
// hold a key which takes no passphrase. Private halves are there only where the command needs them. Empty when there is
// none or one cannot be loaded, which has been told then.
clKeys clLoadKeys(const clArguments& arguments);

// For the functions that take several.
std::vector<const hoKey*> clPointersTo(const clKeys& keys);

#endif
