// SPDX-License-Identifier: Apache-2.0
// Runs programs from outside, as a shell would, for tests of what they print and of how they end.
//
// No shell is involved: arguments arrive as they are, whatever bytes they hold. A program that does not end in time
// (five minutes) is killed. Nothing here is for more than one thread.
#ifndef TS_PROCESS_H
#define TS_PROCESS_H

#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

struct tsCommand
{
    // The program (looked for in PATH when it has no slash) and its arguments.
    std::vector<std::string> _arguments;

    // What it reads from standard input.
    std::string _input = {};

    // Where it starts; empty: where the test is.
    std::string _folder = {};

    // Files that standard input and output are opened on instead, if not empty.
    std::string _inputPath = {};
    std::string _outputPath = {};

    // Is called in the new process before the program starts: for limits, signals, the user.
    std::function<void()> _prepare = {};

    // Gives the program a terminal of its own, on which standard error is, too. The function is called whenever
    // something was printed there, with all that was printed so far, and gives what is to be typed.
    bool _hasTerminal = false;
    std::function<std::string(const std::string& printed, pid_t process)> _type = {};
};

struct tsOutcome
{
    int _exitStatus = -1;       // -1: it was ended by a signal, or not started
    int _signal = 0;            // the signal that ended it
    std::string _output = {};   // what it wrote to standard output
    std::string _errors = {};   // and to standard error
    std::string _printed = {};  // what its terminal showed
};

tsOutcome tsRun(const tsCommand& command);

// Without more than arguments.
tsOutcome tsRun(const std::vector<std::string>& arguments);

#endif
