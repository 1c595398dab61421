// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoOrderedWork.h"

#include <algorithm>
#include <csignal>
#include <sched.h>
#include <utility>

namespace
{

// Threads that are started meanwhile take no signals.
class SignalsBlocked
{
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &_before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t _before = {};
};

}  // namespace

hoOrderedWork::hoOrderedWork(std::size_t amount, unsigned int threads, std::size_t mostAhead,
                             std::function<void(std::size_t)> perform, std::function<void()> onEnd)
    : _amount(amount),
      _mostAhead(mostAhead),
      _perform(std::move(perform)),
      _onEnd(std::move(onEnd)),
      _isPerformed(amount, false)
{
    // One thread is started for no pieces, too: it tells the end.
    const std::size_t wanted = std::min<std::size_t>(threads, std::max<std::size_t>(amount, 1));
    _threads.reserve(wanted);
    const SignalsBlocked blocked;
    // Nobody finds the work done before all threads have been started.
    const std::lock_guard<std::mutex> lock(_mutex);
    try
    {
        while (_threads.size() < wanted)
        {
            _threads.emplace_back(&hoOrderedWork::run, this);
            ++_threadsAtWork;
        }
    }
    catch (...)
    {
        // No thread or no memory for one: fewer do as well.
        if (_threads.empty())
        {
            throw;
        }
    }
}

hoOrderedWork::~hoOrderedWork()
{
    cancel();
    for (std::thread& thread : _threads)
    {
        thread.join();
    }
}

unsigned int hoOrderedWork::amountOfProcessors()
{
#if defined(__linux__)
    // The standard library counts those that the process may not use, too.
    cpu_set_t processors;
    if (::sched_getaffinity(0, sizeof(processors), &processors) == 0)
    {
        return static_cast<unsigned int>(CPU_COUNT(&processors));
    }
#endif
    return std::max(std::thread::hardware_concurrency(), 1U);
}

void hoOrderedWork::cancel()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    _isCancelled = true;
    _change.notify_all();
}

bool hoOrderedWork::waitForFirst()
{
    std::unique_lock<std::mutex> lock(_mutex);
    if (_threads.empty() && _next == _first && _next < _amount && !_isCancelled)
    {
        const std::size_t piece = _next++;
        lock.unlock();
        _perform(piece);
        lock.lock();
        _isPerformed[piece] = true;
    }
    const auto isPerformed = [this] { return _first < _amount && _isPerformed[_first]; };
    const auto willNeverBe = [this] { return _first >= _amount || (_isCancelled && _first >= _next); };
    _change.wait(lock, [&] { return isPerformed() || willNeverBe(); });
    return isPerformed();
}

void hoOrderedWork::takeFirst()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    ++_first;
    _change.notify_all();
}

std::size_t hoOrderedWork::first() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return _first;
}

bool hoOrderedWork::beginNext(std::size_t& piece)
{
    std::unique_lock<std::mutex> lock(_mutex);
    _change.wait(lock, [this] { return _isCancelled || _next >= _amount || _next - _first < _mostAhead; });
    if (_isCancelled || _next >= _amount)
    {
        return false;
    }
    piece = _next++;
    return true;
}

void hoOrderedWork::run()
{
    for (std::size_t piece = 0; beginNext(piece);)
    {
        _perform(piece);
        const std::lock_guard<std::mutex> lock(_mutex);
        _isPerformed[piece] = true;
        _change.notify_all();
    }
    bool isLast = false;
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        isLast = --_threadsAtWork == 0;
    }
    if (isLast && _onEnd)
    {
        _onEnd();
    }
}
