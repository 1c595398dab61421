// SPDX-License-Identifier: Apache-2.0
#include "cli/clTestCommand.h"

#include "cli/clAdvice.h"
#include "cli/clColours.h"
#include "cli/clDocumentCommands.h"
#include "cli/clPrintableName.h"
#include "cli/clStandardStreams.h"
#include "cli/clStreams.h"
#include "host/messages/hoMessages.h"
#include "host/signing/hoSignatureFile.h"

namespace
{

// Where the signature of the file is.
gtString signaturePathFor(const clArguments& arguments, const gtString& file)
{
    return arguments._hasSignature ? arguments._signaturePath : hoSignaturePath(file);
}

bool isSignatureOnInput(const clArguments& arguments)
{
    return arguments._hasSignature && clIsStandardInput(arguments._signaturePath);
}

hoSignatureFileResult readSignature(const clArguments& arguments, const gtString& file, gtString& signature)
{
    // Beside the file there is no place for a pipe.
    if (!arguments._hasSignature || !clIsStream(arguments._signaturePath))
    {
        return hoReadSignatureFile(signaturePathFor(arguments, file), signature);
    }
    // One byte more than a signature may have, which tells that there are too many.
    const int limit = static_cast<int>(hoLargestSignatureFile) + 1;
    const int error = clReadStream(arguments._signaturePath, signature, limit);
    if (error != 0)
    {
        return hoSignatureFileResult(hoSignatureFileProblem::CannotBeRead, error);
    }
    return signature.length() < limit ? hoSignatureFileProblem::None : hoSignatureFileProblem::TooLarge;
}

int statusOf(hoVerdict verdict, bool isWeakAccepted)
{
    switch (verdict)
    {
    case hoVerdict::Good:
        return clStatusGood;
    case hoVerdict::Bad:
        return clStatusNotGood;
    case hoVerdict::Weak:
        return isWeakAccepted ? clStatusGood : clStatusNotChecked;
    default:
        return clStatusNotChecked;
    }
}

// Under the name of what it is about.
void complainOfVerdict(const clArguments& arguments, const gtString& file, const hoSignatureFileResult& signatureFile,
                       const clKeys& keys, const hoTestFacts& facts, clOutcome& outcome)
{
    const gtString signatureName =
        isSignatureOnInput(arguments) ? gtString("standard input") : clPrintableName(signaturePathFor(arguments, file));
    if (!signatureFile.isOk())
    {
        outcome.complain(signatureName, hoSignatureFileReason(signatureFile), clVerdictAdvice(facts._verdict));
    }
    else if (!facts.isOk())
    {
        clComplainOfSigning(outcome, file, keys[facts._key], facts);
    }
    else if (facts._verdict == hoVerdict::Bad)
    {
        // Its line on standard output says all.
        return;
    }
    else
    {
        outcome.complain(signatureName, hoVerdictReason(facts), clVerdictAdvice(facts._verdict));
    }
}

// Whether the verdict says that the signature is one key's.
bool isOfOneKey(hoVerdict verdict)
{
    return verdict == hoVerdict::Good || verdict == hoVerdict::Bad || verdict == hoVerdict::Weak;
}

const char* resultOf(hoVerdict verdict)
{
    switch (verdict)
    {
    case hoVerdict::Good:
        return "good";
    case hoVerdict::Bad:
        return "bad";
    case hoVerdict::Weak:
        return "weak";
    case hoVerdict::AnotherKey:
        return "another-key";
    case hoVerdict::NotASignature:
        return "not-a-signature";
    case hoVerdict::NotSigned:
        return "not-signed";
    case hoVerdict::Missing:
        return "missing";
    case hoVerdict::Unreadable:
        return "unreadable";
    case hoVerdict::Changed:
        return "changed";
    case hoVerdict::NotTested:
        break;
    }
    return "not-tested";
}

void addFacts(clJsonObject& object, const clArguments& arguments, const gtString& file, const clKeys& keys,
              const hoTestFacts& facts)
{
    if (!isSignatureOnInput(arguments))
    {
        object.addFileName("signature", signaturePathFor(arguments, file));
    }
    if (isOfOneKey(facts._verdict))
    {
        object.addObject("key", clFactsOf(keys[facts._key]));
    }
    if (!facts._fingerprint.isEmpty())
    {
        object.add("signatureFingerprint", facts._fingerprint);
    }
}

clOutcome testFile(const clArguments& arguments, const gtString& file, const clKeys& keys, const clTurn& turn)
{
    clOutcome outcome;
    if (!clCheckReadOnce(arguments, file, outcome))
    {
        outcome._kind = hoVerdictText(hoVerdict::NotTested);
        outcome._result = resultOf(hoVerdict::NotTested);
        outcome._line = clLineOf(file, outcome._kind);
        return outcome;
    }
    hoSignatureFileResult signatureFile;
    hoTestFacts facts;
    // A file that is not there is told about before its signature is missed.
    osFileFacts ignored;
    const osFileResult reading = clIsStream(file) ? osFileResult() : osReadFileFacts(file, ignored);
    if (!reading.isOk())
    {
        facts = hoTestFacts(hoSigningFacts(reading));
    }
    else
    {
        gtString signature;
        signatureFile = readSignature(arguments, file, signature);
        if (signatureFile.isOk())
        {
            clProgressLine progress = clProgressFor(arguments, turn, clPrintableName(file));
            const clOpenDocument document(file);
            facts = hoTestDocument(document.source(), clPointersTo(keys), signature.asStringView(), &progress);
        }
        else
        {
            facts = hoTestFacts(signatureFile);
        }
    }
    outcome._status = statusOf(facts._verdict, arguments._isWeakAccepted);
    if (outcome._status != clStatusGood)
    {
        complainOfVerdict(arguments, file, signatureFile, keys, facts, outcome);
    }
    outcome._kind = hoVerdictText(facts._verdict);
    outcome._result = resultOf(facts._verdict);
    addFacts(outcome._facts, arguments, file, keys, facts);
    gtString result = clVerdictWord(facts._verdict);
    // Of a single key it is known which one it is.
    const bool mayBeSeveral = arguments._keyPaths.size() > 1 || !arguments._keyFolders.empty();
    if (mayBeSeveral && isOfOneKey(facts._verdict))
    {
        result.append(", ").append(clPrintableName(keys[facts._key]._path));
    }
    outcome._line = clLineOf(file, result);
    return outcome;
}

}  // namespace

int clPerformTest(const clArguments& arguments)
{
    return clPerformOnDocuments(arguments, hoVerdictText(hoVerdict::NotTested),
                                [&](const clInputs&, const gtString& file, const clKeys& keys, const clTurn& turn)
                                { return testFile(arguments, file, keys, turn); });
}
