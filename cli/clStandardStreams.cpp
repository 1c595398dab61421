// SPDX-License-Identifier: Apache-2.0
#include "cli/clStandardStreams.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>

#include "cli/clInterrupt.h"
#include "platform/osWrappers/osWriteAll.h"

namespace
{

constexpr int bytesAtOnce = 65536;

gtString outputBuffer;
int outputError = 0;

}  // namespace

void clWriteOutput(const gtString& text)
{
    outputBuffer.append(text);
    if (outputBuffer.length() >= bytesAtOnce)
    {
        static_cast<void>(clFlushOutput());
    }
}

int clFlushOutput()
{
    const int error = osWriteAll(STDOUT_FILENO, outputBuffer.asStringView(), clIsInterrupted);
    outputBuffer.makeEmpty();
    if (outputError == 0)
    {
        outputError = error;
    }
    return outputError;
}

void clComplain(const gtString& text)
{
    // Results come before what is said about them, where both go to the same place.
    static_cast<void>(clFlushOutput());
    const gtString line = gtString("countersign: ").append(text).append('\n');
    static_cast<void>(osWriteAll(STDERR_FILENO, line.asStringView(), clIsInterrupted));
}

int clReadInput(gtString& bytes, int limit)
{
    char buffer[4096];
    while (bytes.length() < limit)
    {
        if (!clWaitForInput(STDIN_FILENO))
        {
            return EINTR;
        }
        const ssize_t amount =
            ::read(STDIN_FILENO, buffer, std::min(sizeof(buffer), static_cast<std::size_t>(limit - bytes.length())));
        if (amount > 0)
        {
            bytes.append(buffer, static_cast<int>(amount));
        }
        else if (amount == 0)
        {
            return 0;
        }
        else if ((errno != EINTR) || clIsInterrupted())
        {
            return errno;
        }
    }
    return 0;
}
