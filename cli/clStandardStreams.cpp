// SPDX-License-Identifier: Apache-2.0
#include "cli/clStandardStreams.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <unistd.h>
#include <utility>

#include "cli/clInterrupt.h"
#include "platform/baseTools/gtWipe.h"
#include "platform/osWrappers/osWriteAll.h"

namespace
{

// Never grown, so that it leaves no copies of itself behind.
char outputBuffer[65536];
std::size_t amountBuffered = 0;
int outputError = 0;

clMessageReceiver& messageReceiver()
{
    static clMessageReceiver receiver;
    return receiver;
}

void write(std::string_view bytes)
{
    const int error = osWriteAll(STDOUT_FILENO, bytes, clIsInterrupted);
    if (outputError == 0)
    {
        outputError = error;
    }
}

// Copying takes bytes through the processor's vector registers, and the dynamic linker puts these on the stack when it
// looks up a function. Copies of zeros take their place; which registers are used depends on the length.
void clearRegisters()
{
    static char zeros[2048];
    static char nothing[sizeof(zeros)];
    void* (*volatile copy)(void*, const void*, std::size_t) = std::memcpy;
    for (std::size_t length = sizeof(zeros); length >= 16; length /= 2)
    {
        copy(nothing, zeros, length);
    }
}

}  // namespace

void clWriteOutput(const gtString& text)
{
    const std::string_view bytes = text.asStringView();
    if (bytes.size() > sizeof(outputBuffer) - amountBuffered)
    {
        static_cast<void>(clFlushOutput());
    }
    if (bytes.size() > sizeof(outputBuffer))
    {
        write(bytes);
        return;
    }
    bytes.copy(outputBuffer + amountBuffered, bytes.size());
    amountBuffered += bytes.size();
}

int clFlushOutput()
{
    write(std::string_view(outputBuffer, amountBuffered));
    gtWipe(outputBuffer, amountBuffered);
    clearRegisters();
    amountBuffered = 0;
    return outputError;
}

void clComplain(const gtString& text)
{
    clTell({text, false});
}

void clWarn(const gtString& text)
{
    clTell({text, true});
}

void clTell(const clMessage& message)
{
    // Results come before what is said about them, where both go to the same place.
    static_cast<void>(clFlushOutput());
    if (messageReceiver() != nullptr)
    {
        messageReceiver()(message);
        return;
    }
    const gtString line =
        gtString("countersign: ").append(message._isWarning ? "warning: " : "").append(message._text).append('\n');
    static_cast<void>(osWriteAll(STDERR_FILENO, line.asStringView(), clIsInterrupted));
}

void clSendMessagesTo(clMessageReceiver receiver)
{
    messageReceiver() = std::move(receiver);
}

int clReadInput(gtString& bytes, int limit)
{
    return clReadDescriptor(STDIN_FILENO, bytes, limit);
}

int clReadDescriptor(int descriptor, gtString& bytes, int limit)
{
    // A text that grows would leave copies behind.
    bytes.reserve(limit);
    struct WipedBuffer
    {
        ~WipedBuffer() { gtWipe(_bytes, sizeof(_bytes)); }
        char _bytes[4096];
    } wiped;
    char(&buffer)[sizeof(wiped._bytes)] = wiped._bytes;
    while (bytes.length() < limit)
    {
        if (!clWaitForInput(descriptor))
        {
            return EINTR;
        }
        const ssize_t amount =
            ::read(descriptor, buffer, std::min(sizeof(buffer), static_cast<std::size_t>(limit - bytes.length())));
        if (amount > 0)
        {
            bytes.append(buffer, static_cast<int>(amount));
        }
        else if (amount == 0)
        {
            return 0;
        }
        else if ((errno != EINTR && errno != EAGAIN) || clIsInterrupted())
        {
            return errno;
        }
    }
    return 0;
}
