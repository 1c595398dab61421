// SPDX-License-Identifier: Apache-2.0
// The results of documents: a line for each on standard output as far as it is wanted, and what they come to.
#ifndef COUNTERSIGN_CL_RESULTS_H
#define COUNTERSIGN_CL_RESULTS_H

#include "cli/clArguments.h"
#include "cli/clOutcome.h"

#include <cstddef>
#include <utility>
#include <vector>

class clResults
{
public:
    // Of the arguments, --quiet, --status and --summary count. They must outlive this object.
    explicit clResults(const clArguments& arguments) : _arguments(arguments) {}

    // Prints what the outcome holds and counts its kind. Good ones have no line with --quiet, and none has one with
    // --status.
    void add(const clOutcome& outcome);

    // "3 documents: 2 good, 1 BAD; 4 signatures left out", with a line end: the kinds in the order in which they first
    // came. amountNotBegun: documents behind the one at which the work stopped.
    gtString summary(std::size_t amountNotBegun, std::size_t amountOfSignatures) const;

private:
    const clArguments& _arguments;
    std::vector<std::pair<gtString, std::size_t>> _amounts;
};

#endif
