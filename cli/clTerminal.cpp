// SPDX-License-Identifier: Apache-2.0
#include "cli/clTerminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

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
