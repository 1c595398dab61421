// Counts what operator new gives out, and makes it fail on demand. Link allocationCounter: it replaces the global
// operators of the whole test program. One thread at a time. Every allocation changes errno.
#ifndef TS_ALLOCATIONS_H
#define TS_ALLOCATIONS_H

// How many objects are allocated and not deleted yet.
long tsLiveAllocations();

// The allocation that comes after this many successful ones fails, once: std::bad_alloc from the plain operators, null
// from the nothrow ones. A negative number: none fails.
void tsFailAllocationAfter(long amount);

// Whether the failure that was asked for has happened.
bool tsHasAllocationFailed();

#endif
