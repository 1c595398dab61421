// SPDX-License-Identifier: Apache-2.0
// What the application object was started with. Main thread only.
#ifndef COUNTERSIGN_HO_APPLICATION_ARGUMENTS_H
#define COUNTERSIGN_HO_APPLICATION_ARGUMENTS_H

#include "platform/baseTools/gtString.h"

#include <vector>

// The documents among the application's arguments, those that the desktop asked for before there was a window included.
// Also those whose bytes the locale cannot express. None without an application object.
std::vector<gtString> hoApplicationDocuments();

// The absolute path of this program, links resolved.
gtString hoApplicationPath();

#endif
