// SPDX-License-Identifier: Apache-2.0
#include "cli/clCommands.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <unistd.h>

#include "cli/clAdvice.h"
#include "cli/clInterrupt.h"
#include "cli/clPrintableName.h"
#include "cli/clProgressLine.h"
#include "cli/clStandardStreams.h"
#include "cli/clTerminal.h"
#include "host/messages/hoMessages.h"
#include "platform/baseTools/gtWipe.h"
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
    const bool isTheKeys =
        facts._problem == hoSigningProblem::NoPrivateKey || facts._problem == hoSigningProblem::KeyTooSmall;
    complain(isTheKeys ? clPrintableName(arguments._keyPath) : name, hoSigningReason(facts));
}

void warnOfPrivateKey(const gtString& name, const hoKeyFileFacts& facts)
{
    const gtString warning = gtString("warning: ").append(name);
    if (facts._isOpenToOthers)
    {
        complain(warning, hoOpenKeyWarning());
    }
    if (facts._isFolderOpenToOthers)
    {
        complain(warning, hoOpenFolderWarning());
    }
    if (!facts._isLibcryptoMemoryWiped)
    {
        complain(warning, hoLibcryptoMemoryWarning());
    }
}

std::unique_ptr<const hoKey> loadKey(const clArguments& arguments)
{
    const gtString name = clPrintableName(arguments._keyPath);
    clTerminalPassphrase passphrase(name);
    hoKeyFileFacts facts;
    std::unique_ptr<const hoKey> pKey = hoLoadKeyFile(arguments._keyPath, &passphrase, facts);
    if (pKey == nullptr)
    {
        complain(name, hoKeyFileReason(facts), clKeyAdvice(facts, passphrase.isWithoutTerminal()));
    }
    else if (pKey->hasPrivateKey())
    {
        warnOfPrivateKey(name, facts);
    }
    if ((pKey != nullptr) && (arguments._command == clCommand::Test))
    {
        // The private key need not be in memory while large files are read.
        return pKey->publicHalf();
    }
    return pKey;
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

clProgressLine progressFor(const gtString& name)
{
    const int columns = clColumnsOfStandardError();
    return clProgressLine(name, columns, now, (columns > 0) ? writeProgress : clProgressLine::Writer(),
                          clIsInterrupted);
}

// Works on one file after the other, and returns the gravest of the statuses.
template <class Work>
int performOnFiles(const clArguments& arguments, Work work)
{
    const std::unique_ptr<const hoKey> pKey = loadKey(arguments);
    if (pKey == nullptr)
    {
        return clStatusNotChecked;
    }
    int status = clStatusGood;
    for (const gtString& file : arguments._files)
    {
        status = std::max(status, work(file, *pKey));
        if (clIsInterrupted())
        {
            break;
        }
    }
    return status;
}

int signFile(const clArguments& arguments, const gtString& file, const hoKey& key)
{
    const gtString name = clPrintableName(file);
    const bool isForOutput = arguments._hasOutput && (arguments._outputPath == standardStream);
    const gtString path = arguments._hasOutput ? arguments._outputPath : hoSignaturePath(file);
    const gtString signatureName = clPrintableName(path);
    hoSignatureFileResult signatureFile;
    if (!isForOutput)
    {
        signatureFile = hoCheckSignaturePath(path, arguments._isForced);
        if (!signatureFile.isOk())
        {
            complain(signatureName, hoSignatureFileReason(signatureFile), clSignatureFileAdvice(signatureFile));
            return clStatusNotChecked;
        }
    }
    gtString signature;
    hoSigningFacts facts;
    {
        clProgressLine progress = progressFor(name);
        facts = hoSignFile(file, key, &progress, signature);
    }
    if (!facts.isOk())
    {
        complainOfSigning(arguments, name, facts);
        return clStatusNotChecked;
    }
    if (isForOutput)
    {
        clWriteOutput(signature.append('\n'));
        return clStatusGood;
    }
    signatureFile = hoWriteSignatureFile(path, signature, arguments._isForced);
    if (!signatureFile.isOk())
    {
        complain(signatureName, hoSignatureFileReason(signatureFile), clSignatureFileAdvice(signatureFile));
        return clStatusNotChecked;
    }
    clWriteOutput(gtString(name).append(": signed, ").append(signatureName).append('\n'));
    return clStatusGood;
}

// Whether the signature could be had.
bool readSignature(const clArguments& arguments, const gtString& file, gtString& signature)
{
    if (arguments._hasSignature && (arguments._signaturePath == standardStream))
    {
        const int error = clReadInput(signature, static_cast<int>(hoLargestSignatureFile));
        if (error != 0)
        {
            complain("standard input: the signature cannot be read", hoSystemErrorText(error));
        }
        return error == 0;
    }
    const gtString path = arguments._hasSignature ? arguments._signaturePath : hoSignaturePath(file);
    const hoSignatureFileResult facts = hoReadSignatureFile(path, signature);
    if (!facts.isOk())
    {
        complain(clPrintableName(path), hoSignatureFileReason(facts), clSignatureFileAdvice(facts));
        return false;
    }
    return true;
}

int testFile(const clArguments& arguments, const gtString& file, const hoKey& key)
{
    const gtString name = clPrintableName(file);
    bool isGood = false;
    hoSigningFacts facts;
    // A file that is not there is told about before its signature is missed.
    osFileFacts ignored;
    const osFileResult reading = osReadFileFacts(file, ignored);
    if (!reading.isOk())
    {
        facts = hoSigningFacts(reading);
    }
    else
    {
        gtString signature;
        if (!readSignature(arguments, file, signature))
        {
            clWriteOutput(gtString(name).append(": not tested\n"));
            return clStatusNotChecked;
        }
        clProgressLine progress = progressFor(name);
        facts = hoTestFile(file, key, signature, &progress, isGood);
    }
    if (!facts.isOk())
    {
        complainOfSigning(arguments, name, facts);
        clWriteOutput(gtString(name).append(": not tested\n"));
        return clStatusNotChecked;
    }
    clWriteOutput(gtString(name).append(isGood ? ": good\n" : ": BAD\n"));
    return isGood ? clStatusGood : clStatusNotGood;
}

int digestFile(const clArguments& arguments, const gtString& file, const hoKey& key)
{
    const gtString name = clPrintableName(file);
    gtString digestText;
    hoSigningFacts facts;
    {
        clProgressLine progress = progressFor(name);
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
    gtString text;
    if ((pKey == nullptr) || !readText(arguments, text))
    {
        return clStatusNotChecked;
    }
    gtString cipherText;
    const hoTextResult result = hoEncryptText(pKey->ownKey(), text, cipherText);
    const int lengthOfText = text.length();
    gtWipe(text);
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
    if ((pKey == nullptr) || !readText(arguments, cipherText))
    {
        return clStatusNotChecked;
    }
    gtString text;
    const hoTextResult result = hoDecryptText(pKey->ownKey(), cipherText, text);
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
    clWriteOutput(text);
    if (clIsOutputATerminal())
    {
        clWriteOutput("\n");
    }
    gtWipe(text);
    return clStatusGood;
}

int printKey(const clArguments& arguments)
{
    const std::unique_ptr<const hoKey> pKey = loadKey(arguments);
    if (pKey == nullptr)
    {
        return clStatusNotChecked;
    }
    if (arguments._isPrivateWanted && !pKey->hasPrivateKey())
    {
        complain(clPrintableName(arguments._keyPath),
                 "is a public key and has no private exponent; leave --private out");
        return clStatusNotChecked;
    }
    const crRSAEncryptionKey& key = arguments._isPrivateWanted ? pKey->privateKey() : pKey->publicKey();
    gtString exponent = hoFixedWidthText(key.numberDigits(), key.amountOfNumberDigits());
    clWriteOutput(gtString("size ").append(std::to_string(pKey->bits())).append("\nmodulus "));
    clWriteOutput(hoFixedWidthText(key.productDigits(), key.amountOfProductDigits()).append("\nexponent "));
    clWriteOutput(exponent.append('\n'));
    gtWipe(exponent);
    return clStatusGood;
}

int perform(const clArguments& arguments)
{
    const auto on = [&arguments](int (*work)(const clArguments&, const gtString&, const hoKey&))
    {
        return performOnFiles(arguments, [&arguments, work](const gtString& file, const hoKey& key)
                              { return work(arguments, file, key); });
    };
    switch (arguments._command)
    {
    case clCommand::ShowText:
        clWriteOutput(arguments._text);
        return clStatusGood;
    case clCommand::Sign:
        return on(signFile);
    case clCommand::Test:
        return on(testFile);
    case clCommand::Digest:
        return on(digestFile);
    case clCommand::Encrypt:
        return encrypt(arguments);
    case clCommand::Decrypt:
        return decrypt(arguments);
    case clCommand::Key:
        return printKey(arguments);
    case clCommand::WrongUse:
        break;
    }
    writeProgress(arguments._text);
    return clStatusNotChecked;
}

}  // namespace

int clPerform(const clArguments& arguments)
{
    const int status = perform(arguments);
    const int error = clFlushOutput();
    if (error != 0)
    {
        complain("standard output: cannot be written", hoSystemErrorText(error));
        return clStatusNotChecked;
    }
    return status;
}
