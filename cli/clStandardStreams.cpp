// SPDX-License-Identifier: Apache-2.0
#include "cli/clStandardStreams.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>

#include "cli/clInterrupt.h"
#include "platform/osWrappers/osWriteAll.h"

namespace
{

constexpr std::size_t bytesAtOnce = 65536;

std::string outputBuffer;
int outputError = 0;

}  // namespace

void clWriteOutput(const std::string& text)
{
    outputBuffer += text;
    if (outputBuffer.size() >= bytesAtOnce)
    {
        static_cast<void>(clFlushOutput());
    }
}

int clFlushOutput()
{
    const int error = osWriteAll(STDOUT_FILENO, outputBuffer, clIsInterrupted);
    outputBuffer.clear();
    if (outputError == 0)
    {
        outputError = error;
    }
    return outputError;
}

void clComplain(const std::string& text)
{
    // Results come before what is said about them, where both go to the same place.
    static_cast<void>(clFlushOutput());
    static_cast<void>(osWriteAll(STDERR_FILENO, "countersign: " + text + "\n", clIsInterrupted));
}

int clReadInput(std::string& bytes, std::size_t limit)
{
    char buffer[4096];
    while (bytes.size() < limit)
    {
        if (!clWaitForInput(STDIN_FILENO))
        {
            return EINTR;
        }
        const ssize_t amount = ::read(STDIN_FILENO, buffer, std::min(sizeof(buffer), limit - bytes.size()));
        if (amount > 0)
        {
            bytes.append(buffer, static_cast<std::size_t>(amount));
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
