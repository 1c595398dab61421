// SPDX-License-Identifier: Apache-2.0
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <new>
#include <thread>
#include <vector>

namespace
{
// Registrations are numbered: taking one back and making it again gives it a new number.
struct Registration
{
    gtIAssertionFailureHandler* pHandler;
    std::uint64_t number;
};

// A call of a handler that is running; it lives on the stack of the thread that makes it, in a list of all of them.
struct RunningCall
{
    gtIAssertionFailureHandler* pHandler = nullptr;
    std::uint64_t registrationNumber = 0;
    std::thread::id thread = std::this_thread::get_id();
    bool isThreadWaiting = false;
    RunningCall* pNext = nullptr;
};

struct Registry
{
    std::mutex mutex;  // guards the members below, and is never held while a handler runs
    std::condition_variable runningCallsChanged;
    std::vector<Registration> registrations;
    std::uint64_t lastNumber = 0;
    RunningCall* pRunningCalls = nullptr;

    std::mutex lineMutex;  // keeps the lines of several threads apart
};

// Never destroyed: static objects may fail assertions, and unregister handlers, as long as the process ends.
Registry& registry()
{
    alignas(Registry) static unsigned char memory[sizeof(Registry)];
    static Registry* const pRegistry = new (memory) Registry;
    return *pRegistry;
}

std::vector<Registration>::iterator find(Registry& reg, const gtIAssertionFailureHandler* pHandler)
{
    return std::find_if(reg.registrations.begin(), reg.registrations.end(),
                        [pHandler](const Registration& r) { return r.pHandler == pHandler; });
}

int amountOfCallsOnThread(const Registry& reg, std::thread::id thread)
{
    int amount = 0;
    for (const RunningCall* pCall = reg.pRunningCalls; pCall != nullptr; pCall = pCall->pNext)
    {
        amount += (pCall->thread == thread) ? 1 : 0;
    }
    return amount;
}

void markCallsOnThread(Registry& reg, std::thread::id thread, bool isThreadWaiting)
{
    for (RunningCall* pCall = reg.pRunningCalls; pCall != nullptr; pCall = pCall->pNext)
    {
        if (pCall->thread == thread)
        {
            pCall->isThreadWaiting = isThreadWaiting;
        }
    }
}

// Finds the next handler to call, in the order of registration, and enters the call into the list of running ones.
bool beginNextCall(Registry& reg, RunningCall& call, std::uint64_t afterNumber, std::uint64_t lastNumber)
{
    const std::lock_guard<std::mutex> lock(reg.mutex);
    for (const Registration& registration : reg.registrations)
    {
        if (registration.number > afterNumber && registration.number <= lastNumber)
        {
            call.pHandler = registration.pHandler;
            call.registrationNumber = registration.number;
            call.pNext = reg.pRunningCalls;
            reg.pRunningCalls = &call;
            return true;
        }
    }
    return false;
}

void endCall(Registry& reg, const RunningCall& call)
{
    const std::lock_guard<std::mutex> lock(reg.mutex);
    RunningCall** ppCall = &reg.pRunningCalls;
    while (*ppCall != &call)
    {
        ppCall = &(*ppCall)->pNext;
    }
    *ppCall = call.pNext;
    reg.runningCallsChanged.notify_all();
}

// Standard error through a small buffer, so that a line is one or few writes and needs no memory.
class Line
{
public:
    void add(const char* pText)
    {
        for (const char* p = pText == nullptr ? "(null)" : pText; *p != '\0'; ++p)
        {
            const unsigned char c = static_cast<unsigned char>(*p);
            put((c < ' ' || c == 127) ? ' ' : *p);
        }
    }

    void end()
    {
        put('\n');
        flush();
    }

private:
    void put(char c)
    {
        if (_used == sizeof _buffer)
        {
            flush();
        }
        _buffer[_used] = c;
        ++_used;
    }

    void flush()
    {
        // If standard error is gone there is nobody left to tell.
        static_cast<void>(std::fwrite(_buffer, 1, _used, stderr));
        _used = 0;
    }

    char _buffer[1024];
    std::size_t _used = 0;
};

void writeLine(Registry& reg, const char* functionName, const char* fileName, int lineNumber, const char* message)
{
    char number[sizeof ":-2147483648: "];
    static_cast<void>(std::snprintf(number, sizeof number, ":%d: ", lineNumber));

    const std::lock_guard<std::mutex> lock(reg.lineMutex);
    Line line;
    line.add(fileName);
    line.add(number);
    line.add(functionName);
    line.add(": ");
    line.add(message);
    line.end();
}
}  // namespace

void gtRegisterAssertionFailureHandler(gtIAssertionFailureHandler* pHandler)
{
    Registry& reg = registry();
    const std::lock_guard<std::mutex> lock(reg.mutex);
    if (pHandler != nullptr && find(reg, pHandler) == reg.registrations.end())
    {
        reg.registrations.push_back({pHandler, reg.lastNumber + 1});
        ++reg.lastNumber;
    }
}

void gtUnRegisterAssertionFailureHandler(gtIAssertionFailureHandler* pHandler)
{
    Registry& reg = registry();
    std::unique_lock<std::mutex> lock(reg.mutex);
    const auto registration = find(reg, pHandler);
    if (registration != reg.registrations.end())
    {
        reg.registrations.erase(registration);
    }

    // A handler that somebody else has just unregistered is waited for as well: its calls may still be running. Calls
    // of a later registration are not ours.
    const std::uint64_t lastNumber = reg.lastNumber;
    const std::thread::id thisThread = std::this_thread::get_id();
    const bool isWithinHandler = amountOfCallsOnThread(reg, thisThread) > 0;
    const auto mustWait = [&]()
    {
        for (const RunningCall* pCall = reg.pRunningCalls; pCall != nullptr; pCall = pCall->pNext)
        {
            if (pCall->pHandler == pHandler && pCall->registrationNumber <= lastNumber &&
                !(isWithinHandler && pCall->isThreadWaiting))
            {
                return true;
            }
        }
        return false;
    };

    // This thread's own calls are among those whose thread waits. Of several threads that wait for each other's calls
    // the last to come finds the others waiting and goes on, and the end of its call wakes them.
    markCallsOnThread(reg, thisThread, true);
    while (mustWait())
    {
        reg.runningCallsChanged.wait(lock);
    }
    markCallsOnThread(reg, thisThread, false);
}

void gtTriggerAssertonFailureHandler(const char* functionName, const char* fileName, int lineNumber,
                                     const char* message)
{
    const int errorNumber = errno;
    Registry& reg = registry();
    std::unique_lock<std::mutex> lock(reg.mutex);
    const bool isTooDeep = amountOfCallsOnThread(reg, std::this_thread::get_id()) >= gtDeepestNestedAssertionFailure;
    const std::uint64_t lastNumber = reg.lastNumber;
    lock.unlock();

    bool isHeard = false;
    bool hasThrown = false;
    RunningCall call;
    while (!isTooDeep && beginNextCall(reg, call, call.registrationNumber, lastNumber))
    {
        isHeard = true;
        errno = errorNumber;
        try
        {
            call.pHandler->onAssertionFailure(functionName, fileName, lineNumber, message);
        }
        catch (...)
        {
            hasThrown = true;
        }
        endCall(reg, call);
    }
    if (!isHeard || hasThrown)
    {
        writeLine(reg, functionName, fileName, lineNumber, message);
    }
    errno = errorNumber;
}

int gtAmountOfRegisteredAssertionFailureHandlers()
{
    Registry& reg = registry();
    const std::lock_guard<std::mutex> lock(reg.mutex);
    return static_cast<int>(reg.registrations.size());
}
