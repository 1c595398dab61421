// SPDX-License-Identifier: Apache-2.0
// What somebody may have meant who mistyped a word.
#ifndef COUNTERSIGN_CL_NEAREST_WORD_H
#define COUNTERSIGN_CL_NEAREST_WORD_H

#include "platform/baseTools/gtString.h"

#include <vector>

// The candidate that begins with the word, or else the one that the fewest mistakes lead to (a byte too many, missing,
// replaced, or swapped with its neighbour). Empty when there is none with at most one mistake for each three bytes of
// the word. Of equals the first.
gtString clNearestWord(const gtString& word, const std::vector<gtString>& candidates);

#endif
