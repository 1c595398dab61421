// SPDX-License-Identifier: Apache-2.0
// The terminal that the program was started on.
#ifndef COUNTERSIGN_CL_TERMINAL_H
#define COUNTERSIGN_CL_TERMINAL_H

// Columns of the terminal that standard error is; 0 when it is none.
int clColumnsOfStandardError();

bool clIsOutputATerminal();

#endif
