// SPDX-License-Identifier: Apache-2.0
// What became of failed assertions: one row for each place in the source, in the order in which the places failed
// first.
//
// A place is a file, as the failed assertion names it and compared byte by byte, and a line. All operations may be
// called from any thread; each is one step for the others. They let only std::bad_alloc out, with nothing changed.
#ifndef AR_ASSERTION_REPORT_H
#define AR_ASSERTION_REPORT_H

#include "platform/baseTools/gtString.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#pragma GCC visibility push(default)

enum class arAssertionDecision
{
    None,       // nobody was asked, or the dialog is still up
    Closed,     // the dialog was closed without one
    Ignore,     // this occurrence
    IgnoreAll,  // and all to come
    Open,       // the source in the editor
    Debug,      // break into the debugger
    Exit,       // end the program
    Terminated  // nobody could be asked: the program ends by itself
};

struct arAssertionRow
{
    gtString _file;
    int _line = 0;
    gtString _function;                                         // of the last failure
    gtString _message;                                          // the same
    std::uint64_t _count = 0;                                   // of failures
    std::int64_t _firstSeconds = 0;                             // since 1970
    std::int64_t _lastSeconds = 0;                              // the same
    unsigned int _threadId = 0;                                 // of the last failure
    bool _isOfSeveralThreads = false;                           // others have failed here before
    arAssertionDecision _decision = arAssertionDecision::None;  // the last that was made
    std::vector<std::uintptr_t> _stack;                         // of the last failure: see arStackTrace.h
};

class arAssertionReport
{
public:
    // Failures at further places are counted, but have no row.
    static constexpr std::size_t mostRows = 10000;
    // Of a function's name and of a message no more is kept.
    static constexpr std::size_t mostTextBytes = 2000;

    // A failure. Any text may be null, which counts as empty; a text that is cut is cut between characters of UTF-8.
    // stack: arStackOfThisThread of the failing thread; without memory for one it is empty.
    void record(const char* function, const char* file, int line, const char* message, unsigned int threadId,
                std::int64_t seconds, std::vector<std::uintptr_t> stack = {});

    // What was decided of a place that has failed; of any other it does nothing.
    void decide(const char* file, int line, arAssertionDecision decision);

    std::vector<arAssertionRow> rows();

    // All that were recorded, and those of them that have no row.
    std::uint64_t amountOfFailures() const;
    std::uint64_t amountWithoutRow() const;

    // The function is called after the first change that follows a call of rows(), and then not before rows() is called
    // again, so that it costs little however often an assertion fails. It runs on the thread that fails, with the
    // report locked: it may not call the report and has to be quick, and it may not throw. Once this has returned the
    // function that was set before is not called any more. An empty one is none.
    void setListener(std::function<void()> listener);

private:
    void notify();

    mutable std::mutex _mutex;  // guards the rest
    std::vector<arAssertionRow> _rows;
    std::map<std::pair<gtString, int>, std::size_t> _positions;
    std::uint64_t _amountOfFailures = 0;
    std::uint64_t _amountWithoutRow = 0;
    std::function<void()> _listener;
    bool _isListenerNotified = false;
};

#pragma GCC visibility pop

#endif
