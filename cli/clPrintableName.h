// SPDX-License-Identifier: Apache-2.0
// Names as they can be shown: one line each, with nothing in them that a terminal obeys.
#ifndef COUNTERSIGN_CL_PRINTABLE_NAME_H
#define COUNTERSIGN_CL_PRINTABLE_NAME_H

#include "platform/baseTools/gtString.h"

// The name with every character that is not harmless (gtCharacters.h), backslashes, and bytes that are no UTF-8 written
// as in C: \n, \t, \\, \x1b. Different names stay different.
gtString clPrintableName(const gtString& name);

#endif
