// SPDX-License-Identifier: Apache-2.0
// What the commands sign, test and digest have in common.
#ifndef COUNTERSIGN_CL_DOCUMENT_COMMANDS_H
#define COUNTERSIGN_CL_DOCUMENT_COMMANDS_H

#include "cli/clInputs.h"
#include "cli/clKeyLoading.h"
#include "cli/clOutcome.h"
#include "cli/clProgressLine.h"
#include "cli/clResults.h"
#include "cli/clTurn.h"
#include "host/signing/hoFileSigning.h"

#include <cstddef>
#include <functional>
#include <vector>

// The work on one document, with the keys that are loaded. See clDocumentWork.
using clKeyedWork = std::function<clOutcome(const gtString& file, const clKeys& keys, const clTurn& turn)>;

// Works on documents with the keys, and returns the gravest of the statuses. amountBegun is set to how many it came to;
// without a key, which has been told then, it stays.
int clPerformWithKeys(const clArguments& arguments, const std::vector<gtString>& documents, clResults& results,
                      const clKeyedWork& work, std::size_t& amountBegun);

using clSignatureWork =
    std::function<clOutcome(const clInputs& inputs, const gtString& file, const clKeys& keys, const clTurn& turn)>;

// The same for documents with signatures beside them, which a pattern names together with them; prints the summary,
// too. otherKind: the result of what is not worked on.
int clPerformOnDocuments(const clArguments& arguments, const gtString& otherKind, const clSignatureWork& work);

// The progress of one document.
clProgressLine clProgressFor(const clArguments& arguments, const clTurn& turn, const gtString& name);

// "report.pdf: good" and a line end.
gtString clLineOf(const gtString& file, const gtString& result);

// The problem is the document's or the key's.
void clComplainOfSigning(clOutcome& outcome, const gtString& file, const clLoadedKey& key, const hoSigningFacts& facts);

// Whether it is enough to read the document once, if it can be read only once. False: the outcome says what is missing.
bool clCheckReadOnce(const clArguments& arguments, const gtString& file, clOutcome& outcome);

// For --json.
clJsonObject clFactsOf(const clLoadedKey& key);

#endif
