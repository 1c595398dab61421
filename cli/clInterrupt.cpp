// SPDX-License-Identifier: Apache-2.0
#include "cli/clInterrupt.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <initializer_list>
#include <poll.h>
#include <unistd.h>

namespace
{

// Several threads ask for it.
std::atomic<int> caughtSignal = 0;
static_assert(std::atomic<int>::is_always_lock_free, "signal handlers may take no lock");

// The handler writes a byte here, so that a signal that comes just before the waiting begins still ends it.
int wakePipe[2] = {-1, -1};

extern "C" void clNoteSignal(int number)
{
    const int error = errno;
    if (caughtSignal != 0)
    {
        // The second: it takes effect as soon as this handler returns.
        static_cast<void>(std::signal(number, SIG_DFL));
        static_cast<void>(std::raise(number));
    }
    caughtSignal = number;
    if (::write(wakePipe[1], "", 1) < 0)
    {
        // Full: it wakes all the same.
    }
    errno = error;
}

}  // namespace

void clCatchInterrupts()
{
    if (::pipe(wakePipe) != 0)
    {
        // Signals then end the program as if nobody cared.
        return;
    }
    for (const int end : wakePipe)
    {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
    {
        struct sigaction action = {};
        // What is ignored from outside (nohup) stays ignored.
        if (sigaction(number, nullptr, &action) == 0 && action.sa_handler != SIG_IGN)
        {
            action = {};
            action.sa_handler = clNoteSignal;
            sigemptyset(&action.sa_mask);
            sigaction(number, &action, nullptr);
        }
    }
}

bool clIsInterrupted()
{
    return caughtSignal != 0;
}

bool clWaitForInput(int descriptor)
{
    struct pollfd waiting[2] = {{descriptor, POLLIN, 0}, {wakePipe[0], POLLIN, 0}};
    while (!clIsInterrupted() && ::poll(waiting, 2, -1) < 0 && errno == EINTR)
    {
    }
    return !clIsInterrupted();
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
