// SPDX-License-Identifier: Apache-2.0
// The results of documents: a line for each on standard output as far as it is wanted, and what they come to.
#ifndef COUNTERSIGN_CL_RESULTS_H
#define COUNTERSIGN_CL_RESULTS_H

#include "cli/clArguments.h"
#include "cli/clOutcome.h"

#include <cstddef>
#include <vector>

class clResults
{
public:
    // Of the arguments, --quiet, --status and --summary count. They must outlive this object.
    explicit clResults(const clArguments& arguments) : _arguments(arguments) {}

    // Prints what the outcome of the document holds and counts its kind. Good ones have no line with --quiet, and none
    // has one with --status. With --json the line is an object, which holds the messages and the product.
    void add(const gtString& document, const clOutcome& outcome);

    // "3 documents: 2 good, 1 BAD; 4 signatures left out", with a line end: the kinds in the order in which they first
    // came. amountNotBegun: documents behind the one at which the work stopped.
    gtString summary(std::size_t amountNotBegun, std::size_t amountOfSignatures) const;

    // The same as an object.
    clJsonObject jsonSummary(std::size_t amountNotBegun, std::size_t amountOfSignatures) const;

private:
    const clArguments& _arguments;
    struct Amount
    {
        gtString _kind;
        gtString _result;
        std::size_t _amount;
    };

    void count(const clOutcome& outcome);
    void print(const clOutcome& outcome, bool isLineWanted) const;
    void printJson(const gtString& document, const clOutcome& outcome) const;

    std::vector<Amount> _amounts;
};

#endif
