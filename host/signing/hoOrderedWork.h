// SPDX-License-Identifier: Apache-2.0
// Numbered pieces of work on several threads, taken in the order of their numbers.
//
// Pieces are begun in order, each once and on one thread. No piece is begun that is as far behind the first one not
// taken as is said below, so that the results that wait for their turn stay few.
//
// All functions but first() are for the thread that made the object. The threads inside take no signals: handlers run
// on the program's own threads.
#ifndef COUNTERSIGN_HO_ORDERED_WORK_H
#define COUNTERSIGN_HO_ORDERED_WORK_H

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

class hoOrderedWork
{
public:
    // perform: what a piece is, by its number from 0 on; called on several threads at once, may not throw.
    // threads: at most so many, and no more than there are pieces; with 0 waitForFirst performs the pieces itself.
    // mostAhead: from 1 on; the piece that is so far behind the first one not taken is not begun.
    // onEnd: called once, by the last of the threads, when no piece will be begun any more; never without threads.
    // Throws std::bad_alloc, and std::system_error where the system gives not even one thread.
    hoOrderedWork(std::size_t amount, unsigned int threads, std::size_t mostAhead,
                  std::function<void(std::size_t)> perform, std::function<void()> onEnd = nullptr);
    // Cancels, and waits for the pieces that have been begun.
    ~hoOrderedWork();
    hoOrderedWork(const hoOrderedWork&) = delete;
    hoOrderedWork& operator=(const hoOrderedWork&) = delete;

    // As many as this process may use, at least 1.
    static unsigned int amountOfProcessors();

    // No piece is begun from now on. Those that have been begun come to their end.
    void cancel();

    // Waits until the first piece that was not taken has been performed. False when it never will be, or all are taken.
    bool waitForFirst();
    // Takes it: the next one is the first from now on.
    void takeFirst();
    // The number of the first that was not taken. Safe from any thread.
    std::size_t first() const;

private:
    void run();
    bool beginNext(std::size_t& piece);

    const std::size_t _amount;
    const std::size_t _mostAhead;
    const std::function<void(std::size_t)> _perform;
    const std::function<void()> _onEnd;

    mutable std::mutex _mutex;  // guards what follows
    std::condition_variable _change;
    std::vector<bool> _isPerformed;
    std::size_t _next = 0;   // to begin
    std::size_t _first = 0;  // not taken
    bool _isCancelled = false;
    std::size_t _threadsAtWork = 0;

    std::vector<std::thread> _threads;  // the last member: they use the others
};

#endif
