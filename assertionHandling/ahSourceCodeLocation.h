// SPDX-License-Identifier: Apache-2.0
// One place in the source code: an entry of the list of locations whose failed assertions are ignored.
//
// A plain record. Reading it from several threads is safe while nobody writes.
#ifndef AH_SOURCE_CODE_LOCATION_H
#define AH_SOURCE_CODE_LOCATION_H

#include "platform/osWrappers/osFilePath.h"

#pragma GCC visibility push(default)

class ahSourceCodeLocation
{
public:
    // An empty path and line 0. Lets what the path's construction throws out.
    ahSourceCodeLocation();

    osFilePath _filePath;  // the source file, as the failed assertion named it
    int _lineNumber;       // the line in it, counted from 1; any number is kept as it is
};

#pragma GCC visibility pop

#endif
