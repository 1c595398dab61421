// SPDX-License-Identifier: Apache-2.0
// Lets memory run out at a chosen moment, counts it, and looks at what is given back. Add failingAllocation.cpp to the
// sources of a test, or link the target failingAllocation: it replaces the global operators new and delete of the whole
// program, shared libraries included. What calls malloc itself goes its own way.
//
// Every allocation, also one that succeeds, leaves ENOMEM in errno: nobody may rely on it that it is left alone.
#ifndef TESTS_SUPPORT_FAILING_ALLOCATION_H
#define TESTS_SUPPORT_FAILING_ALLOCATION_H

#include <cstddef>

// While it lives, the calling thread's allocation number amountBefore + 1 fails, and so does every later one of this
// thread: operator new throws std::bad_alloc, its std::nothrow form gives null. Not to be nested.
class FailingAllocation
{
public:
    explicit FailingAllocation(int amountBefore) noexcept;
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    // Whether an allocation has failed so far.
    bool hasFailed() const noexcept;
};

// While it lives, the allocation that comes after amountBefore others, whatever threads they are of, fails, and no
// later one. Not to be nested.
class OneFailingAllocation
{
public:
    explicit OneFailingAllocation(long amountBefore) noexcept;
    OneFailingAllocation(const OneFailingAllocation&) = delete;
    OneFailingAllocation& operator=(const OneFailingAllocation&) = delete;
    ~OneFailingAllocation();

    // Whether it has failed so far.
    bool hasFailed() const noexcept;
};

// How many times the calling thread has allocated memory by operator new so far, failures included.
unsigned long long amountOfAllocations() noexcept;

// How many allocations of all threads are not given back yet.
long amountOfLiveAllocations() noexcept;

// From now on every allocation asks first, and fails when the answer is false. What is asked must not allocate. Null:
// nobody is asked.
void askBeforeAllocating(bool (*pMayAllocate)()) noexcept;

// From now on the watcher sees every block just before it is given back, the usable size of the block with it. Null:
// nobody watches.
void watchWhatIsGivenBack(void (*pWatcher)(const void* pMemory, std::size_t size)) noexcept;

#endif
