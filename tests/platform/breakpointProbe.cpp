// SPDX-License-Identifier: Apache-2.0
// Raises the trap and says what it got to. Tests run it under a debugger and without one.
//
//   breakpointProbe [handler|noCore]
//   breakpointProbe debugger                   says whether there is one
//   breakpointProbe open FILE                  opens the file in the editor
//   breakpointProbe crash|crashWithoutCore     ends by SIGABRT
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/osWrappers/osProcess.h"

namespace
{
volatile std::sig_atomic_t amountOfTraps = 0;

void countTrap(int)
{
    amountOfTraps = amountOfTraps + 1;
}
}  // namespace

int main(int argumentCount, char** arguments)
{
    const char* const pWay = argumentCount > 1 ? arguments[1] : "";
    if (std::strcmp(pWay, "debugger") == 0)
    {
        std::puts(osIsDebuggerAttached() ? "a debugger" : "no debugger");
        return 0;
    }
    if (std::strcmp(pWay, "open") == 0 && argumentCount > 2)
    {
        osOpenFileInSourceCodeEditor(osFilePath(gtString(arguments[2])), 5);
        return 0;
    }
    if (std::strcmp(pWay, "handler") == 0)
    {
        static_cast<void>(std::signal(SIGTRAP, countTrap));
    }
    if (std::strcmp(pWay, "noCore") == 0 || std::strcmp(pWay, "crashWithoutCore") == 0)
    {
        osWriteNoCoreFiles();
    }
    if (std::strncmp(pWay, "crash", 5) == 0)
    {
        std::abort();
    }
    std::puts("before the trap");
    static_cast<void>(std::fflush(stdout));
    osThrowBreakpointException();
    static_cast<void>(std::printf("after the trap, %d counted\n", static_cast<int>(amountOfTraps)));
    return 9;
}
