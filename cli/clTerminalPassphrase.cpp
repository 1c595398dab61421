// SPDX-License-Identifier: Apache-2.0
#include "cli/clTerminalPassphrase.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <readpassphrase.h>
#include <termios.h>
#include <unistd.h>

#include "cli/clInterrupt.h"
#include "platform/baseTools/gtWipe.h"

namespace
{

struct WipedBuffer
{
    ~WipedBuffer() { gtWipe(_bytes, sizeof(_bytes)); }
    // The longest passphrase, a byte that tells a longer one, and the end of the text.
    char _bytes[hoLongestPassphrase + 2] = {};
};

// Whether there is a terminal that takes settings. readpassphrase goes on where the terminal refuses to be silent.
bool isTerminalSilenceable()
{
    const int terminal = ::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
    if (terminal < 0)
    {
        return false;
    }
    struct termios settings = {};
    bool isSet = ::tcgetattr(terminal, &settings) == 0;
    while (isSet && ::tcsetattr(terminal, TCSANOW, &settings) != 0)
    {
        isSet = errno == EINTR;
    }
    ::close(terminal);
    return isSet;
}

}  // namespace

int clTerminalPassphrase::getPassphrase(char* pBuffer, int size)
{
    _isWithoutTerminal = !isTerminalSilenceable();
    if (_isWithoutTerminal || clIsInterrupted())
    {
        return -1;
    }
    WipedBuffer typed;
    if (::readpassphrase(_question.asCharArray(), typed._bytes, sizeof(typed._bytes), RPP_REQUIRE_TTY) == nullptr)
    {
        return -1;
    }
    const auto length = static_cast<int>(std::strlen(typed._bytes));
    std::copy_n(typed._bytes, std::min(length, size), pBuffer);
    return length;
}
