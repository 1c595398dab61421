// SPDX-License-Identifier: Apache-2.0
#include "cli/clJsonOutput.h"

#include "cli/clStandardStreams.h"

namespace
{

const char* nameOf(clCommand command)
{
    switch (command)
    {
    case clCommand::Sign:
        return "sign";
    case clCommand::Test:
        return "test";
    case clCommand::Digest:
        return "digest";
    default:
        return "key";
    }
}

}  // namespace

clJsonObject clBeginJson(const char* pType, clCommand command)
{
    clJsonObject object;
    object.addNumber("version", clJsonVersion).add("type", pType).add("command", nameOf(command));
    return object;
}

void clWriteJson(const clJsonObject& object)
{
    clWriteOutput(object.text().append('\n'));
}

void clComplainInJson(clCommand command)
{
    clSendMessagesTo(
        [command](const clMessage& message)
        {
            clJsonObject object = clBeginJson("message", command);
            clWriteJson(object.add("level", message._isWarning ? "warning" : "error").add("text", message._text));
            // It may be the last thing that the program does.
            static_cast<void>(clFlushOutput());
        });
}
