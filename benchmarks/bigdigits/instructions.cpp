// SPDX-License-Identifier: Apache-2.0
#include "instructions.h"

#include "benchmarks/childProcess.h"

#include <csignal>
#include <sys/ptrace.h>

namespace
{
// Waits until the child has stopped; false when it has ended.
bool hasStopped(pid_t child)
{
    int status = 0;
    check(waitpid(child, &status, 0) == child);
    if (WIFSTOPPED(status))
    {
        // Any other signal would stop it at the same place for ever.
        const int signal = WSTOPSIG(status);
        check(signal == SIGSTOP || signal == SIGTRAP);
        return true;
    }
    check(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    return false;
}

// What the child does from its stop to its end, with the operation done so many times.
uint64_t stepsWith(const std::function<void()>& operation, int times)
{
    const pid_t child = fork();
    check(child >= 0);
    if (child == 0)
    {
        // Before, what is done once only: symbols are looked up, forms chosen, memory taken.
        operation();
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        check(raise(SIGSTOP) == 0);
        for (int i = 0; i < times; ++i)
        {
            operation();
        }
        _exit(0);
    }
    check(hasStopped(child));
    uint64_t steps = 0;
    do
    {
        ++steps;
        check(ptrace(PTRACE_SINGLESTEP, child, nullptr, nullptr) == 0);
    } while (hasStopped(child));
    return steps;
}
}  // namespace

uint64_t instructionsOf(const std::function<void()>& operation)
{
    // The way from the stop and to the end falls out.
    return stepsWith(operation, 2) - stepsWith(operation, 1);
}
