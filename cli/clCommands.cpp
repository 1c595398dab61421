// SPDX-License-Identifier: Apache-2.0
#include "cli/clCommands.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <unistd.h>

#include "cli/clAdvice.h"
#include "cli/clDocumentNames.h"
#include "cli/clInputs.h"
#include "cli/clInterrupt.h"
#include "cli/clKeyCommand.h"
#include "cli/clKeyLoading.h"
#include "cli/clKeygen.h"
#include "cli/clPrintableName.h"
#include "cli/clProgressLine.h"
#include "cli/clResults.h"
#include "cli/clSignatureNames.h"
#include "cli/clStandardStreams.h"
#include "cli/clTerminal.h"
#include "host/messages/hoMessages.h"
#include "platform/baseTools/gtWipe.h"
#include "platform/osWrappers/osAtomicFile.h"
#include "platform/osWrappers/osWriteAll.h"

namespace
{

const char* const standardStream = "-";

// A text from standard input is not read beyond this; nothing near it can be encrypted.
constexpr int longestInput = 1024 * 1024;

void complain(const gtString& name, const gtString& reason, const gtString& advice = gtString())
{
    clComplain(gtString(name).append(": ").append(reason).append(advice));
}

void complainOfSigning(const clArguments& arguments, const gtString& name, const hoSigningFacts& facts)
{
    const bool isTheKeys = facts._problem == hoSigningProblem::NoPrivateKey ||
                           facts._problem == hoSigningProblem::KeyTooSmall ||
                           facts._problem == hoSigningProblem::CannotCountersign ||
                           facts._problem == hoSigningProblem::CountersigningFailed;
    complain(isTheKeys ? clPrintableName(arguments._keyPath) : name, hoSigningReason(facts), clSigningAdvice(facts));
}

std::unique_ptr<const hoKey> loadKey(const clArguments& arguments)
{
    const bool isPublicEnough = arguments._command == clCommand::Test || arguments._command == clCommand::Digest ||
                                (arguments._command == clCommand::Encrypt && !arguments._isPrivateWanted);
    hoKeyFileFacts facts;
    std::unique_ptr<const hoKey> pKey =
        clLoadKey(arguments, arguments._keyPath, isPublicEnough ? hoKeyNeed::Public : hoKeyNeed::Any, facts);
    // A private key need not be in memory longer than it takes to read its file.
    return (pKey != nullptr && isPublicEnough) ? pKey->publicHalf() : std::move(pKey);
}

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

clProgressLine progressFor(const clArguments& arguments, const gtString& name)
{
    const int columns = arguments._isQuiet || arguments._isStatusOnly ? 0 : clColumnsOfStandardError();
    return clProgressLine(name, columns, now, columns > 0 ? writeProgress : clProgressLine::Writer(), clIsInterrupted);
}

gtString lineOf(const gtString& file, const gtString& result)
{
    return clPrintableName(file).append(": ").append(result).append('\n');
}

// Works on one file after the other, and returns the gravest of the statuses. amountBegun: how many it came to.
template <class Work>
int performOnFiles(const clArguments& arguments, const std::vector<gtString>& files, Work work,
                   std::size_t* pAmountBegun = nullptr)
{
    const std::unique_ptr<const hoKey> pKey = loadKey(arguments);
    if (pKey == nullptr)
    {
        return clStatusNotChecked;
    }
    int status = clStatusGood;
    for (const gtString& file : files)
    {
        status = std::max(status, work(file, *pKey));
        if (pAmountBegun != nullptr)
        {
            ++*pAmountBegun;
        }
        // What a program that is killed has done is told by then. Where it cannot be told, nothing more is begun.
        if (clFlushOutput() != 0 || clIsInterrupted())
        {
            break;
        }
    }
    return status;
}

// The same for documents with signatures beside them, which a pattern names together with them. otherKind: the result
// of what is not worked on.
template <class Work>
int performOnDocuments(const clArguments& arguments, const gtString& otherKind, Work work)
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
    const clInputs inputs(documents, arguments._keyPath);
    std::size_t amountBegun = 0;
    const int status = performOnFiles(
        arguments, documents,
        [&](const gtString& file, const hoKey& key)
        {
            if (areSignaturesTaken || clKindOfName(file) == clNameKind::Document)
            {
                return work(inputs, file, key, results);
            }
            const gtString name = clPrintableName(file);
            complain(name, "it has the name of a signature, and there is no such document",
                     "; --also-signatures takes it for a document");
            results.add(otherKind, arguments._command == clCommand::Test ? lineOf(file, otherKind) : gtString(), false);
            return clStatusNotChecked;
        },
        &amountBegun);
    // Without a key none is begun.
    if (arguments._isSummaryWanted && amountBegun > 0)
    {
        clWriteOutput(results.summary(documents.size() - amountBegun, arguments._files.size() - documents.size()));
    }
    return status;
}

void complainOfSignatureFile(const gtString& name, const hoSignatureFileResult& facts)
{
    complain(name, hoSignatureFileReason(facts), clSignatureFileAdvice(facts));
}

// Whether a signature may be written to the path, as far as can be told before the document is read.
bool isFreeTarget(const clArguments& arguments, const clInputs& inputs, const gtString& path)
{
    const gtString name = clPrintableName(path);
    const gtString input = inputs.inputAt(path);
    if (!input.isEmpty())
    {
        complain(name, gtString("it is ").append(input).append(", which is never overwritten"),
                 "; --output puts the signature elsewhere");
        return false;
    }
    const hoSignatureFileResult signatureFile = hoCheckSignaturePath(path, arguments._isForced);
    if (!signatureFile.isOk())
    {
        complainOfSignatureFile(name, signatureFile);
    }
    return signatureFile.isOk();
}

hoSignatureLines wantedLines(const clArguments& arguments)
{
    return arguments._isDigestOnly ? hoSignatureLines::DigestOnly : hoSignatureLines::Both;
}

// Whether the signature that is there is as good as the one that would be made.
bool isAlreadySigned(const clArguments& arguments, const gtString& path, const gtString& file, const hoKey& key)
{
    gtString signature;
    if (!hoReadSignatureFile(path, signature).isOk())
    {
        return false;
    }
    clProgressLine progress = progressFor(arguments, clPrintableName(file));
    const hoVerdict verdict = hoTestFile(file, {&key}, signature.asStringView(), &progress)._verdict;
    return verdict == hoVerdict::Good ||
           (verdict == hoVerdict::Weak && wantedLines(arguments) == hoSignatureLines::DigestOnly);
}

// Makes the signature and writes it. False: it has said why not.
bool makeSignature(const clArguments& arguments, const clInputs& inputs, const gtString& path, const gtString& file,
                   const hoKey& key)
{
    const bool isForOutput = path == standardStream;
    if (!isForOutput && !isFreeTarget(arguments, inputs, path))
    {
        return false;
    }
    const gtString name = clPrintableName(file);
    gtString signature;
    hoSigningFacts facts;
    {
        clProgressLine progress = progressFor(arguments, name);
        facts = hoSignFile(file, key, wantedLines(arguments), &progress, signature);
    }
    if (!facts.isOk())
    {
        complainOfSigning(arguments, name, facts);
        return false;
    }
    if (isForOutput)
    {
        clWriteOutput(signature);
        return true;
    }
    // Reading may have taken long enough for something to be put there.
    if (!isFreeTarget(arguments, inputs, path))
    {
        return false;
    }
    const gtString signatureName = clPrintableName(path);
    const bool isReadOnly = osIsReadOnly(path);
    const hoSignatureFileResult signatureFile = hoWriteSignatureFile(path, signature, arguments._isForced);
    if (!signatureFile.isOk())
    {
        complainOfSignatureFile(signatureName, signatureFile);
        return false;
    }
    if (isReadOnly)
    {
        complain(gtString("warning: ").append(signatureName), "a read-only signature was replaced");
    }
    return true;
}

int signFile(const clArguments& arguments, const clInputs& inputs, const gtString& file, const hoKey& key,
             clResults& results)
{
    const gtString path = arguments._hasOutput ? arguments._outputPath : hoSignaturePath(file);
    const bool isKept = arguments._isSignedSkipped && isAlreadySigned(arguments, path, file, key);
    if (!isKept && !makeSignature(arguments, inputs, path, file, key))
    {
        results.add("not signed", gtString(), false);
        return clStatusNotChecked;
    }
    const gtString kind = isKept ? "already signed" : "signed";
    const gtString result = gtString(kind).append(", ").append(clPrintableName(path));
    results.add(kind, path == standardStream ? gtString() : lineOf(file, result), true);
    return clStatusGood;
}

// Where the signature of the file is.
gtString signaturePathFor(const clArguments& arguments, const gtString& file)
{
    return arguments._hasSignature ? arguments._signaturePath : hoSignaturePath(file);
}

bool isSignatureOnInput(const clArguments& arguments)
{
    return arguments._hasSignature && arguments._signaturePath == standardStream;
}

hoSignatureFileResult readSignature(const clArguments& arguments, const gtString& file, gtString& signature)
{
    if (!isSignatureOnInput(arguments))
    {
        return hoReadSignatureFile(signaturePathFor(arguments, file), signature);
    }
    // One byte more than a signature may have, which tells that there are too many.
    const int error = clReadInput(signature, static_cast<int>(hoLargestSignatureFile) + 1);
    return error == 0 ? hoSignatureFileResult() : hoSignatureFileResult(hoSignatureFileProblem::CannotBeRead, error);
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

// On standard error, under the name of what it is about.
void complainOfVerdict(const clArguments& arguments, const gtString& file, const hoSignatureFileResult& signatureFile,
                       const hoTestFacts& facts)
{
    const gtString signatureName =
        isSignatureOnInput(arguments) ? gtString("standard input") : clPrintableName(signaturePathFor(arguments, file));
    if (!signatureFile.isOk())
    {
        complain(signatureName, hoSignatureFileReason(signatureFile), clVerdictAdvice(facts._verdict));
    }
    else if (!facts.isOk())
    {
        complainOfSigning(arguments, clPrintableName(file), facts);
    }
    else if (facts._verdict == hoVerdict::Bad)
    {
        // Its line on standard output says all.
        return;
    }
    else
    {
        complain(signatureName, hoVerdictReason(facts), clVerdictAdvice(facts._verdict));
    }
}

int testFile(const clArguments& arguments, const gtString& file, const hoKey& key, clResults& results)
{
    const gtString name = clPrintableName(file);
    hoSignatureFileResult signatureFile;
    hoTestFacts facts;
    // A file that is not there is told about before its signature is missed.
    osFileFacts ignored;
    const osFileResult reading = osReadFileFacts(file, ignored);
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
            clProgressLine progress = progressFor(arguments, name);
            facts = hoTestFile(file, {&key}, signature.asStringView(), &progress);
        }
        else
        {
            facts = hoTestFacts(signatureFile);
        }
    }
    const int status = statusOf(facts._verdict, arguments._isWeakAccepted);
    if (status != clStatusGood)
    {
        complainOfVerdict(arguments, file, signatureFile, facts);
    }
    const gtString verdict = hoVerdictText(facts._verdict);
    results.add(verdict, lineOf(file, verdict), status == clStatusGood);
    return status;
}

int digestFile(const clArguments& arguments, const gtString& file, const hoKey& key)
{
    const gtString name = clPrintableName(file);
    gtString digestText;
    hoSigningFacts facts;
    {
        clProgressLine progress = progressFor(arguments, name);
        facts = hoDigestOfFile(file, key, &progress, digestText);
    }
    if (!facts.isOk())
    {
        complainOfSigning(arguments, name, facts);
        return clStatusNotChecked;
    }
    if (arguments._files.size() > 1)
    {
        digestText.append("  ").append(name);
    }
    clWriteOutput(digestText.append('\n'));
    return clStatusGood;
}

// The text from the arguments or from standard input.
bool readText(const clArguments& arguments, gtString& text)
{
    if (arguments._hasPlainText)
    {
        text = arguments._plainText;
        return true;
    }
    const int error = clReadInput(text, longestInput);
    if (error != 0)
    {
        complain("standard input: cannot be read", hoSystemErrorText(error));
    }
    return error == 0;
}

int encrypt(const clArguments& arguments)
{
    const std::unique_ptr<const hoKey> pKey = loadKey(arguments);
    gtWipedText text;
    if (pKey == nullptr || !clHasWantedHalf(arguments, *pKey) || !readText(arguments, text._text))
    {
        return clStatusNotChecked;
    }
    if (arguments._isPrivateWanted && !arguments._areWarningsLeftOut)
    {
        complain(gtString("warning: ").append(clPrintableName(arguments._keyPath)), hoPrivateEncryptionWarning());
    }
    gtString cipherText;
    const hoTextResult result = hoEncryptText(pKey->ownKey(), text._text, cipherText);
    const int lengthOfText = text._text.length();
    gtWipe(text._text);
    if (!result.isOk())
    {
        clComplain(hoEncryptionReason(result._problem, pKey->ownKey(), lengthOfText));
        return clStatusNotChecked;
    }
    clWriteOutput(cipherText.append('\n'));
    return clStatusGood;
}

int decrypt(const clArguments& arguments)
{
    const std::unique_ptr<const hoKey> pKey = loadKey(arguments);
    gtString cipherText;
    if (pKey == nullptr || !readText(arguments, cipherText))
    {
        return clStatusNotChecked;
    }
    gtWipedText text;
    const hoTextResult result = hoDecryptText(pKey->ownKey(), cipherText, text._text);
    if (!result.isOk())
    {
        const gtString reason = hoDecryptionReason(result._problem, pKey->ownKey(), cipherText.length());
        if (result._problem == hoTextProblem::DoesNotComeOut)
        {
            complain(clPrintableName(arguments._keyPath), reason);
            return clStatusNotGood;
        }
        clComplain(reason);
        return clStatusNotChecked;
    }
    clWriteOutput(text._text);
    if (clIsOutputATerminal())
    {
        clWriteOutput("\n");
    }
    return clStatusGood;
}

int perform(const clArguments& arguments)
{
    switch (arguments._command)
    {
    case clCommand::ShowText:
        clWriteOutput(arguments._text);
        return clStatusGood;
    case clCommand::Sign:
        return performOnDocuments(arguments, "not signed",
                                  [&](const clInputs& inputs, const gtString& file, const hoKey& key,
                                      clResults& results) { return signFile(arguments, inputs, file, key, results); });
    case clCommand::Test:
        return performOnDocuments(arguments, hoVerdictText(hoVerdict::NotTested),
                                  [&](const clInputs&, const gtString& file, const hoKey& key, clResults& results)
                                  { return testFile(arguments, file, key, results); });
    case clCommand::Digest:
        return performOnFiles(arguments, arguments._files,
                              [&](const gtString& file, const hoKey& key) { return digestFile(arguments, file, key); });
    case clCommand::Encrypt:
        return encrypt(arguments);
    case clCommand::Decrypt:
        return decrypt(arguments);
    case clCommand::Key:
        return clPerformKey(arguments);
    case clCommand::Keygen:
        return clPerformKeygen(arguments);
    case clCommand::WrongUse:
        break;
    }
    writeProgress(arguments._text);
    return clStatusNotChecked;
}

int performOnWhatIsNamed(const clArguments& arguments)
{
    if (!arguments._isRecursive && arguments._namesPath.isEmpty())
    {
        return perform(arguments);
    }
    bool isComplete = true;
    const clArguments gathered = clGatherDocuments(arguments, isComplete);
    const int status = gathered._files.empty() || clIsInterrupted() ? clStatusNotChecked : perform(gathered);
    return isComplete ? status : clStatusNotChecked;
}

}  // namespace

int clPerform(const clArguments& arguments)
{
    if (arguments._isStatusOnly)
    {
        clSilenceComplaints();
    }
    const int status = performOnWhatIsNamed(arguments);
    const int error = clFlushOutput();
    if (error != 0)
    {
        complain("standard output: cannot be written", hoSystemErrorText(error));
        return clStatusNotChecked;
    }
    return status;
}
