// SPDX-License-Identifier: Apache-2.0
// Standard input, output and error. Failures of the first two are returned; those of standard error have nobody to be
// told to.
#ifndef COUNTERSIGN_CL_STANDARD_STREAMS_H
#define COUNTERSIGN_CL_STANDARD_STREAMS_H

#include "cli/clMessage.h"
#include "platform/baseTools/gtString.h"

#include <functional>

// Writes to standard output. Failures are kept for clFlushOutput. The bytes may wait in a buffer, which is overwritten
// when they have gone.
void clWriteOutput(const gtString& text);

// Brings what was written to its place: 0, or the system's error number if any of it did not get there.
int clFlushOutput();

// Writes "countersign: ", the text and a line end to standard error; clWarn with "warning: " in front of the text.
void clComplain(const gtString& text);
void clWarn(const gtString& text);
void clTell(const clMessage& message);

// From now on messages go there instead; null: to standard error again. The function may not complain itself.
using clMessageReceiver = std::function<void(const clMessage&)>;
void clSendMessagesTo(clMessageReceiver receiver);

// Appends all of standard input, until the bytes reach the limit. No copy of them stays anywhere else. 0, or the
// system's error number: EINTR after a signal that asks to end.
int clReadInput(gtString& bytes, int limit);

// The same of another descriptor.
int clReadDescriptor(int descriptor, gtString& bytes, int limit);

#endif
