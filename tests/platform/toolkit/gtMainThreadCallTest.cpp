// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtMainThreadCall.h"

#include "tests/support/failingAllocation.h"
#include "tests/support/tsWindowTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <set>
#include <sys/resource.h>
#include <thread>

namespace
{
class MainThreadCall : public testing::Test
{
protected:
    void runUntil(int amount)
    {
        tsRunUntil("it was called", [&] { return _calls >= amount; });
        tsRunEvents();
    }

    int _calls = 0;
};

std::set<int> openDescriptors()
{
    std::set<int> found;
    DIR* const pFolder = opendir("/proc/self/fd");
    while (const dirent* pEntry = readdir(pFolder))
    {
        const int number = static_cast<int>(std::strtol(pEntry->d_name, nullptr, 10));
        if (pEntry->d_name[0] != '.' && number != dirfd(pFolder))
        {
            found.insert(number);
        }
    }
    closedir(pFolder);
    return found;
}

class NoDescriptors
{
public:
    NoDescriptors()
    {
        getrlimit(RLIMIT_NOFILE, &_before);
        const rlimit none = {0, _before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &_before); }
    NoDescriptors(const NoDescriptors&) = delete;
    NoDescriptors& operator=(const NoDescriptors&) = delete;

private:
    rlimit _before = {};
};
}  // namespace

TEST_F(MainThreadCall, ComesOnceForAllRequestsBefore)
{
    gtMainThreadCall call([this] { ++_calls; });
    tsRunEvents();
    EXPECT_EQ(_calls, 0);
    for (int amount = 1; amount <= 3; ++amount)
    {
        call.request();
        std::thread(
            [&]
            {
                call.request();
                call.request();
            })
            .join();
        EXPECT_EQ(_calls, amount - 1);
        runUntil(amount);
        EXPECT_EQ(_calls, amount);
    }
}

// The numbers are plain ones: what a thread does before it asks is there for the call.
TEST_F(MainThreadCall, SeesWhatWasDoneBeforeEveryRequest)
{
    struct Asking
    {
        int _number = 0;
        std::atomic<int> _seen{0};
        gtMainThreadCall _call{[this] { _seen = _number; }};
    };
    const int most = 500;
    std::atomic<bool> isOver = false;
    std::array<Asking, 3> all;
    std::array<std::thread, 3> threads;
    for (std::size_t i = 0; i < all.size(); ++i)
    {
        threads.at(i) = std::thread(
            [&isOver, &asking = all.at(i)]
            {
                for (int number = 1; number <= most && !isOver; ++number)
                {
                    asking._number = number;
                    asking._call.request();
                    while (asking._seen < number && !isOver)
                    {
                        std::this_thread::yield();
                    }
                }
            });
    }
    tsRunUntil("all was seen", [&]
               { return std::all_of(all.begin(), all.end(), [](const Asking& one) { return one._seen == most; }); });
    isOver = true;
    for (std::thread& thread : threads)
    {
        thread.join();
    }
}

// Also one that comes in the middle of a call.
TEST_F(MainThreadCall, ComesAfterTheLastOfManyRequests)
{
    const int most = 20000;
    std::atomic<int> asked = 0;
    std::atomic<int> seen = 0;
    std::atomic<bool> isOver = false;
    gtMainThreadCall call([&] { seen = asked.load(); });
    std::thread thread(
        [&]
        {
            while (asked < most && !isOver)
            {
                ++asked;
                call.request();
                while (asked % 100 == 0 && seen < asked && !isOver)
                {
                    std::this_thread::yield();
                }
            }
        });
    tsRunUntil("the last one was seen", [&] { return seen == most; });
    isOver = true;
    thread.join();
}

TEST_F(MainThreadCall, MayAskAgainFromWithin)
{
    gtMainThreadCall* pCall = nullptr;
    gtMainThreadCall call(
        [&]
        {
            if (++_calls < 5)
            {
                pCall->request();
            }
        });
    pCall = &call;
    call.request();
    runUntil(5);
    EXPECT_EQ(_calls, 5);
}

TEST_F(MainThreadCall, DoesNotComeAfterTheEnd)
{
    {
        gtMainThreadCall call([this] { ++_calls; });
        call.request();
    }
    tsRunEvents();
    EXPECT_EQ(_calls, 0);
}

TEST_F(MainThreadCall, TakesNoMemory)
{
    gtMainThreadCall call([this] { ++_calls; });
    for (int amount = 1; amount <= 2; ++amount)
    {
        std::thread(
            [&]
            {
                const unsigned long long before = amountOfAllocations();
                call.request();
                EXPECT_EQ(amountOfAllocations(), before);
            })
            .join();
        runUntil(amount);
    }
    EXPECT_EQ(_calls, 2);
}

TEST_F(MainThreadCall, KeepsItsDescriptorsToItselfAndGivesThemBack)
{
    const std::set<int> before = openDescriptors();
    {
        const gtMainThreadCall call([] {});
        for (const int descriptor : openDescriptors())
        {
            if (before.count(descriptor) == 0)
            {
                EXPECT_EQ(fcntl(descriptor, F_GETFD), FD_CLOEXEC);
                EXPECT_NE(fcntl(descriptor, F_GETFL) & O_NONBLOCK, 0);
            }
        }
        EXPECT_GT(openDescriptors().size(), before.size());
    }
    EXPECT_EQ(openDescriptors(), before);
}

// The undefined-behaviour sanitizer looks at objects through pipes and takes them for broken when it gets none.
#if !defined(__SANITIZE_ADDRESS__)
TEST_F(MainThreadCall, ComesWithoutDescriptorsToo)
{
    std::unique_ptr<gtMainThreadCall> pCall;
    {
        const NoDescriptors broken;
        pCall = std::make_unique<gtMainThreadCall>([this] { ++_calls; });
    }
    for (int amount = 1; amount <= 2; ++amount)
    {
        std::thread([&] { pCall->request(); }).join();
        runUntil(amount);
    }
    EXPECT_EQ(_calls, 2);
}
#endif
