// SPDX-License-Identifier: Apache-2.0
// Whether a key that is still to be made could be written, found out before the time for making it is spent.
#ifndef COUNTERSIGN_HO_KEY_FOLDER_TRIAL_H
#define COUNTERSIGN_HO_KEY_FOLDER_TRIAL_H

#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osAtomicFile.h"

#pragma GCC visibility push(default)

// Makes a new, empty file in the folder of this path, which is absolute, and removes it again. What the system said to
// that. Throws std::bad_alloc.
osWritingResult hoTryKeyFolder(const gtString& path);

#pragma GCC visibility pop

#endif
