#include "tests/support/failingAllocation.h"

#include <cstdlib>
#include <new>

namespace
{
constexpr int never = -1;
thread_local int amountLeft = never;
thread_local bool isFailed = false;
thread_local unsigned long long amount = 0;

void* allocate(std::size_t size) noexcept
{
    ++amount;
    if (amountLeft == 0)
    {
        isFailed = true;
        return nullptr;
    }
    if (amountLeft > 0)
    {
        --amountLeft;
    }
    return std::malloc((size == 0) ? 1 : size);
}

void* allocateOrThrow(std::size_t size)
{
    void* const pMemory = allocate(size);
    if (pMemory == nullptr)
    {
        throw std::bad_alloc();
    }
    return pMemory;
}
}  // namespace

FailingAllocation::FailingAllocation(int amountBefore) noexcept
{
    isFailed = false;
    amountLeft = amountBefore;
}

FailingAllocation::~FailingAllocation()
{
    amountLeft = never;
}

bool FailingAllocation::hasFailed() const noexcept
{
    return isFailed;
}

unsigned long long amountOfAllocations() noexcept
{
    return amount;
}

void* operator new(std::size_t size)
{
    return allocateOrThrow(size);
}

void* operator new[](std::size_t size)
{
    return allocateOrThrow(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return allocate(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return allocate(size);
}

void operator delete(void* pMemory) noexcept
{
    std::free(pMemory);
}

void operator delete[](void* pMemory) noexcept
{
    std::free(pMemory);
}

void operator delete(void* pMemory, std::size_t) noexcept
{
    std::free(pMemory);
}

void operator delete[](void* pMemory, std::size_t) noexcept
{
    std::free(pMemory);
}

void operator delete(void* pMemory, const std::nothrow_t&) noexcept
{
    std::free(pMemory);
}

void operator delete[](void* pMemory, const std::nothrow_t&) noexcept
{
    std::free(pMemory);
}
