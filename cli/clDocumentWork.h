// SPDX-License-Identifier: Apache-2.0
// Works on documents, on several at a time where this is wanted, and prints what comes of them in the documents' order.
#ifndef COUNTERSIGN_CL_DOCUMENT_WORK_H
#define COUNTERSIGN_CL_DOCUMENT_WORK_H

#include "cli/clArguments.h"
#include "cli/clOutcome.h"
#include "cli/clResults.h"
#include "cli/clTurn.h"

#include <cstddef>
#include <functional>
#include <vector>

// The work on one document. With more than one job it is called on several threads at once. It prints nothing but its
// progress, and writes nothing that has a name: that is for the outcome's _finish.
using clDocumentWork = std::function<clOutcome(const gtString& document, const clTurn& turn)>;

// Returns the gravest of the statuses. amountBegun is set to the number of outcomes that were printed: fewer than there
// are documents after a signal that asks to end, and when an outcome cannot be printed. What the work throws comes out
// of here, in the document's turn.
int clPerformInOrder(const clArguments& arguments, const std::vector<gtString>& documents, const clDocumentWork& work,
                     clResults& results, std::size_t& amountBegun);

#endif
