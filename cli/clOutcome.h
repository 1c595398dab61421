// SPDX-License-Identifier: Apache-2.0
// What came of one document: all that is to be printed, so that the work need not print anything itself.
#ifndef COUNTERSIGN_CL_OUTCOME_H
#define COUNTERSIGN_CL_OUTCOME_H

#include "cli/clCommands.h"
#include "cli/clJsonObject.h"

#include <functional>
#include <vector>

struct clOutcome
{
    int _status = clStatusNotChecked;
    gtString _kind;       // "good", "signed": counted for the summary
    gtString _line;       // about the document, with its end; empty where there is none
    gtString _product;    // what was asked for (a signature, a digest text), with its end
    gtString _result;     // the kind as a word for programs: "good", "another-key"
    clJsonObject _facts;  // what --json tells besides
    std::vector<clMessage> _messages;

    // What is left to do in the document's turn, once all before it are done and printed: whatever writes files. Empty
    // where there is nothing.
    std::function<void(clOutcome& outcome)> _finish;

    void complain(const gtString& name, const gtString& reason, const gtString& advice = gtString())
    {
        _messages.push_back({gtString(name).append(": ").append(reason).append(advice), false});
    }

    void warn(const gtString& name, const gtString& reason)
    {
        _messages.push_back({gtString(name).append(": ").append(reason), true});
    }
};

#endif
