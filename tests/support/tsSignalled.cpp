// SPDX-License-Identifier: Apache-2.0
#include "tests/support/tsSignalled.h"

#include <algorithm>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
using Clock = std::chrono::steady_clock;

const std::chrono::seconds patience(120);

timespec timeLeftUntil(Clock::time_point moment)
{
    const auto left = std::max(std::chrono::nanoseconds(0),
                               std::chrono::duration_cast<std::chrono::nanoseconds>(moment - Clock::now()));
    return {static_cast<time_t>(left.count() / 1000000000), static_cast<long>(left.count() % 1000000000)};
}

[[noreturn]] void becomeProgram(const tsCommand& command, int output, int errors)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command._arguments)
    {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    for (const int number : {SIGPIPE, SIGINT, SIGTERM, SIGHUP})
    {
        static_cast<void>(signal(number, SIG_DFL));
    }
    if (dup2(output, 1) < 0 || dup2(errors, 2) < 0 || (!command._folder.empty() && chdir(command._folder.c_str()) != 0))
    {
        _exit(126);
    }
    execvp(arguments[0], arguments.data());
    _exit(127);
}

// Reads what is there; at the end the descriptor is closed and -1.
void readSome(int& descriptor, std::string& text)
{
    char buffer[4096];
    const ssize_t amount = read(descriptor, buffer, sizeof buffer);
    if (amount > 0)
    {
        text.append(buffer, static_cast<std::size_t>(amount));
    }
    else if (amount == 0)
    {
        close(descriptor);
        descriptor = -1;
    }
}
}  // namespace

tsOutcome tsRunSignalled(const tsCommand& command, int signal, std::chrono::microseconds delay, bool isReadyFirst)
{
    int output[2];
    int errors[2];
    if (pipe2(output, O_CLOEXEC) != 0 || pipe2(errors, O_CLOEXEC) != 0)
    {
        throw std::runtime_error("no pipe");
    }
    const Clock::time_point end = Clock::now() + patience;
    const pid_t process = fork();
    if (process == 0)
    {
        becomeProgram(command, output[1], errors[1]);
    }
    close(output[1]);
    close(errors[1]);
    if (process < 0)
    {
        throw std::runtime_error("no process");
    }

    tsOutcome outcome;
    bool isReady = !isReadyFirst;
    bool isSent = false;
    Clock::time_point moment = Clock::now() + delay;
    while (output[0] >= 0 || errors[0] >= 0)
    {
        if (!isReady && !outcome._output.empty())
        {
            isReady = true;
            moment = Clock::now() + delay;
        }
        if (isReady && !isSent && Clock::now() >= moment)
        {
            isSent = true;
            kill(process, signal);
        }
        if (Clock::now() >= end)
        {
            kill(process, SIGKILL);
        }
        pollfd waiting[2] = {{output[0], POLLIN, 0}, {errors[0], POLLIN, 0}};
        const timespec left = timeLeftUntil(isReady && !isSent ? moment : end);
        if (ppoll(waiting, 2, &left, nullptr) > 0)
        {
            if (waiting[0].revents != 0)
            {
                readSome(output[0], outcome._output);
            }
            if (waiting[1].revents != 0)
            {
                readSome(errors[0], outcome._errors);
            }
        }
    }
    int status = 0;
    while (waitpid(process, &status, 0) < 0)
    {
    }
    outcome._exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    outcome._signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return outcome;
}
