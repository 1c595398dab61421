// Raises the trap and says what it got to. Tests run it under a debugger and without one.
#include <csignal>
#include <cstdio>
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
    if ((argumentCount > 1) && (std::strcmp(arguments[1], "handler") == 0))
    {
        static_cast<void>(std::signal(SIGTRAP, countTrap));
    }
    std::puts("before the trap");
    static_cast<void>(std::fflush(stdout));
    osThrowBreakpointException();
    static_cast<void>(std::printf("after the trap, %d counted\n", static_cast<int>(amountOfTraps)));
    return 9;
}
