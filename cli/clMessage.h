// SPDX-License-Identifier: Apache-2.0
// One message of the program to whoever started it. The text has neither the program's name nor a line end.
#ifndef COUNTERSIGN_CL_MESSAGE_H
#define COUNTERSIGN_CL_MESSAGE_H

#include "platform/baseTools/gtString.h"

struct clMessage
{
    gtString _text;
    bool _isWarning = false;  // what was asked for is done all the same
};

#endif
