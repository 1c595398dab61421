// SPDX-License-Identifier: Apache-2.0
// Runs programs to measure them.
#ifndef COUNTERSIGN_BENCHMARKS_CHILD_PROCESS_H
#define COUNTERSIGN_BENCHMARKS_CHILD_PROCESS_H

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// Ends the program with errno's words unless it is true.
inline void check(bool isTrue)
{
    if (!isTrue)
    {
        std::perror("benchmark");
        std::exit(1);
    }
}

inline double inSeconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

struct ProcessCost
{
    double _processorSeconds;  // with those of the processes that it has waited for
    double _clockSeconds;
    long _peakKiB;
};

// Runs the program without output; it must end with status 0.
inline ProcessCost runProcess(const std::vector<std::string>& words)
{
    const auto start = std::chrono::steady_clock::now();
    const pid_t process = fork();
    if (process == 0)
    {
        std::vector<char*> pointers;
        pointers.reserve(words.size() + 1);
        for (const std::string& word : words)
        {
            pointers.push_back(const_cast<char*>(word.c_str()));
        }
        pointers.push_back(nullptr);
        const int nowhere = open("/dev/null", O_RDWR);
        dup2(nowhere, 0);
        dup2(nowhere, 1);
        dup2(nowhere, 2);
        execvp(pointers[0], pointers.data());
        _exit(127);
    }
    int status = 0;
    struct rusage usage = {};
    check(process > 0 && wait4(process, &status, 0, &usage) == process);
    check(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    const std::chrono::duration<double> clock = std::chrono::steady_clock::now() - start;
    return {inSeconds(usage.ru_utime) + inSeconds(usage.ru_stime), clock.count(), usage.ru_maxrss};
}

#endif
