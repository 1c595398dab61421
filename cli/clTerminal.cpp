// SPDX-License-Identifier: Apache-2.0
#include "cli/clTerminal.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include "cli/clInterrupt.h"
#include "platform/osWrappers/osWriteAll.h"

namespace
{

void print(int terminal, const gtString& text)
{
    // Somebody who cannot be asked does not answer, either; reading will tell.
    static_cast<void>(osWriteAll(terminal, text.asStringView(), clIsInterrupted));
}

// A line without its end: its length, or -1 when it does not fit, there is none, or the program shall end.
int readLine(int terminal, char* pBuffer, int size)
{
    int length = 0;
    bool fits = true;
    for (;;)
    {
        if (!clWaitForInput(terminal))
        {
            return -1;
        }
        char character = 0;
        const ssize_t amount = ::read(terminal, &character, 1);
        if (amount < 0 && errno == EINTR)
        {
            continue;
        }
        if (amount <= 0)
        {
            return -1;
        }
        if (character == '\n' || character == '\r')
        {
            return fits ? length : -1;
        }
        fits = length < size;
        if (fits)
        {
            pBuffer[length++] = character;
        }
    }
}

// False when they could not be set. A signal may interrupt the waiting for what is written still.
bool setTerminal(int terminal, const struct termios& settings)
{
    while (::tcsetattr(terminal, TCSAFLUSH, &settings) != 0)
    {
        if (errno != EINTR)
        {
            return false;
        }
    }
    return true;
}

// Switches off that the terminal shows what is typed, and stores its settings of before. False where there is no
// terminal, or it cannot be done.
bool silence(int terminal, struct termios& settings)
{
    if (terminal < 0 || ::tcgetattr(terminal, &settings) != 0)
    {
        return false;
    }
    struct termios silent = settings;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    silent.c_lflag |= static_cast<tcflag_t>(ECHONL);
    return setTerminal(terminal, silent);
}

}  // namespace

int clTerminalPassphrase::getPassphrase(char* pBuffer, int size)
{
    const int terminal = ::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
    struct termios settings = {};
    if (!silence(terminal, settings))
    {
        _isWithoutTerminal = true;
        if (terminal >= 0)
        {
            ::close(terminal);
        }
        return -1;
    }
    print(terminal, gtString("Passphrase for ").append(_name).append(": "));
    const int length = readLine(terminal, pBuffer, size);
    // Nobody is left to hear that this fails.
    static_cast<void>(setTerminal(terminal, settings));
    if (length < 0)
    {
        print(terminal, "\n");
    }
    ::close(terminal);
    return length;
}

int clColumnsOfStandardError()
{
    constexpr int usualColumns = 80;
    if (::isatty(STDERR_FILENO) == 0)
    {
        return 0;
    }
    struct winsize size = {};
    return (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) ? size.ws_col : usualColumns;
}

bool clIsOutputATerminal()
{
    return ::isatty(STDOUT_FILENO) != 0;
}
