// SPDX-License-Identifier: Apache-2.0
#include "cli/clSignCommand.h"

#include <atomic>
#include <memory>

#include "cli/clAdvice.h"
#include "cli/clDocumentCommands.h"
#include "cli/clPrintableName.h"
#include "cli/clStreams.h"
#include "host/messages/hoMessages.h"
#include "host/signing/hoSignatureFile.h"
#include "platform/osWrappers/osAtomicFile.h"

namespace
{

const char* const standardOutput = "-";

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
    clProgressLine progress = clProgressFor(arguments, turn, clPrintableName(file));
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
    std::shared_ptr<hoPreparedSignature> _pPrepared;  // null: it is written when its turn comes
};

void makeSignature(const clArguments& arguments, const gtString& file, const hoKey& key, const clTurn& turn,
                   MadeSignature& signature)
{
    clProgressLine progress = clProgressFor(arguments, turn, clPrintableName(file));
    signature._isTried = true;
    const clOpenDocument document(file);
    signature._facts = hoSignDocument(document.source(), key, wantedLines(arguments), &progress, signature._text);
}

// Brings it to the disk on this thread, so that those whose turn has not come do not wait for each other there.
void prepareSignature(const clArguments& arguments, const gtString& path, MadeSignature& signature)
{
    // Few, since a program that is killed leaves them behind.
    constexpr int mostPrepared = 64;
    static std::atomic<int> amountPrepared = 0;
    if (!signature._facts.isOk())
    {
        return;
    }
    if (amountPrepared.fetch_add(1) >= mostPrepared)
    {
        --amountPrepared;
        return;
    }
    const auto release = [](hoPreparedSignature* pPrepared)
    {
        delete pPrepared;
        --amountPrepared;
    };
    signature._pPrepared = std::shared_ptr<hoPreparedSignature>(new hoPreparedSignature, release);
    if (!signature._pPrepared->prepare(path, signature._text, arguments._isForced))
    {
        signature._pPrepared.reset();
    }
}

// False: the outcome says why not.
bool writeSignature(const clArguments& arguments, const gtString& path, const MadeSignature& signature,
                    clOutcome& outcome)
{
    const bool isReadOnly = osIsReadOnly(path);
    const hoSignatureFileResult signatureFile = signature._pPrepared != nullptr
                                                    ? signature._pPrepared->giveName()
                                                    : hoWriteSignatureFile(path, signature._text, arguments._isForced);
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

void setSigned(clOutcome& outcome, bool isKept, const gtString& file, const gtString& path, const clLoadedKey& key)
{
    outcome._status = clStatusGood;
    outcome._kind = isKept ? "already signed" : "signed";
    outcome._result = isKept ? "already-signed" : "signed";
    outcome._facts.addFileName("signature", path).addObject("key", clFactsOf(key));
    if (path != standardOutput)
    {
        outcome._line = clLineOf(file, gtString(outcome._kind).append(", ").append(clPrintableName(path)));
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
    const bool isForOutput = path == standardOutput;
    if (!clCheckReadOnce(arguments, file, outcome))
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
        clComplainOfSigning(outcome, file, key, made._facts);
        return outcome;
    }
    if (isForOutput)
    {
        setSigned(outcome, false, file, path, key);
        outcome._product = made._text;
        return outcome;
    }
    if (made._isTried && !turn._isFirst())
    {
        prepareSignature(arguments, path, made);
    }
    outcome._finish = [&arguments, &inputs, &key, file, path, before, made, turn](clOutcome& finished) mutable
    {
        // The same file may have been signed under another name.
        const bool isAsBefore = fileFactsOf(path) == before;
        if (!isAsBefore)
        {
            made._pPrepared.reset();
        }
        if (arguments._isSignedSkipped && !isAsBefore && isAlreadySigned(arguments, path, file, *key._pKey, turn))
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
            clComplainOfSigning(finished, file, key, made._facts);
        }
        else if (writeSignature(arguments, path, made, finished))
        {
            setSigned(finished, false, file, path, key);
        }
    };
    return outcome;
}

}  // namespace

int clPerformSign(const clArguments& arguments)
{
    return clPerformOnDocuments(
        arguments, "not signed",
        [&](const clInputs& inputs, const gtString& file, const clKeys& keys, const clTurn& turn)
        { return signFile(arguments, inputs, file, keys.front(), turn); });
}
