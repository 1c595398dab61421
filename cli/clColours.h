// SPDX-License-Identifier: Apache-2.0
// The colours of verdicts on a terminal. Safe from any thread while none changes the environment.
#ifndef COUNTERSIGN_CL_COLOURS_H
#define COUNTERSIGN_CL_COLOURS_H

#include "host/signing/hoVerdict.h"
#include "platform/baseTools/gtString.h"

// The verdict's word for standard output: green for good, red for BAD and yellow for the others where that is a
// terminal, TERM does not say that it knows no colours (empty or "dumb"), and NO_COLOR is not set or empty.
gtString clVerdictWord(hoVerdict verdict);

#endif
