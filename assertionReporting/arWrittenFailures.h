// SPDX-License-Identifier: Apache-2.0
// How many failures of the calling thread the handler that asks has written to standard error, for those who would
// write a line of their own if nobody else does. Not for other programs.
#ifndef AR_WRITTEN_FAILURES_H
#define AR_WRITTEN_FAILURES_H

unsigned long arAmountOfWrittenFailures();
void arCountWrittenFailure();

#endif
