// SPDX-License-Identifier: Apache-2.0
// Counts instructions where no counter of the processor's can be had, whatever instructions they are.
#ifndef COUNTERSIGN_TESTS_SUPPORT_INSTRUCTIONS_H
#define COUNTERSIGN_TESTS_SUPPORT_INSTRUCTIONS_H

#include <csignal>
#include <functional>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

// The steps of a child process from its stop to its end, with the work in between; 0 when it may not be followed, or
// the work does not come to its end.
inline long tsStepsWith(const std::function<void()>& work)
{
    const pid_t child = fork();
    if (child < 0)
    {
        return 0;
    }
    if (child == 0)
    {
        // Before, what is done once only: symbols are looked up, forms chosen.
        work();
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0 || raise(SIGSTOP) != 0)
        {
            _exit(1);
        }
        work();
        _exit(0);
    }
    long steps = 0;
    int status = 0;
    while (waitpid(child, &status, 0) == child && WIFSTOPPED(status))
    {
        const int signal = WSTOPSIG(status);
        if ((signal != SIGSTOP && signal != SIGTRAP) || ptrace(PTRACE_SINGLESTEP, child, nullptr, nullptr) != 0)
        {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return 0;
        }
        ++steps;
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? steps : 0;
}

// How many instructions the work takes once it has been done before, at some microseconds each; 0 where a process may
// not be followed.
inline long tsInstructionsOf(const std::function<void()>& work)
{
    const long steps = tsStepsWith(work);
    // The way from the stop and to the end falls out.
    return steps == 0 ? 0 : steps - tsStepsWith([] {});
}

#endif
