#include "cli/clInterrupt.h"

#include <csignal>
#include <initializer_list>

namespace
{

volatile std::sig_atomic_t caughtSignal = 0;

extern "C" void clNoteSignal(int number)
{
    caughtSignal = number;
}

}  // namespace

void clCatchInterrupts()
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
    {
        struct sigaction action = {};
        // What is ignored from outside (nohup) stays ignored.
        if ((sigaction(number, nullptr, &action) == 0) && (action.sa_handler != SIG_IGN))
        {
            action = {};
            action.sa_handler = clNoteSignal;
            action.sa_flags = static_cast<int>(SA_RESETHAND);
            sigemptyset(&action.sa_mask);
            sigaction(number, &action, nullptr);
        }
    }
}

bool clIsInterrupted()
{
    return caughtSignal != 0;
}

void clEndIfInterrupted()
{
    if (caughtSignal != 0)
    {
        struct sigaction action = {};
        action.sa_handler = SIG_DFL;
        sigemptyset(&action.sa_mask);
        sigaction(caughtSignal, &action, nullptr);
        static_cast<void>(std::raise(caughtSignal));
    }
}
