// SPDX-License-Identifier: Apache-2.0
#include "tests/support/tsProcess.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <initializer_list>
#include <poll.h>
#include <signal.h>
#include <stdexcept>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int patienceInMilliseconds = 300000;

struct Ends
{
    int read = -1;
    int write = -1;
};

Ends newPipe()
{
    int both[2];
    if (pipe2(both, O_CLOEXEC) != 0)
    {
        throw std::runtime_error("no pipe");
    }
    return {both[0], both[1]};
}

int fileHolding(const std::string& contents)
{
    std::FILE* pFile = std::tmpfile();
    if (pFile == nullptr || std::fwrite(contents.data(), 1, contents.size(), pFile) != contents.size() ||
        std::fflush(pFile) != 0)
    {
        throw std::runtime_error("no temporary file");
    }
    const int descriptor = fcntl(fileno(pFile), F_DUPFD_CLOEXEC, 0);
    static_cast<void>(std::fclose(pFile));
    lseek(descriptor, 0, SEEK_SET);
    return descriptor;
}

int newTerminal()
{
    const int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0)
    {
        throw std::runtime_error("no terminal");
    }
    return master;
}

[[noreturn]] void becomeProgram(const tsCommand& command, int input, int output, int errors, int terminal)
{
    if (terminal >= 0)
    {
        setsid();
        errors = open(ptsname(terminal), O_RDWR);
        ioctl(errors, TIOCSCTTY, 0);
    }
    if (!command._inputPath.empty())
    {
        input = open(command._inputPath.c_str(), O_RDONLY);
    }
    if (!command._outputPath.empty())
    {
        output = open(command._outputPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    }
    if ((!command._folder.empty() && chdir(command._folder.c_str()) != 0) || dup2(input, 0) < 0 ||
        dup2(output, 1) < 0 || dup2(errors, 2) < 0)
    {
        _exit(126);
    }
    // What a test's surroundings ignore (a job in the background ignores interrupts) must not change what it finds.
    for (const int number : {SIGPIPE, SIGINT, SIGTERM, SIGHUP})
    {
        static_cast<void>(signal(number, SIG_DFL));
    }
    std::vector<char*> arguments;
    arguments.reserve(command._arguments.size() + 1);
    for (const std::string& argument : command._arguments)
    {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    if (command._prepare)
    {
        command._prepare();
    }
    execvp(arguments[0], arguments.data());
    _exit(127);
}

// What can be read now; false at the end.
bool readSome(int descriptor, std::string& text)
{
    char buffer[4096];
    const ssize_t amount = read(descriptor, buffer, sizeof(buffer));
    if (amount > 0)
    {
        text.append(buffer, static_cast<std::size_t>(amount));
    }
    return amount > 0 || (amount < 0 && errno == EINTR);
}

}  // namespace

tsOutcome tsRun(const tsCommand& command)
{
    const int input = fileHolding(command._input);
    const Ends output = newPipe();
    const Ends errors = newPipe();
    const int terminal = command._hasTerminal ? newTerminal() : -1;
    // Held open here as well, so that the terminal has no end before the program has.
    const int terminalsOtherEnd = command._hasTerminal ? open(ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC) : -1;
    const pid_t process = fork();
    if (process == 0)
    {
        becomeProgram(command, input, output.write, errors.write, terminal);
    }
    close(input);
    close(output.write);
    close(errors.write);
    if (process < 0)
    {
        throw std::runtime_error("no process");
    }

    tsOutcome outcome;
    pollfd waiting[3] = {{output.read, POLLIN, 0}, {errors.read, POLLIN, 0}, {terminal, POLLIN, 0}};
    std::string* texts[3] = {&outcome._output, &outcome._errors, &outcome._printed};
    while (waiting[0].fd >= 0 || waiting[1].fd >= 0)
    {
        if (poll(waiting, 3, patienceInMilliseconds) == 0)
        {
            kill(process, SIGKILL);
            break;
        }
        for (int i = 0; i < 3; ++i)
        {
            if (waiting[i].fd < 0 || waiting[i].revents == 0)
            {
                continue;
            }
            if (!readSome(waiting[i].fd, *texts[i]))
            {
                waiting[i].fd = -1;
            }
            else if (i == 2 && command._type)
            {
                const std::string typed = command._type(outcome._printed, process);
                if (write(terminal, typed.data(), typed.size()) != static_cast<ssize_t>(typed.size()))
                {
                    throw std::runtime_error("could not type");
                }
            }
        }
    }
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR)
    {
    }
    if (terminal >= 0)
    {
        // What was printed last.
        for (pollfd last = {terminal, POLLIN, 0}; poll(&last, 1, 0) > 0 && readSome(terminal, outcome._printed);)
        {
        }
        close(terminal);
        close(terminalsOtherEnd);
    }
    close(output.read);
    close(errors.read);
    outcome._exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    outcome._signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return outcome;
}

tsOutcome tsRun(const std::vector<std::string>& arguments)
{
    tsCommand command;
    command._arguments = arguments;
    return tsRun(command);
}
