// SPDX-License-Identifier: Apache-2.0
// Runs programs that are sent a signal in the middle of what they do.
#ifndef TS_SIGNALLED_H
#define TS_SIGNALLED_H

#include "tests/support/tsProcess.h"

#include <chrono>

// Runs the program (its _arguments, in its _folder; nothing else of the command is looked at) and sends it the signal
// after that time, counted from its start or, with isReadyFirst, from the first byte that it writes to standard output.
// Nothing is sent when it has ended before. One that does not end within two minutes is killed.
tsOutcome tsRunSignalled(const tsCommand& command, int signal, std::chrono::microseconds delay, bool isReadyFirst);

#endif
