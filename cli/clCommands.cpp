// SPDX-License-Identifier: Apache-2.0
#include "cli/clCommands.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <unistd.h>

#include "cli/clAdvice.h"
#include "cli/clColours.h"
#include "cli/clDocumentNames.h"
#include "cli/clDocumentWork.h"
#include "cli/clInputs.h"
#include "cli/clInterrupt.h"
#include "cli/clJsonOutput.h"
#include "cli/clKeyCommand.h"
#include "cli/clKeyLoading.h"
#include "cli/clKeygen.h"
#include "cli/clOutcome.h"
#include "cli/clPrintableName.h"
#include "cli/clProgressLine.h"
#include "cli/clResults.h"
#include "cli/clSignatureNames.h"
#include "cli/clStandardStreams.h"
#include "cli/clStreams.h"
#include "cli/clTerminal.h"
#include "host/keys/hoKeyRing.h"
#include "host/keys/hoPublicKey.h"
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

// The problem is the document's or the key's.
void complainOfSigning(clOutcome& outcome, const gtString& file, const clLoadedKey& key, const hoSigningFacts& facts)
{
    const bool isTheKeys = facts._problem == hoSigningProblem::NoPrivateKey ||
                           facts._problem == hoSigningProblem::KeyTooSmall ||
                           facts._problem == hoSigningProblem::CannotCountersign ||
                           facts._problem == hoSigningProblem::CountersigningFailed;
    outcome.complain(clStreamName(isTheKeys ? key._path : file), hoSigningReason(facts), clSigningAdvice(facts));
}

// The key of a command that takes one.
std::unique_ptr<const hoKey> loadKey(const clArguments& arguments)
{
    clKeys keys = clLoadKeys(arguments);
    return keys.empty() ? nullptr : std::move(keys.front()._pKey);
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

clProgressLine progressFor(const clArguments& arguments, const clTurn& turn, const gtString& name)
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

gtString lineOf(const gtString& file, const gtString& result)
{
    return clPrintableName(file).append(": ").append(result).append('\n');
}

// Works on documents with the keys, and returns the gravest of the statuses. amountBegun: how many it came to.
template <class Work>
int performWithKeys(const clArguments& arguments, const std::vector<gtString>& documents, clResults& results, Work work,
                    std::size_t& amountBegun)
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
    const clInputs inputs(documents, arguments._keyPaths);
    std::size_t amountBegun = 0;
    const int status = performWithKeys(
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
            outcome._line =
                arguments._command == clCommand::Test ? lineOf(file, clVerdictWord(hoVerdict::NotTested)) : gtString();
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

void complainOfSignatureFile(clOutcome& outcome, const gtString& path, const hoSignatureFileResult& facts)
{
    outcome.complain(clPrintableName(path), hoSignatureFileReason(facts), clSignatureFileAdvice(facts));
}

// Whether a signature may be written to the path, as far as can be told before the document is read.
bool isFreeTarget(const clArguments& arguments, const clInputs& inputs, const gtString& path, clOutcome& outcome)
{
    const gtString input = inputs.inputAt(path);
    if (!input.isEmpty())
    {
        outcome.complain(clPrintableName(path), gtString("it is ").append(input).append(", which is never overwritten"),
                         "; --output puts the signature elsewhere");
        return false;
    }
    const hoSignatureFileResult signatureFile = hoCheckSignaturePath(path, arguments._isForced);
    if (!signatureFile.isOk())
    {
        complainOfSignatureFile(outcome, path, signatureFile);
    }
    return signatureFile.isOk();
}

hoSignatureLines wantedLines(const clArguments& arguments)
{
    return arguments._isDigestOnly ? hoSignatureLines::DigestOnly : hoSignatureLines::Both;
}

// Whether the signature that is there is as good as the one that would be made.
bool isAlreadySigned(const clArguments& arguments, const gtString& path, const gtString& file, const hoKey& key,
                     const clTurn& turn)
{
    gtString signature;
    if (!hoReadSignatureFile(path, signature).isOk())
    {
        return false;
    }
    clProgressLine progress = progressFor(arguments, turn, clPrintableName(file));
    const hoVerdict verdict = hoTestFile(file, {&key}, signature.asStringView(), &progress)._verdict;
    return verdict == hoVerdict::Good ||
           (verdict == hoVerdict::Weak && wantedLines(arguments) == hoSignatureLines::DigestOnly);
}

// A signature that is to be written yet.
struct MadeSignature
{
    bool _isTried = false;  // otherwise its place was taken
    hoSigningFacts _facts;
    gtString _text;
};

void makeSignature(const clArguments& arguments, const gtString& file, const hoKey& key, const clTurn& turn,
                   MadeSignature& signature)
{
    clProgressLine progress = progressFor(arguments, turn, clPrintableName(file));
    signature._isTried = true;
    const clOpenDocument document(file);
    signature._facts = hoSignDocument(document.source(), key, wantedLines(arguments), &progress, signature._text);
}

// False: the outcome says why not.
bool writeSignature(const clArguments& arguments, const gtString& path, const gtString& signature, clOutcome& outcome)
{
    const bool isReadOnly = osIsReadOnly(path);
    const hoSignatureFileResult signatureFile = hoWriteSignatureFile(path, signature, arguments._isForced);
    if (!signatureFile.isOk())
    {
        complainOfSignatureFile(outcome, path, signatureFile);
        return false;
    }
    if (isReadOnly)
    {
        outcome.warn(clPrintableName(path), "a read-only signature was replaced");
    }
    return true;
}

clJsonObject factsOf(const clLoadedKey& key)
{
    clJsonObject object;
    object.addFileName("file", key._path).addNumber("bits", static_cast<std::size_t>(key._pKey->bits()));
    object.add("fingerprint", hoFingerprint(*key._pKey)).add("shortFingerprint", hoShortFingerprint(*key._pKey));
    return object;
}

// Whether it is enough to read the document once, if it can be read only once. False: the outcome says what is missing.
bool checkReadOnce(const clArguments& arguments, const gtString& file, clOutcome& outcome)
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

void setSigned(clOutcome& outcome, bool isKept, const gtString& file, const gtString& path, const clLoadedKey& key)
{
    outcome._status = clStatusGood;
    outcome._kind = isKept ? "already signed" : "signed";
    outcome._result = isKept ? "already-signed" : "signed";
    outcome._facts.addFileName("signature", path).addObject("key", factsOf(key));
    if (path != standardStream)
    {
        outcome._line = lineOf(file, gtString(outcome._kind).append(", ").append(clPrintableName(path)));
    }
}

// Of what is at the path; none when there is nothing.
osFileFacts fileFactsOf(const gtString& path)
{
    osFileFacts facts;
    static_cast<void>(osReadFileFacts(path, facts));
    return facts;
}

clOutcome signFile(const clArguments& arguments, const clInputs& inputs, const gtString& file, const clLoadedKey& key,
                   const clTurn& turn)
{
    clOutcome outcome;
    outcome._kind = "not signed";
    outcome._result = "not-signed";
    const gtString path = arguments._hasOutput ? arguments._outputPath : hoSignaturePath(file);
    const bool isForOutput = path == standardStream;
    if (!checkReadOnce(arguments, file, outcome))
    {
        return outcome;
    }
    const osFileFacts before = fileFactsOf(path);
    if (arguments._isSignedSkipped && isAlreadySigned(arguments, path, file, *key._pKey, turn))
    {
        setSigned(outcome, true, file, path, key);
        return outcome;
    }
    MadeSignature made;
    clOutcome ignored;
    if (isForOutput || isFreeTarget(arguments, inputs, path, ignored))
    {
        makeSignature(arguments, file, *key._pKey, turn, made);
    }
    if (made._isTried && !made._facts.isOk())
    {
        complainOfSigning(outcome, file, key, made._facts);
        return outcome;
    }
    if (isForOutput)
    {
        setSigned(outcome, false, file, path, key);
        outcome._product = made._text;
        return outcome;
    }
    outcome._finish = [&arguments, &inputs, &key, file, path, before, made, turn](clOutcome& finished) mutable
    {
        // The same file may have been signed under another name.
        if (arguments._isSignedSkipped && fileFactsOf(path) != before &&
            isAlreadySigned(arguments, path, file, *key._pKey, turn))
        {
            setSigned(finished, true, file, path, key);
            return;
        }
        // Reading may have taken long enough for something to be put there, or to go.
        if (!isFreeTarget(arguments, inputs, path, finished))
        {
            return;
        }
        if (!made._isTried)
        {
            makeSignature(arguments, file, *key._pKey, turn, made);
        }
        if (!made._facts.isOk())
        {
            complainOfSigning(finished, file, key, made._facts);
        }
        else if (writeSignature(arguments, path, made._text, finished))
        {
            setSigned(finished, false, file, path, key);
        }
    };
    return outcome;
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
        complainOfSigning(outcome, file, keys[facts._key], facts);
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
        object.addObject("key", factsOf(keys[facts._key]));
    }
    if (!facts._fingerprint.isEmpty())
    {
        object.add("signatureFingerprint", facts._fingerprint);
    }
}

clOutcome testFile(const clArguments& arguments, const gtString& file, const clKeys& keys, const clTurn& turn)
{
    clOutcome outcome;
    if (!checkReadOnce(arguments, file, outcome))
    {
        outcome._kind = hoVerdictText(hoVerdict::NotTested);
        outcome._result = resultOf(hoVerdict::NotTested);
        outcome._line = lineOf(file, outcome._kind);
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
            clProgressLine progress = progressFor(arguments, turn, clPrintableName(file));
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
    outcome._line = lineOf(file, result);
    return outcome;
}

clOutcome digestFile(const clArguments& arguments, const gtString& file, const clLoadedKey& key, const clTurn& turn)
{
    clOutcome outcome;
    outcome._result = "not-read";
    hoSigningFacts facts;
    {
        clProgressLine progress = progressFor(arguments, turn, clPrintableName(file));
        const clOpenDocument document(file);
        facts = hoDigestOfDocument(document.source(), *key._pKey, &progress, outcome._product);
    }
    if (!facts.isOk())
    {
        complainOfSigning(outcome, file, key, facts);
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

int digestFiles(const clArguments& arguments)
{
    clResults results(arguments);
    std::size_t ignored = 0;
    return performWithKeys(
        arguments, arguments._files, results,
        [&](const gtString& file, const clKeys& keys, const clTurn& turn)
        { return digestFile(arguments, file, keys.front(), turn); },
        ignored);
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
        clWarn(clPrintableName(arguments._keyPath).append(": ").append(hoPrivateEncryptionWarning()));
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
    const gtString readTwice = clFindStreamReadTwice(arguments);
    if (!readTwice.isEmpty())
    {
        clComplain(readTwice);
        return clStatusNotChecked;
    }
    switch (arguments._command)
    {
    case clCommand::ShowText:
        clWriteOutput(arguments._text);
        return clStatusGood;
    case clCommand::Sign:
        return performOnDocuments(
            arguments, "not signed",
            [&](const clInputs& inputs, const gtString& file, const clKeys& keys, const clTurn& turn)
            { return signFile(arguments, inputs, file, keys.front(), turn); });
    case clCommand::Test:
        return performOnDocuments(arguments, hoVerdictText(hoVerdict::NotTested),
                                  [&](const clInputs&, const gtString& file, const clKeys& keys, const clTurn& turn)
                                  { return testFile(arguments, file, keys, turn); });
    case clCommand::Digest:
        return digestFiles(arguments);
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
        clSendMessagesTo([](const clMessage&) {});
    }
    else if (arguments._isJsonWanted)
    {
        clComplainInJson(arguments._command);
    }
    const int status = performOnWhatIsNamed(arguments);
    const int error = clFlushOutput();
    if (error != 0)
    {
        if (!arguments._isStatusOnly)
        {
            clSendMessagesTo(nullptr);
        }
        complain("standard output: cannot be written", hoSystemErrorText(error));
        return clStatusNotChecked;
    }
    return status;
}
