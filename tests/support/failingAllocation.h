// Lets memory run out at a chosen moment. Add failingAllocation.cpp to the sources of a test: it replaces the global
// operators new and delete of the whole program, shared libraries included.
#ifndef TESTS_SUPPORT_FAILING_ALLOCATION_H
#define TESTS_SUPPORT_FAILING_ALLOCATION_H

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

// How many times the calling thread has allocated memory by operator new so far, failures included.
unsigned long long amountOfAllocations() noexcept;

#endif
