// SPDX-License-Identifier: Apache-2.0
// Stands between the test program and the system. Link the target systemFault: its source, which defines the calls, is
// compiled by the test. A program whose libraries are to be met too, also those that it does not name, exports its
// symbols (ENABLE_EXPORTS).
//
// Calls: open (also what makes temporary files and what fopen opens), read, write, fsync, close, link, rename,
// renameat2, stat, fstat, realpath, fcntl, tcsetattr, and "thread", the start of a thread. What fails to close is
// closed all the same. A test defines what else it needs and asks tsAnswerOf.
#ifndef TS_SYSTEM_FAULT_H
#define TS_SYSTEM_FAULT_H

#include <climits>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

// What a call does: a negative number fails with that error. Any other is how many bytes read and write do at most; to
// the other calls it means nothing.
constexpr long tsWorks = LONG_MAX;

// Which calls do what.
struct tsFault
{
    std::string _call;
    std::vector<long> _answers = {};  // of one call after the other; the calls after them work; 200 at most
    int _number = 1;                  // of the call that the first answer is for, counted from 1
    bool _isForGood = false;          // the last answer is for all further calls
    bool _isOfThread = false;         // calls of the thread that makes the tsSystemFault, not of all threads
    std::string _folder = {};         // calls that concern a file below this folder; "thread" has no file; empty: all
    int _descriptor = -1;             // calls with this descriptor; -1: all
    // Is called before each call that has an answer, with its path (the new one of two), or null if it has a
    // descriptor. It must not throw; most calls may not let it allocate where memory runs out.
    std::function<void(const char* pPath)> _before = {};
};

// While it lives, the calls do what the fault says. 16 can live at once; the first one made comes first, and the
// others neither see nor count the calls that go wrong by it.
class tsSystemFault
{
public:
    explicit tsSystemFault(const tsFault& fault);
    // The call of that number, of any thread, fails with the error; 0 makes read and write do one byte only.
    tsSystemFault(const std::string& folder, const std::string& call, int number, int error);
    // The call works; the function is called before it.
    tsSystemFault(const std::string& folder, const std::string& call, int number, const std::function<void()>& before);
    // What the next calls of this thread do.
    tsSystemFault(const std::string& call, const std::vector<long>& answers);
    ~tsSystemFault();
    tsSystemFault(const tsSystemFault&) = delete;
    tsSystemFault& operator=(const tsSystemFault&) = delete;

    // Whether the call has come that the first answer is for.
    bool hasHappened() const;
    int amountOfCalls() const;

private:
    tsFault _fault;
    int _slot;
};

// For calls that a test defines itself: what this one does. Allocates nothing.
long tsAnswerOf(const char* pCall) noexcept;
// The same: whether it fails, and errno is set then.
bool tsFails(const char* pCall) noexcept;

// While it lives, notes calls of the thread that made it. Not to be nested.
class tsNotedCalls
{
public:
    tsNotedCalls();
    ~tsNotedCalls();
    tsNotedCalls(const tsNotedCalls&) = delete;
    tsNotedCalls& operator=(const tsNotedCalls&) = delete;

    std::vector<std::size_t> _readSizes;
    std::vector<int> _opened;
    std::vector<int> _closed;
};

// While it lives, files have time stamps without fractions, as on some file systems, from what fstat and stat say.
class tsWholeSecondStamps
{
public:
    tsWholeSecondStamps();
    ~tsWholeSecondStamps();
    tsWholeSecondStamps(const tsWholeSecondStamps&) = delete;
    tsWholeSecondStamps& operator=(const tsWholeSecondStamps&) = delete;
};

#endif
