// SPDX-License-Identifier: Apache-2.0
// What the work on one document may ask while others are being worked on. Both functions are safe from any thread.
#ifndef COUNTERSIGN_CL_TURN_H
#define COUNTERSIGN_CL_TURN_H

#include <functional>

struct clTurn
{
    // Whether all documents before this one are done and printed: its progress is the one that is shown.
    std::function<bool()> _isFirst;
    // Whether to give it up.
    std::function<bool()> _isCancelled;
};

#endif
