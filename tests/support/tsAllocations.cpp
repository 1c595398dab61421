#include "tests/support/tsAllocations.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

namespace
{

std::atomic<long> live{0};
std::atomic<long> untilFailure{-1};
std::atomic<bool> hasFailed{false};

void* allocate(std::size_t size) noexcept
{
    if (untilFailure >= 0 && untilFailure-- == 0)
    {
        hasFailed = true;
        return nullptr;
    }
    void* pMemory = std::malloc(size == 0 ? 1 : size);
    if (pMemory != nullptr)
    {
        live++;
    }
    // Nobody may rely on it that a call which succeeds leaves errno alone.
    errno = ENOMEM;
    return pMemory;
}

void release(void* pMemory) noexcept
{
    if (pMemory != nullptr)
    {
        live--;
        std::free(pMemory);
    }
}

void* allocateOrThrow(std::size_t size)
{
    void* pMemory = allocate(size);
    if (pMemory == nullptr)
    {
        throw std::bad_alloc();
    }
    return pMemory;
}

}  // namespace

void* operator new(std::size_t size)
{
    return allocateOrThrow(size);
}

void* operator new[](std::size_t size)
{
    return allocateOrThrow(size);
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    return allocate(size);
}

void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    return allocate(size);
}

void operator delete(void* pMemory) noexcept
{
    release(pMemory);
}

void operator delete[](void* pMemory) noexcept
{
    release(pMemory);
}

void operator delete(void* pMemory, std::size_t /*size*/) noexcept
{
    release(pMemory);
}

void operator delete[](void* pMemory, std::size_t /*size*/) noexcept
{
    release(pMemory);
}

void operator delete(void* pMemory, const std::nothrow_t& /*tag*/) noexcept
{
    release(pMemory);
}

void operator delete[](void* pMemory, const std::nothrow_t& /*tag*/) noexcept
{
    release(pMemory);
}

long tsLiveAllocations()
{
    return live;
}

void tsFailAllocationAfter(long amount)
{
    hasFailed = false;
    untilFailure = amount;
}

bool tsHasAllocationFailed()
{
    return hasFailed;
}
