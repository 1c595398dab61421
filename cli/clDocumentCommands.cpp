// SPDX-License-Identifier: Apache-2.0
#include "cli/clDocumentCommands.h"

#include <chrono>
#include <string_view>
#include <unistd.h>

#include "cli/clAdvice.h"
#include "cli/clColours.h"
#include "cli/clDocumentWork.h"
#include "cli/clInterrupt.h"
#include "cli/clJsonOutput.h"
#include "cli/clPrintableName.h"
#include "cli/clSignatureNames.h"
#include "cli/clStandardStreams.h"
#include "cli/clStreams.h"
#include "cli/clTerminal.h"
#include "host/keys/hoKeyRing.h"
#include "host/keys/hoPublicKey.h"
#include "host/messages/hoMessages.h"
#include "platform/osWrappers/osWriteAll.h"

namespace
{

// How long the program has been running, for the progress.
std::chrono::milliseconds now()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

void writeProgress(const gtString& text)
{
    // A terminal that is gone needs no progress.
    static_cast<void>(osWriteAll(STDERR_FILENO, text.asStringView(), clIsInterrupted));
}

}  // namespace

int clPerformWithKeys(const clArguments& arguments, const std::vector<gtString>& documents, clResults& results,
                      const clKeyedWork& work, std::size_t& amountBegun)
{
    const clKeys keys = clLoadKeys(arguments);
    if (keys.empty())
    {
        return clStatusNotChecked;
    }
    return clPerformInOrder(
        arguments, documents, [&](const gtString& document, const clTurn& turn) { return work(document, keys, turn); },
        results, amountBegun);
}

int clPerformOnDocuments(const clArguments& arguments, const gtString& otherKind, const clSignatureWork& work)
{
    const bool areSignaturesTaken = arguments._areSignaturesWanted || arguments._hasSignature;
    std::vector<gtString> documents;
    for (const gtString& file : arguments._files)
    {
        if (areSignaturesTaken || clKindOfName(file) != clNameKind::Signature)
        {
            documents.push_back(file);
        }
    }
    if (documents.empty())
    {
        clComplain("all names are those of signatures; --also-signatures takes them for documents");
        return clStatusNotChecked;
    }
    clResults results(arguments);
    const clInputs inputs(documents, arguments._keyPaths);
    std::size_t amountBegun = 0;
    const int status = clPerformWithKeys(
        arguments, documents, results,
        [&](const gtString& file, const clKeys& keys, const clTurn& turn)
        {
            if (areSignaturesTaken || clKindOfName(file) == clNameKind::Document)
            {
                return work(inputs, file, keys, turn);
            }
            clOutcome outcome;
            outcome._kind = otherKind;
            outcome._result = arguments._command == clCommand::Test ? "not-tested" : "not-signed";
            outcome._line = arguments._command == clCommand::Test ? clLineOf(file, clVerdictWord(hoVerdict::NotTested))
                                                                  : gtString();
            outcome.complain(clPrintableName(file), "it has the name of a signature, and there is no such document",
                             "; --also-signatures takes it for a document");
            return outcome;
        },
        amountBegun);
    // Without a key none is begun.
    if (arguments._isSummaryWanted && amountBegun > 0)
    {
        const std::size_t amountNotBegun = documents.size() - amountBegun;
        const std::size_t amountOfSignatures = arguments._files.size() - documents.size();
        arguments._isJsonWanted ? clWriteJson(results.jsonSummary(amountNotBegun, amountOfSignatures))
                                : clWriteOutput(results.summary(amountNotBegun, amountOfSignatures));
    }
    return status;
}

clProgressLine clProgressFor(const clArguments& arguments, const clTurn& turn, const gtString& name)
{
    const int columns = arguments._isQuiet || arguments._isStatusOnly ? 0 : clColumnsOfStandardError();
    const auto write = [isFirst = turn._isFirst](const gtString& text)
    {
        if (isFirst())
        {
            writeProgress(text);
        }
    };
    return clProgressLine(name, columns, now, columns > 0 ? write : clProgressLine::Writer(), turn._isCancelled);
}

gtString clLineOf(const gtString& file, const gtString& result)
{
    return clPrintableName(file).append(": ").append(result).append('\n');
}

void clComplainOfSigning(clOutcome& outcome, const gtString& file, const clLoadedKey& key, const hoSigningFacts& facts)
{
    const bool isTheKeys = facts._problem == hoSigningProblem::NoPrivateKey ||
                           facts._problem == hoSigningProblem::KeyTooSmall ||
                           facts._problem == hoSigningProblem::CannotCountersign ||
                           facts._problem == hoSigningProblem::CountersigningFailed;
    outcome.complain(clStreamName(isTheKeys ? key._path : file), hoSigningReason(facts), clSigningAdvice(facts));
}

bool clCheckReadOnce(const clArguments& arguments, const gtString& file, clOutcome& outcome)
{
    const bool isTest = arguments._command == clCommand::Test;
    if (!clIsStream(file) || (isTest ? arguments._hasSignature : arguments._hasOutput && !arguments._isSignedSkipped))
    {
        return true;
    }
    if (isTest || !arguments._hasOutput)
    {
        outcome.complain(clStreamName(file), "it is a pipe, and its signature has no place beside it",
                         isTest ? "; --signature PATH tells where it is" : "; --output PATH tells where it goes");
    }
    else
    {
        outcome.complain(clStreamName(file), "it is a pipe, which can be read only once", "; leave --skip-signed out");
    }
    return false;
}

clJsonObject clFactsOf(const clLoadedKey& key)
{
    clJsonObject object;
    object.addFileName("file", key._path).addNumber("bits", static_cast<std::size_t>(key._pKey->bits()));
    object.add("fingerprint", hoFingerprint(*key._pKey)).add("shortFingerprint", hoShortFingerprint(*key._pKey));
    return object;
}
