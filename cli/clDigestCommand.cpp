// SPDX-License-Identifier: Apache-2.0
#include "cli/clDigestCommand.h"

#include "cli/clDocumentCommands.h"
#include "cli/clPrintableName.h"
#include "cli/clStreams.h"

namespace
{

clOutcome digestFile(const clArguments& arguments, const gtString& file, const clLoadedKey& key, const clTurn& turn)
{
    clOutcome outcome;
    outcome._result = "not-read";
    hoSigningFacts facts;
    {
        clProgressLine progress = clProgressFor(arguments, turn, clPrintableName(file));
        const clOpenDocument document(file);
        facts = hoDigestOfDocument(document.source(), *key._pKey, &progress, outcome._product);
    }
    if (!facts.isOk())
    {
        clComplainOfSigning(outcome, file, key, facts);
        return outcome;
    }
    outcome._status = clStatusGood;
    outcome._result = "read";
    outcome._facts.add("digest", outcome._product);
    if (arguments._files.size() > 1)
    {
        outcome._product.append("  ").append(clPrintableName(file));
    }
    outcome._product.append('\n');
    return outcome;
}

}  // namespace

int clPerformDigest(const clArguments& arguments)
{
    clResults results(arguments);
    std::size_t ignored = 0;
    return clPerformWithKeys(
        arguments, arguments._files, results,
        [&](const gtString& file, const clKeys& keys, const clTurn& turn)
        { return digestFile(arguments, file, keys.front(), turn); },
        ignored);
}
