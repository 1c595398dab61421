// SPDX-License-Identifier: Apache-2.0
#include "cli/clPassphrase.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <unistd.h>

#include "cli/clInterrupt.h"
#include "cli/clPrintableName.h"
#include "cli/clTerminalPassphrase.h"
#include "host/messages/hoMessages.h"

namespace
{

constexpr int nothingRead = -2;

// The bytes of a line without its end: their number, which is size + 1 for more than size; nothingRead at the end of
// the file; -1 with errno.
int readLine(int descriptor, char* pBuffer, int size)
{
    int length = 0;
    for (bool isSomethingRead = false;; isSomethingRead = true)
    {
        char character = 0;
        ssize_t amount = -1;
        do
        {
            if (!clWaitForInput(descriptor))
            {
                errno = EINTR;
                return -1;
            }
            amount = ::read(descriptor, &character, 1);
        } while (amount < 0 && (errno == EINTR || errno == EAGAIN));
        if (amount < 0)
        {
            return -1;
        }
        if (amount == 0 && !isSomethingRead)
        {
            return nothingRead;
        }
        if (amount == 0 || character == '\n')
        {
            return length;
        }
        if (length < size)
        {
            pBuffer[length] = character;
        }
        length = length > size ? length : length + 1;
    }
}

// What the program has opened itself is closed on exec, and what it was started with cannot be.
bool isInherited(int descriptor)
{
    const int flags = ::fcntl(descriptor, F_GETFD);
    return flags >= 0 && (flags & FD_CLOEXEC) == 0;
}

}  // namespace

clPassphrase::clPassphrase(const clArguments& arguments, const gtString& question)
    : _arguments(arguments), _question(question)
{
}

int clPassphrase::getPassphrase(char* pBuffer, int size)
{
    _reason = gtString();
    if (_arguments._passphraseDescriptor >= 0)
    {
        const int descriptor = _arguments._passphraseDescriptor;
        return readFrom(isInherited(descriptor) ? descriptor : -1,
                        gtString("descriptor ").append(std::to_string(descriptor)), pBuffer, size);
    }
    return _arguments._passphrasePath.isEmpty() ? ask(pBuffer, size) : readFile(pBuffer, size);
}

int clPassphrase::readFrom(int descriptor, const gtString& name, char* pBuffer, int size)
{
    // poll, which waits, would wait for ever on a descriptor below 0.
    errno = EBADF;
    const int length = descriptor < 0 ? -1 : readLine(descriptor, pBuffer, size);
    if (length == nothingRead)
    {
        _reason = gtString(name).append(": there is no passphrase in it");
    }
    else if (length < 0)
    {
        _reason = gtString(name).append(": cannot be read: ").append(hoSystemErrorText(errno));
    }
    return length < 0 ? -1 : length;
}

int clPassphrase::readFile(char* pBuffer, int size)
{
    const gtString name = clPrintableName(_arguments._passphrasePath);
    const int file = ::open(_arguments._passphrasePath.asCharArray(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    if (file < 0)
    {
        _reason = gtString(name).append(": cannot be read: ").append(hoSystemErrorText(errno));
        return -1;
    }
    const int length = readFrom(file, name, pBuffer, size);
    ::close(file);
    return length;
}

int clPassphrase::ask(char* pBuffer, int size)
{
    clTerminalPassphrase terminal(_question);
    const int length = terminal.getPassphrase(pBuffer, size);
    if (terminal.isWithoutTerminal())
    {
        _reason = "there is no terminal to ask for the passphrase on; --passphrase-file and --passphrase-fd do without";
    }
    return length;
}
