// SPDX-License-Identifier: Apache-2.0
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "tests/support/failingAllocation.h"
#include "tests/support/tsCaughtErrors.h"

namespace
{
using testing::ElementsAre;
using testing::ExitedWithCode;

// Does what the test says.
class Handler : public gtIAssertionFailureHandler
{
public:
    explicit Handler(std::function<void(Handler&)> action = nullptr) : _action(std::move(action)) {}
    Handler(const Handler&) = delete;
    Handler& operator=(const Handler&) = delete;

    void onAssertionFailure(const char* functionName, const char* fileName, int lineNumber,
                            const char* message) override
    {
        lastFunctionName = functionName;
        lastFileName = fileName;
        lastLineNumber = lineNumber;
        lastMessage = message;
        ++calls;
        if (_action)
        {
            _action(*this);
        }
    }

    ~Handler() override { gtUnRegisterAssertionFailureHandler(this); }

    std::atomic<int> calls = 0;
    std::atomic<const char*> lastFunctionName = nullptr;
    std::atomic<const char*> lastFileName = nullptr;
    std::atomic<int> lastLineNumber = 0;
    std::atomic<const char*> lastMessage = nullptr;

private:
    std::function<void(Handler&)> _action;
};

// Set once, from any thread; waited for by any number.
class Event
{
public:
    void set()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _isSet = true;
        _changed.notify_all();
    }

    void wait()
    {
        std::unique_lock<std::mutex> lock(_mutex);
        while (!_isSet)
        {
            _changed.wait(lock);
        }
    }

    bool isSet()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        return _isSet;
    }

private:
    std::mutex _mutex;
    std::condition_variable _changed;
    bool _isSet = false;
};

void failAnAssertion()
{
    gtTriggerAssertonFailureHandler("function", "file.cpp", 12, "Assertion failure (x)");
}

const char* const theLine = "file.cpp:12: function: Assertion failure (x)\n";

std::string stderrOf(const std::function<void()>& action)
{
    const tsCaughtErrors errors;
    action();
    return errors.take();
}

TEST(Registry, HasNoHandlersAtFirst)
{
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
}

TEST(Registry, WritesOneLineWithoutAHandler)
{
    EXPECT_EQ(stderrOf(failAnAssertion), theLine);
    EXPECT_EQ(stderrOf(
                  []()
                  {
                      gtTriggerAssertonFailureHandler("f", "a b.cpp", -3, "m");
                      gtTriggerAssertonFailureHandler("", "", 2147483647, "");
                      gtTriggerAssertonFailureHandler("", "", -2147483647 - 1, "");
                  }),
              "a b.cpp:-3: f: m\n:2147483647: : \n:-2147483648: : \n");
}

TEST(Registry, LineIsOneLineWhateverTheTexts)
{
    EXPECT_EQ(stderrOf([]() { gtTriggerAssertonFailureHandler(nullptr, nullptr, 0, nullptr); }),
              "(null):0: (null): (null)\n");
    EXPECT_EQ(
        stderrOf([]() { gtTriggerAssertonFailureHandler("a\nb", "c\r\nd", 1, "e\tf\x7fg\x1b[1m %s \xc3\xa4\xff"); }),
        "c  d:1: a b: e f g [1m %s \xc3\xa4\xff\n");
}

TEST(Registry, LineHasAnyLength)
{
    for (const std::size_t length : {std::size_t(900), std::size_t(1000), std::size_t(1013), std::size_t(1014),
                                     std::size_t(1015), std::size_t(1024), std::size_t(2048), std::size_t(100000)})
    {
        const std::string message(length, 'm');
        EXPECT_EQ(stderrOf([&]() { gtTriggerAssertonFailureHandler("f", "c", 1, message.c_str()); }),
                  "c:1: f: " + message + "\n");
    }
}

// A socket that keeps what is written at once apart.
TEST(Registry, LineIsOneWrite)
{
    int ends[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends), 0);
    const int before = ::dup(STDERR_FILENO);
    ASSERT_EQ(::dup2(ends[1], STDERR_FILENO), STDERR_FILENO);
    const std::string message(1024 - std::strlen("c:1: f: \n"), 'm');
    gtTriggerAssertonFailureHandler("f", "c", 1, message.c_str());
    ASSERT_EQ(::dup2(before, STDERR_FILENO), STDERR_FILENO);
    ::close(before);
    ::close(ends[1]);
    char line[2000];
    const ssize_t length = ::recv(ends[0], line, sizeof line, 0);
    ::close(ends[0]);
    ASSERT_EQ(length, 1024);
    EXPECT_EQ(std::string(line, 1024), "c:1: f: " + message + "\n");
}

TEST(Registry, LineNeedsNoMemory)
{
    const tsCaughtErrors errors;
    {
        const FailingAllocation failing(0);
        failAnAssertion();
    }
    EXPECT_EQ(errors.take(), theLine);
}

TEST(Registry, HandsTheArgumentsOverAndWritesNothing)
{
    Handler handler;
    gtRegisterAssertionFailureHandler(&handler);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
    const char function[] = "function";
    const char file[] = "file";
    const char message[] = "message";
    EXPECT_EQ(stderrOf([&]() { gtTriggerAssertonFailureHandler(function, file, 77, message); }), "");
    EXPECT_EQ(handler.calls, 1);
    EXPECT_EQ(handler.lastFunctionName, function);
    EXPECT_EQ(handler.lastFileName, file);
    EXPECT_EQ(handler.lastLineNumber, 77);
    EXPECT_EQ(handler.lastMessage, message);

    gtTriggerAssertonFailureHandler(nullptr, nullptr, -1, nullptr);
    EXPECT_EQ(handler.calls, 2);
    EXPECT_EQ(handler.lastFunctionName, nullptr);
    EXPECT_EQ(handler.lastFileName, nullptr);
    EXPECT_EQ(handler.lastLineNumber, -1);
    EXPECT_EQ(handler.lastMessage, nullptr);

    gtUnRegisterAssertionFailureHandler(&handler);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
    EXPECT_EQ(stderrOf(failAnAssertion), theLine);
    EXPECT_EQ(handler.calls, 2);
}

TEST(Registry, CallsHandlersInTheOrderOfRegistration)
{
    std::vector<int> order;
    Handler first([&](Handler&) { order.push_back(1); });
    Handler second([&](Handler&) { order.push_back(2); });
    Handler third([&](Handler&) { order.push_back(3); });
    gtRegisterAssertionFailureHandler(&second);
    gtRegisterAssertionFailureHandler(&first);
    gtRegisterAssertionFailureHandler(&third);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 3);
    failAnAssertion();
    EXPECT_THAT(order, ElementsAre(2, 1, 3));

    order.clear();
    gtUnRegisterAssertionFailureHandler(&second);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 2);
    gtRegisterAssertionFailureHandler(&second);
    failAnAssertion();
    EXPECT_THAT(order, ElementsAre(1, 3, 2));
}

TEST(Registry, NullTwiceAndStrangersDoNothing)
{
    Handler handler;
    Handler stranger;
    gtRegisterAssertionFailureHandler(nullptr);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
    gtUnRegisterAssertionFailureHandler(nullptr);
    gtUnRegisterAssertionFailureHandler(&handler);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);

    gtRegisterAssertionFailureHandler(&handler);
    gtRegisterAssertionFailureHandler(&handler);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
    gtUnRegisterAssertionFailureHandler(&stranger);
    gtUnRegisterAssertionFailureHandler(nullptr);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
    failAnAssertion();
    EXPECT_EQ(handler.calls, 1);
    EXPECT_EQ(stranger.calls, 0);

    gtUnRegisterAssertionFailureHandler(&handler);
    gtUnRegisterAssertionFailureHandler(&handler);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
}

TEST(Registry, RegistersNothingWithoutMemory)
{
    std::vector<std::unique_ptr<Handler>> handlers;
    bool hasFailed = false;
    while (!hasFailed)
    {
        handlers.push_back(std::make_unique<Handler>());
        Handler* const pHandler = handlers.back().get();
        const int before = gtAmountOfRegisteredAssertionFailureHandlers();
        try
        {
            const FailingAllocation failing(0);
            gtRegisterAssertionFailureHandler(pHandler);
        }
        catch (const std::bad_alloc&)
        {
            hasFailed = true;
            EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), before);
            gtRegisterAssertionFailureHandler(pHandler);
        }
        EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), before + 1);
    }
    failAnAssertion();
    for (const auto& pHandler : handlers)
    {
        EXPECT_EQ(pHandler->calls, 1);
    }
}

TEST(Registry, PassingAFailureOnNeedsNoMemory)
{
    Handler handler;
    gtRegisterAssertionFailureHandler(&handler);
    {
        const FailingAllocation failing(0);
        failAnAssertion();
        gtUnRegisterAssertionFailureHandler(&handler);
    }
    EXPECT_EQ(handler.calls, 1);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
}

TEST(Registry, KeepsErrno)
{
    std::vector<int> seen;
    const auto action = [&](Handler&)
    {
        // Not by reference: growing the list changes it.
        const int found = errno;
        seen.push_back(found);
        errno = ERANGE;
    };
    Handler first(action);
    Handler second(action);
    gtRegisterAssertionFailureHandler(&first);
    gtRegisterAssertionFailureHandler(&second);
    errno = ENOSPC;
    failAnAssertion();
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_THAT(seen, ElementsAre(ENOSPC, ENOSPC));

    gtUnRegisterAssertionFailureHandler(&first);
    gtUnRegisterAssertionFailureHandler(&second);
    int afterwards = 0;
    EXPECT_EQ(stderrOf(
                  [&]()
                  {
                      errno = ENOSPC;
                      failAnAssertion();
                      afterwards = errno;
                  }),
              theLine);
    EXPECT_EQ(afterwards, ENOSPC);
}

TEST(Registry, HandlerMayUnregisterItself)
{
    Handler after;
    Handler handler([](Handler& self) { gtUnRegisterAssertionFailureHandler(&self); });
    gtRegisterAssertionFailureHandler(&handler);
    gtRegisterAssertionFailureHandler(&after);
    failAnAssertion();
    failAnAssertion();
    EXPECT_EQ(handler.calls, 1);
    EXPECT_EQ(after.calls, 2);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
}

class SelfDestroyer : public gtIAssertionFailureHandler
{
public:
    void onAssertionFailure(const char*, const char*, int, const char*) override
    {
        gtUnRegisterAssertionFailureHandler(this);
        delete this;
    }
};

TEST(Registry, HandlerMayDestroyItself)
{
    gtRegisterAssertionFailureHandler(new SelfDestroyer);
    failAnAssertion();
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
}

TEST(Registry, HandlerUnregisteredByAnEarlierOneIsNotCalled)
{
    Handler later;
    Handler earlier([&](Handler&) { gtUnRegisterAssertionFailureHandler(&later); });
    gtRegisterAssertionFailureHandler(&earlier);
    gtRegisterAssertionFailureHandler(&later);
    failAnAssertion();
    EXPECT_EQ(earlier.calls, 1);
    EXPECT_EQ(later.calls, 0);
}

TEST(Registry, HandlerRegisteredMeanwhileHearsOfTheNextFailure)
{
    Handler late;
    Handler handler([&](Handler&) { gtRegisterAssertionFailureHandler(&late); });
    gtRegisterAssertionFailureHandler(&handler);
    failAnAssertion();
    EXPECT_EQ(late.calls, 0);
    failAnAssertion();
    EXPECT_EQ(handler.calls, 2);
    EXPECT_EQ(late.calls, 1);
}

TEST(Registry, HandlerThatRegistersItselfAnewIsNotCalledForEver)
{
    Handler handler(
        [](Handler& self)
        {
            gtUnRegisterAssertionFailureHandler(&self);
            gtRegisterAssertionFailureHandler(&self);
        });
    gtRegisterAssertionFailureHandler(&handler);
    failAnAssertion();
    EXPECT_EQ(handler.calls, 1);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
}

TEST(Registry, HandlerMayFailAnAssertion)
{
    Handler handler(
        [](Handler& self)
        {
            if (self.calls < 3)
            {
                failAnAssertion();
            }
        });
    gtRegisterAssertionFailureHandler(&handler);
    EXPECT_EQ(stderrOf(failAnAssertion), "");
    EXPECT_EQ(handler.calls, 3);
}

TEST(Registry, HandlerThatAlwaysFailsComesToAnEnd)
{
    Handler handler([](Handler&) { failAnAssertion(); });
    gtRegisterAssertionFailureHandler(&handler);
    EXPECT_EQ(stderrOf(failAnAssertion), theLine);
    EXPECT_EQ(gtDeepestNestedAssertionFailure, 8);
    EXPECT_EQ(handler.calls, 8);
    EXPECT_EQ(stderrOf(failAnAssertion), theLine);
    EXPECT_EQ(handler.calls, 16);
}

TEST(Registry, NestingIsCountedByThread)
{
    // Every nested failure happens on a thread of its own, so none is too deep.
    constexpr int depth = 2 * gtDeepestNestedAssertionFailure;
    Handler handler(
        [](Handler& self)
        {
            if (self.calls < depth)
            {
                std::thread(failAnAssertion).join();
            }
        });
    gtRegisterAssertionFailureHandler(&handler);
    EXPECT_EQ(stderrOf(failAnAssertion), "");
    EXPECT_EQ(handler.calls, depth);
}

TEST(Registry, ExceptionOfAHandlerEndsThere)
{
    Handler thrower([](Handler&) { throw std::runtime_error("thrown by a handler"); });
    Handler after;
    gtRegisterAssertionFailureHandler(&thrower);
    gtRegisterAssertionFailureHandler(&after);
    EXPECT_EQ(stderrOf(failAnAssertion), theLine);
    EXPECT_EQ(thrower.calls, 1);
    EXPECT_EQ(after.calls, 1);

    // Its call is over: unregistering it elsewhere waits for nothing.
    std::thread([&]() { gtUnRegisterAssertionFailureHandler(&thrower); }).join();
    EXPECT_EQ(stderrOf(failAnAssertion), "");
    EXPECT_EQ(after.calls, 2);
}

TEST(Registry, UnregisteringWaitsForCallsOnOtherThreads)
{
    for (int round = 0; round < 200; ++round)
    {
        Event isEntered;
        Event isReleased;
        std::atomic<bool> isOver = false;
        Handler handler(
            [&](Handler&)
            {
                isEntered.set();
                isReleased.wait();
                isOver = true;
            });
        gtRegisterAssertionFailureHandler(&handler);
        std::thread failing(failAnAssertion);
        isEntered.wait();
        bool wasOver = false;
        std::thread unregistering(
            [&]()
            {
                gtUnRegisterAssertionFailureHandler(&handler);
                wasOver = isOver;
            });
        while (gtAmountOfRegisteredAssertionFailureHandlers() > 0)
        {
            std::this_thread::yield();
        }
        std::this_thread::yield();
        EXPECT_FALSE(isOver);
        isReleased.set();
        failing.join();
        unregistering.join();
        ASSERT_TRUE(wasOver);
    }
}

TEST(Registry, UnregisteringWithinAHandlerWaitsForThreadsThatDoNotWait)
{
    for (int round = 0; round < 100; ++round)
    {
        Event isEntered;
        Event isReleased;
        std::atomic<bool> isOver = false;
        std::atomic<bool> wasOver = false;
        Handler held(
            [&](Handler& self)
            {
                if (self.calls == 1)
                {
                    isEntered.set();
                    isReleased.wait();
                    isOver = true;
                }
            });
        Handler unregistering(
            [&](Handler&)
            {
                gtUnRegisterAssertionFailureHandler(&held);
                wasOver = isOver.load();
            });
        gtRegisterAssertionFailureHandler(&held);
        std::thread failing(failAnAssertion);
        isEntered.wait();
        gtRegisterAssertionFailureHandler(&unregistering);
        std::thread failingToo(failAnAssertion);
        while (gtAmountOfRegisteredAssertionFailureHandlers() > 1)
        {
            std::this_thread::yield();
        }
        std::this_thread::yield();
        isReleased.set();
        failing.join();
        failingToo.join();
        ASSERT_TRUE(wasOver);
    }
}

TEST(Registry, SecondUnregisteringWaitsAsWell)
{
    for (int round = 0; round < 100; ++round)
    {
        Event isEntered;
        Event isReleased;
        std::atomic<bool> isOver = false;
        Handler handler(
            [&](Handler& self)
            {
                gtUnRegisterAssertionFailureHandler(&self);
                isEntered.set();
                isReleased.wait();
                isOver = true;
            });
        gtRegisterAssertionFailureHandler(&handler);
        std::thread failing(failAnAssertion);
        isEntered.wait();
        EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
        std::thread releasing([&]() { isReleased.set(); });
        gtUnRegisterAssertionFailureHandler(&handler);
        EXPECT_TRUE(isOver);
        failing.join();
        releasing.join();
    }
}

TEST(Registry, UnregisteringDoesNotWaitForCallsOfOtherHandlers)
{
    Event isEntered;
    Event isReleased;
    Handler busy(
        [&](Handler&)
        {
            isEntered.set();
            isReleased.wait();
        });
    Handler idle;
    gtRegisterAssertionFailureHandler(&busy);
    gtRegisterAssertionFailureHandler(&idle);
    std::thread failing(failAnAssertion);
    isEntered.wait();
    gtUnRegisterAssertionFailureHandler(&idle);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
    isReleased.set();
    failing.join();
    EXPECT_EQ(idle.calls, 0);
}

TEST(Registry, UnregisteringDoesNotWaitForCallsOfALaterRegistration)
{
    Event isFirstEntered;
    Event isFirstReleased;
    Event isSecondEntered;
    Event isSecondReleased;
    Handler handler(
        [&](Handler& self)
        {
            const bool isFirst = self.calls == 1;
            (isFirst ? isFirstEntered : isSecondEntered).set();
            (isFirst ? isFirstReleased : isSecondReleased).wait();
        });
    gtRegisterAssertionFailureHandler(&handler);
    std::thread first(failAnAssertion);
    isFirstEntered.wait();
    std::thread unregistering([&]() { gtUnRegisterAssertionFailureHandler(&handler); });
    while (gtAmountOfRegisteredAssertionFailureHandlers() > 0)
    {
        std::this_thread::yield();
    }
    gtRegisterAssertionFailureHandler(&handler);
    std::thread second(failAnAssertion);
    isSecondEntered.wait();
    isFirstReleased.set();
    first.join();
    unregistering.join();  // although the second call goes on
    EXPECT_FALSE(isSecondReleased.isSet());
    isSecondReleased.set();
    second.join();
}

TEST(Registry, TwoThreadsInOneHandlerMayBothUnregisterIt)
{
    for (int round = 0; round < 200; ++round)
    {
        std::atomic<int> inside = 0;
        Handler handler(
            [&](Handler& self)
            {
                ++inside;
                while (inside < 2)
                {
                    std::this_thread::yield();
                }
                gtUnRegisterAssertionFailureHandler(&self);
            });
        gtRegisterAssertionFailureHandler(&handler);
        std::thread first(failAnAssertion);
        std::thread second(failAnAssertion);
        first.join();
        second.join();
        EXPECT_EQ(handler.calls, 2);
        EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
    }
}

TEST(Registry, TwoHandlersMayUnregisterEachOther)
{
    for (int round = 0; round < 200; ++round)
    {
        std::atomic<int> inside = 0;
        Handler* pSecond = nullptr;
        Handler* pFirst = nullptr;
        std::thread::id firstThread;
        Event areReady;
        const auto meetAndUnregister = [&](Handler& other)
        {
            ++inside;
            while (inside < 2)
            {
                std::this_thread::yield();
            }
            gtUnRegisterAssertionFailureHandler(&other);
        };
        // Each thread is held by one of the two.
        Handler first(
            [&](Handler&)
            {
                if (std::this_thread::get_id() == firstThread)
                {
                    meetAndUnregister(*pSecond);
                }
            });
        Handler second(
            [&](Handler&)
            {
                if (std::this_thread::get_id() != firstThread)
                {
                    meetAndUnregister(*pFirst);
                }
            });
        pFirst = &first;
        pSecond = &second;
        gtRegisterAssertionFailureHandler(&first);
        gtRegisterAssertionFailureHandler(&second);
        const auto waitAndFail = [&]()
        {
            areReady.wait();
            failAnAssertion();
        };
        std::thread one(waitAndFail);
        std::thread two(waitAndFail);
        firstThread = one.get_id();
        areReady.set();
        one.join();
        two.join();
        EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
    }
}

TEST(Registry, FromOutsideAHandlerAWaitingThreadIsWaitedForAsWell)
{
    // One thread is held in the inner handler; a second is in the outer handler and waits there for the first.
    for (int round = 0; round < 50; ++round)
    {
        Event isInnerEntered;
        Event isInnerReleased;
        Event isOuterEntered;
        std::atomic<bool> isOuterOver = false;
        Handler inner(
            [&](Handler&)
            {
                isInnerEntered.set();
                isInnerReleased.wait();
            });
        gtRegisterAssertionFailureHandler(&inner);
        std::thread innerThread(failAnAssertion);
        isInnerEntered.wait();

        Handler outer(
            [&](Handler&)
            {
                isOuterEntered.set();
                gtUnRegisterAssertionFailureHandler(&inner);
                isOuterOver = true;
            });
        gtRegisterAssertionFailureHandler(&outer);
        // With the inner handler out of the registry the second thread reaches the outer one without being held before.
        std::thread removing([&]() { gtUnRegisterAssertionFailureHandler(&inner); });
        while (gtAmountOfRegisteredAssertionFailureHandlers() > 1)
        {
            std::this_thread::yield();
        }
        std::thread outerThread(failAnAssertion);
        isOuterEntered.wait();

        bool wasOver = false;
        std::thread unregistering(
            [&]()
            {
                gtUnRegisterAssertionFailureHandler(&outer);
                wasOver = isOuterOver;
            });
        while (gtAmountOfRegisteredAssertionFailureHandlers() > 0)
        {
            std::this_thread::yield();
        }
        isInnerReleased.set();
        innerThread.join();
        removing.join();
        outerThread.join();
        unregistering.join();
        EXPECT_TRUE(wasOver);
    }
}

TEST(Registry, ThreadThatHasWaitedIsWaitedForAgain)
{
    for (int round = 0; round < 50; ++round)
    {
        Event isInnerEntered;
        Event isInnerReleased;
        Event isOuterEntered;
        Event hasOuterWaited;
        Event isOuterReleased;
        std::atomic<bool> isOuterOver = false;
        std::atomic<bool> wasOuterOver = false;
        Handler inner(
            [&](Handler& self)
            {
                gtUnRegisterAssertionFailureHandler(&self);
                isInnerEntered.set();
                isInnerReleased.wait();
            });
        gtRegisterAssertionFailureHandler(&inner);
        std::thread innerThread(failAnAssertion);
        isInnerEntered.wait();

        Handler outer(
            [&](Handler& self)
            {
                gtUnRegisterAssertionFailureHandler(&self);
                isOuterEntered.set();
                gtUnRegisterAssertionFailureHandler(&inner);
                hasOuterWaited.set();
                isOuterReleased.wait();
                isOuterOver = true;
            });
        gtRegisterAssertionFailureHandler(&outer);
        std::thread outerThread(failAnAssertion);
        isOuterEntered.wait();
        isInnerReleased.set();
        hasOuterWaited.wait();

        // From within a third handler the outer one, which waits for nothing any more, is waited for.
        Handler third(
            [&](Handler& self)
            {
                gtUnRegisterAssertionFailureHandler(&self);
                gtUnRegisterAssertionFailureHandler(&outer);
                wasOuterOver = isOuterOver.load();
            });
        gtRegisterAssertionFailureHandler(&third);
        std::thread thirdThread(failAnAssertion);
        while (gtAmountOfRegisteredAssertionFailureHandlers() > 0)
        {
            std::this_thread::yield();
        }
        std::this_thread::yield();
        isOuterReleased.set();
        innerThread.join();
        outerThread.join();
        thirdThread.join();
        EXPECT_TRUE(wasOuterOver);
    }
}

TEST(Registry, AnyThreadMayDoAnythingAtAnyTime)
{
    std::atomic<bool> mustEnd = false;
    Handler permanent;
    gtRegisterAssertionFailureHandler(&permanent);
    std::vector<std::thread> failing;
    std::atomic<int> failures = 0;
    failing.reserve(3);
    for (int i = 0; i < 3; ++i)
    {
        failing.emplace_back(
            [&]()
            {
                while (!mustEnd)
                {
                    failAnAssertion();
                    ++failures;
                }
            });
    }
    std::vector<std::thread> registering;
    registering.reserve(2);
    for (int i = 0; i < 2; ++i)
    {
        registering.emplace_back(
            []()
            {
                for (int round = 0; round < 1000; ++round)
                {
                    // The flag is gone with the handler: a call that comes too late writes into freed memory.
                    auto pFlag = std::make_unique<std::atomic<int>>(0);
                    auto pHandler = std::make_unique<Handler>([&](Handler&) { ++*pFlag; });
                    gtRegisterAssertionFailureHandler(pHandler.get());
                    if (round % 4 == 0)
                    {
                        failAnAssertion();
                        EXPECT_GE(*pFlag, 1);
                    }
                    gtUnRegisterAssertionFailureHandler(pHandler.get());
                    const int last = *pFlag;
                    std::this_thread::yield();
                    EXPECT_EQ(*pFlag, last);
                    pFlag.reset();
                    pHandler.reset();
                }
            });
    }
    for (std::thread& thread : registering)
    {
        thread.join();
    }
    mustEnd = true;
    for (std::thread& thread : failing)
    {
        thread.join();
    }
    EXPECT_GE(permanent.calls, failures);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
}

// The thread sanitizer sees an amount that is read without the lock.
TEST(Registry, AmountIsReadWhileOthersRegister)
{
    std::atomic<bool> mustEnd = false;
    std::thread registering(
        [&]()
        {
            while (!mustEnd)
            {
                Handler first;
                Handler second;
                gtRegisterAssertionFailureHandler(&first);
                gtRegisterAssertionFailureHandler(&second);
                gtUnRegisterAssertionFailureHandler(&first);
            }
        });
    std::vector<int> times(4);
    while (times[0] == 0 || times[1] == 0)
    {
        const int amount = gtAmountOfRegisteredAssertionFailureHandlers();
        ++times[static_cast<std::size_t>(amount >= 0 && amount <= 2 ? amount : 3)];
    }
    mustEnd = true;
    registering.join();
    EXPECT_EQ(times[3], 0);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
}

// Standard error is a pipe that holds less than a line, so that every thread has to wait in the middle of each of its
// lines, and the others might write there.
TEST(Registry, LinesOfSeveralThreadsStayApart)
{
    constexpr std::size_t length = 200000;
    const std::string begin = "c:1: f: ";
    int ends[2] = {-1, -1};
    ASSERT_EQ(::pipe(ends), 0);
    ASSERT_EQ(std::fflush(stderr), 0);
    const int keptStderr = ::dup(STDERR_FILENO);
    ASSERT_EQ(::dup2(ends[1], STDERR_FILENO), STDERR_FILENO);
    ::close(ends[1]);

    std::vector<std::thread> threads;
    threads.reserve(4);
    for (const char letter : {'k', 'l', 'm', 'n'})
    {
        threads.emplace_back(
            [letter]()
            {
                const std::string message(length, letter);
                for (int round = 0; round < 5; ++round)
                {
                    gtTriggerAssertonFailureHandler("f", "c", 1, message.c_str());
                }
            });
    }
    std::string text;
    std::vector<char> piece(65536);
    while (text.size() < 4 * 5 * (begin.size() + length + 1))
    {
        const ssize_t amount = ::read(ends[0], piece.data(), piece.size());
        ASSERT_GT(amount, 0);
        text.append(piece.data(), static_cast<std::size_t>(amount));
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    ASSERT_EQ(::dup2(keptStderr, STDERR_FILENO), STDERR_FILENO);
    ::close(keptStderr);
    ::close(ends[0]);

    int wholeLines = 0;
    for (std::size_t i = 0; i < text.size(); i += begin.size() + length + 1)
    {
        const std::string line = text.substr(i, begin.size() + length + 1);
        wholeLines += line == begin + std::string(length, line[begin.size()]) + "\n" ? 1 : 0;
    }
    EXPECT_EQ(wholeLines, 20);
}

// Made before the registry is first used, and so destroyed after anything that the registry might have at exit.
class LastToGo
{
public:
    LastToGo() = default;
    LastToGo(const LastToGo&) = delete;
    LastToGo& operator=(const LastToGo&) = delete;
    ~LastToGo()
    {
        if (pHandler != nullptr)
        {
            failAnAssertion();
            gtUnRegisterAssertionFailureHandler(pHandler);
            failAnAssertion();
            gtRegisterAssertionFailureHandler(pHandler);
            static_cast<void>(std::fprintf(stderr, "%d calls, %d registered", static_cast<int>(pHandler->calls),
                                           gtAmountOfRegisteredAssertionFailureHandlers()));
        }
    }

    Handler* pHandler = nullptr;
};

LastToGo lastToGo;

// Uses the registry before main.
struct FirstToCome
{
    FirstToCome()
    {
        Handler handler;
        gtRegisterAssertionFailureHandler(&handler);
        amount = gtAmountOfRegisteredAssertionFailureHandlers();
        failAnAssertion();
        calls = handler.calls;
    }

    int amount = 0;
    int calls = 0;
};

const FirstToCome firstToCome;

TEST(Registry, WorksBeforeMain)
{
    EXPECT_EQ(firstToCome.amount, 1);
    EXPECT_EQ(firstToCome.calls, 1);
}

TEST(RegistryDeathTest, WorksWhileStaticObjectsAreDestroyed)
{
    EXPECT_EXIT(
        {
            // Never deleted: who would do it?
            static Handler* const pHandler = new Handler;
            gtRegisterAssertionFailureHandler(pHandler);
            lastToGo.pHandler = pHandler;
            std::exit(5);
        },
        ExitedWithCode(5), "^file.cpp:12: function: Assertion failure \\(x\\)\n1 calls, 1 registered");
}

TEST(RegistryDeathTest, HandlerMayEndTheProcess)
{
    EXPECT_EXIT(
        {
            static Handler* const pHandler = new Handler([](Handler&) { std::exit(6); });
            gtRegisterAssertionFailureHandler(pHandler);
            static const struct AtExit
            {
                ~AtExit()
                {
                    gtUnRegisterAssertionFailureHandler(pHandler);
                    failAnAssertion();
                }
            } atExit;
            failAnAssertion();
        },
        ExitedWithCode(6), "^file.cpp:12: function: Assertion failure \\(x\\)\n$");
}
}  // namespace
