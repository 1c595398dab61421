// SPDX-License-Identifier: Apache-2.0
#include "cli/clTextCommands.h"

#include <memory>
#include <utility>

#include "cli/clCommands.h"
#include "cli/clKeyCommand.h"
#include "cli/clKeyLoading.h"
#include "cli/clPrintableName.h"
#include "cli/clStandardStreams.h"
#include "cli/clTerminal.h"
#include "host/messages/hoMessages.h"
#include "platform/baseTools/gtWipe.h"

namespace
{

// A text from standard input is not read beyond this; nothing near it can be encrypted.
constexpr int longestInput = 1024 * 1024;

// The key of a command that takes one.
std::unique_ptr<const hoKey> loadKey(const clArguments& arguments)
{
    clKeys keys = clLoadKeys(arguments);
    return keys.empty() ? nullptr : std::move(keys.front()._pKey);
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
        clComplain(gtString("standard input: cannot be read: ").append(hoSystemErrorText(error)));
    }
    return error == 0;
}

}  // namespace

int clPerformEncrypt(const clArguments& arguments)
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

int clPerformDecrypt(const clArguments& arguments)
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
            clComplain(clPrintableName(arguments._keyPath).append(": ").append(reason));
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
