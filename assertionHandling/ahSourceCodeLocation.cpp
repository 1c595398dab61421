// SPDX-License-Identifier: Apache-2.0
#include "assertionHandling/ahSourceCodeLocation.h"

static_assert(sizeof(int) == 4, "a line number has 32 bits");

ahSourceCodeLocation::ahSourceCodeLocation() : _filePath(), _lineNumber(0) {}
