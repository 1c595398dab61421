// SPDX-License-Identifier: Apache-2.0
#include "watching.h"

#include <array>
#include <cerrno>
#include <ctime>

// The names are the linker's. NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C"
{
    void* __real_calloc(size_t count, size_t size);
    void __real_free(void* pMemory);
    int __real_rand(void);
    void __real_srand(unsigned int seed);
    time_t __real_time(time_t* pTime);

    void* __wrap_calloc(size_t count, size_t size);
    void __wrap_free(void* pMemory);
    int __wrap_rand(void);
    void __wrap_srand(unsigned int seed);
    time_t __wrap_time(time_t* pTime);
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace
{

// No allocation may happen in here while it watches, hence the fixed room.
struct MemoryRecord
{
    bool isOn = false;
    long failingCall = -1;
    size_t count = 0;
    std::array<void*, 4096> pointers{};
    std::array<watching::Memory::Block, 4096> blocks{};
};

struct GeneratorRecord
{
    bool isOn = false;
    std::deque<int> answers;
    long time = 0;
    size_t callsOfRand = 0;
    std::vector<unsigned int> seeds;
};

thread_local MemoryRecord memory;
GeneratorRecord generator;

}  // namespace

void* __wrap_calloc(size_t count, size_t size)
{
    if (!memory.isOn)
    {
        return __real_calloc(count, size);
    }
    if (memory.failingCall == static_cast<long>(memory.count))
    {
        errno = ENOMEM;
        return nullptr;
    }
    void* pMemory = __real_calloc(count, size);
    if (memory.count < memory.blocks.size())
    {
        memory.pointers[memory.count] = pMemory;
        memory.blocks[memory.count] = {count * size, false, false};
        ++memory.count;
    }
    return pMemory;
}

void __wrap_free(void* pMemory)
{
    for (size_t i = 0; memory.isOn && i < memory.count; ++i)
    {
        if (memory.pointers[i] == pMemory && !memory.blocks[i].isFreed)
        {
            bool isZero = true;
            const auto* pOctets = static_cast<const unsigned char*>(pMemory);
            for (size_t k = 0; k < memory.blocks[i].size; ++k)
            {
                isZero = isZero && pOctets[k] == 0;
            }
            memory.blocks[i].isFreed = true;
            memory.blocks[i].wasZeroWhenFreed = isZero;
        }
    }
    __real_free(pMemory);
}

int __wrap_rand(void)
{
    if (!generator.isOn)
    {
        return __real_rand();
    }
    ++generator.callsOfRand;
    if (generator.answers.empty())
    {
        return __real_rand();
    }
    const int answer = generator.answers.front();
    generator.answers.pop_front();
    return answer;
}

void __wrap_srand(unsigned int seed)
{
    if (generator.isOn)
    {
        generator.seeds.push_back(seed);
    }
    __real_srand(seed);
}

time_t __wrap_time(time_t* pTime)
{
    return generator.isOn && generator.time != 0 ? generator.time : __real_time(pTime);
}

namespace watching
{

Memory::Memory(long failingCall)
{
    memory.count = 0;
    memory.failingCall = failingCall;
    memory.isOn = true;
}

Memory::~Memory()
{
    memory.isOn = false;
}

std::vector<Memory::Block> Memory::blocks() const
{
    std::vector<Block> result(memory.blocks.begin(), memory.blocks.begin() + static_cast<std::ptrdiff_t>(memory.count));
    return result;
}

Generator::Generator(std::deque<int> answers, long time)
{
    generator = GeneratorRecord();
    generator.answers = std::move(answers);
    generator.time = time;
    generator.isOn = true;
}

Generator::~Generator()
{
    generator = GeneratorRecord();
}

size_t Generator::callsOfRand() const
{
    return generator.callsOfRand;
}

std::vector<unsigned int> Generator::seeds() const
{
    return generator.seeds;
}

void Generator::tellTime(long time)
{
    generator.time = time;
}

}  // namespace watching
