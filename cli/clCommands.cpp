// SPDX-License-Identifier: Apache-2.0
#include "cli/clCommands.h"

#include <unistd.h>

#include "cli/clDigestCommand.h"
#include "cli/clDocumentNames.h"
#include "cli/clInterrupt.h"
#include "cli/clJsonOutput.h"
#include "cli/clKeyCommand.h"
#include "cli/clKeygen.h"
#include "cli/clSignCommand.h"
#include "cli/clStandardStreams.h"
#include "cli/clStreams.h"
#include "cli/clTestCommand.h"
#include "cli/clTextCommands.h"
#include "host/messages/hoMessages.h"
#include "platform/osWrappers/osWriteAll.h"

namespace
{

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
        return clPerformSign(arguments);
    case clCommand::Test:
        return clPerformTest(arguments);
    case clCommand::Digest:
        return clPerformDigest(arguments);
    case clCommand::Encrypt:
        return clPerformEncrypt(arguments);
    case clCommand::Decrypt:
        return clPerformDecrypt(arguments);
    case clCommand::Key:
        return clPerformKey(arguments);
    case clCommand::Keygen:
        return clPerformKeygen(arguments);
    case clCommand::WrongUse:
        break;
    }
    // Whoever has no standard error is told by the status.
    static_cast<void>(osWriteAll(STDERR_FILENO, arguments._text.asStringView(), clIsInterrupted));
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
        clComplain(gtString("standard output: cannot be written: ").append(hoSystemErrorText(error)));
        return clStatusNotChecked;
    }
    return status;
}
