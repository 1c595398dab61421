// SPDX-License-Identifier: Apache-2.0
// Pieces of work on several threads: each once, in order, no more than there is room for, and an end at any moment.
#include "host/signing/hoOrderedWork.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <csignal>
#include <filesystem>
#include <memory>
#include <mutex>
#include <sched.h>
#include <thread>
#include <vector>

namespace
{

// Opens once, for all who wait.
class Gate
{
public:
    void open()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _isOpen = true;
        _opened.notify_all();
    }
    void wait()
    {
        std::unique_lock<std::mutex> lock(_mutex);
        _opened.wait(lock, [this] { return _isOpen; });
    }

private:
    std::mutex _mutex;
    std::condition_variable _opened;
    bool _isOpen = false;
};

}  // namespace

TEST(OrderedWorkThreads, PerformEachPieceOnceAndGiveThemInOrder)
{
    for (const unsigned int threads : {0U, 1U, 2U, 7U})
    {
        constexpr std::size_t amount = 200;
        std::vector<int> times(amount, 0);
        hoOrderedWork work(amount, threads, 5, [&](std::size_t piece) { ++times[piece]; });
        for (std::size_t piece = 0; piece < amount; ++piece)
        {
            EXPECT_EQ(work.first(), piece);
            ASSERT_TRUE(work.waitForFirst());
            EXPECT_EQ(times[piece], 1) << piece;
            work.takeFirst();
        }
        EXPECT_FALSE(work.waitForFirst());
        EXPECT_EQ(times, std::vector<int>(amount, 1)) << threads;
    }
}

TEST(OrderedWorkThreads, AreForTheProcessorsThatTheProcessMayUse)
{
    cpu_set_t all;
    ASSERT_EQ(::sched_getaffinity(0, sizeof(all), &all), 0);
    EXPECT_EQ(hoOrderedWork::amountOfProcessors(), static_cast<unsigned int>(CPU_COUNT(&all)));
    std::size_t processor = 0;
    while (!CPU_ISSET(processor, &all))
    {
        ++processor;
    }
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(processor, &one);
    ASSERT_EQ(::sched_setaffinity(0, sizeof(one), &one), 0);
    EXPECT_EQ(hoOrderedWork::amountOfProcessors(), 1U);
    EXPECT_EQ(::sched_setaffinity(0, sizeof(all), &all), 0);
}

TEST(OrderedWorkThreads, AreAllAtWorkAtATime)
{
    constexpr int amount = 4;
    std::atomic<int> begun = 0;
    Gate allHaveBegun;
    hoOrderedWork work(amount, amount, amount,
                       [&](std::size_t)
                       {
                           if (++begun == amount)
                           {
                               allHaveBegun.open();
                           }
                           allHaveBegun.wait();
                       });
    for (int piece = 0; piece < amount; ++piece)
    {
        EXPECT_TRUE(work.waitForFirst());
        work.takeFirst();
    }
}

TEST(OrderedWorkThreads, AreNoMoreThanThePieces)
{
    const auto amountOfThreads = []
    {
        const std::filesystem::directory_iterator tasks("/proc/self/task");
        return std::distance(begin(tasks), end(tasks));
    };
    // The thread sanitizer begins one of its own with the first.
    std::thread([] {}).join();
    const auto before = amountOfThreads();
    Gate mayEnd;
    {
        hoOrderedWork work(2, 50, 2, [&](std::size_t) { mayEnd.wait(); });
        EXPECT_LE(amountOfThreads(), before + 2);
        mayEnd.open();
        EXPECT_TRUE(work.waitForFirst());
    }
}

TEST(OrderedWorkThreads, TellTheEndOnce)
{
    std::atomic<int> performed = 0;
    std::atomic<int> performedAtTheEnd = 0;
    std::atomic<int> ends = 0;
    {
        hoOrderedWork work(
            8, 4, 8, [&](std::size_t) { ++performed; },
            [&]
            {
                performedAtTheEnd = performed.load();
                ++ends;
            });
        for (int piece = 0; piece < 8; ++piece)
        {
            EXPECT_TRUE(work.waitForFirst());
            work.takeFirst();
        }
    }
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(performedAtTheEnd, 8);
}

TEST(OrderedWorkThreads, BeginNothingThatThereIsNoRoomFor)
{
    constexpr std::size_t mostAhead = 3;
    std::vector<std::size_t> begun;
    std::mutex mutex;
    Gate isMade;
    std::unique_ptr<hoOrderedWork> pWork;
    pWork = std::make_unique<hoOrderedWork>(100, 4, mostAhead,
                                            [&](std::size_t piece)
                                            {
                                                isMade.wait();
                                                EXPECT_LT(piece, pWork->first() + mostAhead);
                                                const std::lock_guard<std::mutex> lock(mutex);
                                                begun.push_back(piece);
                                            });
    isMade.open();
    // The others have as long as they like to run ahead of the one that is not taken.
    for (std::size_t performed = 0; performed < mostAhead;)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        performed = begun.size();
    }
    while (pWork->waitForFirst())
    {
        pWork->takeFirst();
    }
    EXPECT_EQ(begun.size(), 100U);
}

TEST(OrderedWorkThreads, EndWithThePiecesThatHaveBegun)
{
    Gate hasBegun;
    Gate mayEnd;
    std::atomic<int> performed = 0;
    std::atomic<int> ends = 0;
    {
        hoOrderedWork work(
            50, 1, 50,
            [&](std::size_t)
            {
                hasBegun.open();
                mayEnd.wait();
                ++performed;
            },
            [&] { ++ends; });
        hasBegun.wait();
        work.cancel();
        EXPECT_EQ(ends, 0);
        mayEnd.open();
        EXPECT_TRUE(work.waitForFirst());
        work.takeFirst();
        EXPECT_FALSE(work.waitForFirst());
    }
    EXPECT_EQ(performed, 1);
    EXPECT_EQ(ends, 1);
}

TEST(OrderedWorkThreads, TellTheEndOfNothingAtAll)
{
    Gate end;
    hoOrderedWork work(
        0, 3, 1, [](std::size_t) { ADD_FAILURE(); }, [&] { end.open(); });
    end.wait();
    EXPECT_FALSE(work.waitForFirst());
}

TEST(OrderedWorkThreads, PerformNothingWithoutThreadsOnceTheyAreCancelled)
{
    hoOrderedWork work(2, 0, 1, [](std::size_t) { ADD_FAILURE(); });
    work.cancel();
    EXPECT_FALSE(work.waitForFirst());
}

TEST(OrderedWorkThreads, TakeNoSignals)
{
    sigset_t before;
    ASSERT_EQ(pthread_sigmask(SIG_SETMASK, nullptr, &before), 0);
    hoOrderedWork work(1, 1, 1,
                       [](std::size_t)
                       {
                           sigset_t blocked;
                           ASSERT_EQ(pthread_sigmask(SIG_SETMASK, nullptr, &blocked), 0);
                           for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGTSTP})
                           {
                               EXPECT_EQ(sigismember(&blocked, number), 1) << number;
                           }
                       });
    EXPECT_TRUE(work.waitForFirst());
    sigset_t after;
    ASSERT_EQ(pthread_sigmask(SIG_SETMASK, nullptr, &after), 0);
    EXPECT_EQ(sigismember(&after, SIGINT), sigismember(&before, SIGINT));
}
