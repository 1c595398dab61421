// SPDX-License-Identifier: Apache-2.0
// Where the manual is. Safe from any thread; only std::bad_alloc comes out.
#ifndef COUNTERSIGN_HO_MANUAL_H
#define COUNTERSIGN_HO_MANUAL_H

#include "platform/baseTools/gtString.h"

// The manual that belongs to the program with this absolute path, links resolved: share/doc/countersign/manual.html
// below a folder that the program is in, however deep (installed), or docs/manual.html of the sources that it was built
// in. The nearest one; empty when there is none.
gtString hoManualPath(const gtString& program);

#endif
