// SPDX-License-Identifier: Apache-2.0
// What came of an operation that may fail: the problem, and the number of the system's error behind it.
//
// Problem is an enumeration whose first enumerator is None. An engine that has more to report derives from this. A
// plain value; safe from any thread.
#ifndef OS_RESULT_H
#define OS_RESULT_H

template <class Problem>
struct osResult
{
    Problem _problem = Problem::None;
    int _systemError = 0;  // errno where the system refused; 0 elsewhere

    osResult() = default;
    // A problem is a result without a system error.
    osResult(Problem problem, int systemError = 0) : _problem(problem), _systemError(systemError) {}

    bool isOk() const { return _problem == Problem::None; }
};

#endif
