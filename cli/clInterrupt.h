// SPDX-License-Identifier: Apache-2.0
// Signals that ask the program to end (interrupt, terminate, hang-up) are kept until the work at hand is tidied up.
#ifndef COUNTERSIGN_CL_INTERRUPT_H
#define COUNTERSIGN_CL_INTERRUPT_H

// From now on the first such signal is only noted, and calls of the system that wait come back early. A second one ends
// the program at once: what is at hand may take long (a passphrase that is stretched a million times). Signals that are
// ignored (nohup) stay ignored. Where the system has no descriptors to give, nothing changes.
void clCatchInterrupts();

// Safe from any thread.
bool clIsInterrupted();

// Waits until the descriptor has something to read, its end included. False when a signal has been noted, however close
// before.
bool clWaitForInput(int descriptor);

// Ends the program by the signal that was noted, as if it had never been caught; does nothing if there was none.
void clEndIfInterrupted();

#endif
