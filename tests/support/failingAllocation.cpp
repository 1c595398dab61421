// SPDX-License-Identifier: Apache-2.0
#include "tests/support/failingAllocation.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace
{

constexpr int never = -1;

thread_local int amountLeft = never;
thread_local bool hasThreadFailed = false;
thread_local unsigned long long amount = 0;

std::atomic<long> amountLeftOfAll{never};
std::atomic<bool> hasOneFailed{false};
std::atomic<long> amountAlive{0};
std::atomic<bool (*)()> pQuestion{nullptr};
std::atomic<void (*)(const void*, std::size_t)> pOnlooker{nullptr};

bool isToFail() noexcept
{
    if (amountLeft == 0)
    {
        hasThreadFailed = true;
        return true;
    }
    if (amountLeft > 0)
    {
        --amountLeft;
    }
    if (amountLeftOfAll >= 0 && amountLeftOfAll-- == 0)
    {
        hasOneFailed = true;
        return true;
    }
    const auto pMayAllocate = pQuestion.load();
    return pMayAllocate != nullptr && !pMayAllocate();
}

void* allocate(std::size_t size) noexcept
{
    ++amount;
    void* const pMemory = isToFail() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (pMemory != nullptr)
    {
        ++amountAlive;
    }
    errno = ENOMEM;
    return pMemory;
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

void giveBack(void* pMemory) noexcept
{
    if (pMemory == nullptr)
    {
        return;
    }
    const auto pWatcher = pOnlooker.load();
    if (pWatcher != nullptr)
    {
        pWatcher(pMemory, malloc_usable_size(pMemory));
    }
    --amountAlive;
    std::free(pMemory);
}

}  // namespace

FailingAllocation::FailingAllocation(int amountBefore) noexcept
{
    hasThreadFailed = false;
    amountLeft = amountBefore;
}

FailingAllocation::~FailingAllocation()
{
    amountLeft = never;
}

bool FailingAllocation::hasFailed() const noexcept
{
    return hasThreadFailed;
}

OneFailingAllocation::OneFailingAllocation(long amountBefore) noexcept
{
    hasOneFailed = false;
    amountLeftOfAll = amountBefore;
}

OneFailingAllocation::~OneFailingAllocation()
{
    amountLeftOfAll = never;
}

bool OneFailingAllocation::hasFailed() const noexcept
{
    return hasOneFailed;
}

unsigned long long amountOfAllocations() noexcept
{
    return amount;
}

long amountOfLiveAllocations() noexcept
{
    return amountAlive;
}

void askBeforeAllocating(bool (*pMayAllocate)()) noexcept
{
    pQuestion = pMayAllocate;
}

void watchWhatIsGivenBack(void (*pWatcher)(const void* pMemory, std::size_t size)) noexcept
{
    pOnlooker = pWatcher;
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
    giveBack(pMemory);
}

void operator delete[](void* pMemory) noexcept
{
    giveBack(pMemory);
}

void operator delete(void* pMemory, std::size_t) noexcept
{
    giveBack(pMemory);
}

void operator delete[](void* pMemory, std::size_t) noexcept
{
    giveBack(pMemory);
}

void operator delete(void* pMemory, const std::nothrow_t&) noexcept
{
    giveBack(pMemory);
}

void operator delete[](void* pMemory, const std::nothrow_t&) noexcept
{
    giveBack(pMemory);
}
