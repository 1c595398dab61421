// SPDX-License-Identifier: Apache-2.0
// Says whether what a program uses has grown while it did the same things again and again.
//
// A memory has grown if the line through its samples rises by more than a bound for a thousand operations, and by more
// than the noise of a heap at all. The line is Theil's (the median of the slopes between all pairs of samples): one odd
// sample, or a buffer that was enlarged once, does not bend it. Samples of the warm-up are not given to it.
//
// Handles are counted exactly: one more at the end than after the warm-up is one that was lost.
#ifndef SK_JUDGEMENT_H
#define SK_JUDGEMENT_H

#include "skResources.h"

#include <string>
#include <vector>

struct skMoment
{
    double _operations = 0;  // that were performed before
    skSample _sample = {};
};

struct skFinding
{
    skResource _resource = skResource::Heap;
    double _first = 0;
    double _last = 0;
    double _growth = 0;  // for a thousand operations; of handles that of the whole run
    double _bound = 0;   // for it
    bool _isGrown = false;
};

// The most that a thousand operations may add to a memory, in bytes, and what is noise in any case.
constexpr double skMostGrowth = 64.0 * 1024;
constexpr double skNoise = 1024.0 * 1024;

// Theil's slope of the values over the positions; 0 for less than two positions.
double skSlope(const std::vector<double>& positions, const std::vector<double>& values);

// One finding a resource. There must be a moment.
std::vector<skFinding> skJudge(const std::vector<skMoment>& moments);

// A table for people, one line a resource.
std::string skTableOf(const std::vector<skFinding>& findings);

#endif
