// SPDX-License-Identifier: Apache-2.0
// What the module asks of the run-time library, counted and steered. The linker sends calls of calloc, free, rand,
// srand and time through here.
#ifndef COUNTERSIGN_TESTS_WATCHING_H
#define COUNTERSIGN_TESTS_WATCHING_H

#include <cstddef>
#include <deque>
#include <vector>

namespace watching
{

// Allocations made and released while it lives, in this thread.
class Memory
{
public:
    struct Block
    {
        size_t size;
        bool wasZeroWhenFreed;
        bool isFreed;
    };

    // The call of calloc with this number, counted from 0, fails.
    static constexpr long never = -1;
    explicit Memory(long failingCall = never);
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;
    ~Memory();

    std::vector<Block> blocks() const;
};

// Answers for rand and time, and how they were used. Without answers left, the real functions answer.
class Generator
{
public:
    explicit Generator(std::deque<int> answers = {}, long time = 0);
    Generator(const Generator&) = delete;
    Generator& operator=(const Generator&) = delete;
    ~Generator();

    size_t callsOfRand() const;
    std::vector<unsigned int> seeds() const;
    void tellTime(long time);
};

}  // namespace watching

#endif
