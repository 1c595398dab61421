// SPDX-License-Identifier: Apache-2.0
// Tells documents from their signature files by name, where a pattern of the shell (*) has given both.
#ifndef COUNTERSIGN_CL_SIGNATURE_NAMES_H
#define COUNTERSIGN_CL_SIGNATURE_NAMES_H

#include "platform/baseTools/gtString.h"

enum class clNameKind
{
    Document,
    Signature,  // FILE.sig, and there is a FILE
    Orphan      // FILE.sig, and there is no FILE: a document of such a name, or a signature that has lost its document
};

clNameKind clKindOfName(const gtString& name);

#endif
