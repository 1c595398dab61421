// SPDX-License-Identifier: Apache-2.0
// Stands between the test program and the system. Add SystemFault.cpp to the sources of a test that exports its symbols.
#ifndef COUNTERSIGN_TESTS_HOST_SYSTEM_FAULT_H
#define COUNTERSIGN_TESTS_HOST_SYSTEM_FAULT_H

#include <functional>
#include <string>

// While it lives, one call that concerns a file in the folder, or below it, goes wrong, whatever thread it is of: the one
// of that name and number, counted from 1. Not to be nested.
//
// Calls: open (also what makes temporary files and what fopen opens), read, write, fsync, close, link, rename, stat,
// fstat, realpath; and "thread", the start of a thread, wherever. What fails to close is closed all the same.
class SystemFault
{
public:
    // error: the number that the call fails with; 0 makes read and write do one byte only.
    SystemFault(const std::string& folder, const std::string& call, int number, int error);
    // The call works; the function is called before it.
    SystemFault(const std::string& folder, const std::string& call, int number, std::function<void()> before);
    ~SystemFault();
    SystemFault(const SystemFault&) = delete;
    SystemFault& operator=(const SystemFault&) = delete;

    bool hasHappened() const;
};

// While it lives, the files of the folder have time stamps without fractions, as on some file systems, from what fstat
// and stat say.
class WholeSecondStamps
{
public:
    WholeSecondStamps();
    ~WholeSecondStamps();
    WholeSecondStamps(const WholeSecondStamps&) = delete;
    WholeSecondStamps& operator=(const WholeSecondStamps&) = delete;
};

#endif
