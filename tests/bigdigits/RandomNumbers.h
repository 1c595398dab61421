// SPDX-License-Identifier: Apache-2.0
// Random operands that hurt. COUNTERSIGN_TEST_SEED takes a seed that a failure has printed.
#ifndef COUNTERSIGN_TESTS_RANDOM_NUMBERS_H
#define COUNTERSIGN_TESTS_RANDOM_NUMBERS_H

#include "bigdigits.h"

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

class RandomNumbers
{
public:
    RandomNumbers() : _seed(chooseSeed()), _engine(_seed) {}

    // For SCOPED_TRACE.
    std::string trace() const { return "run again with COUNTERSIGN_TEST_SEED=" + std::to_string(_seed); }

    uint32_t below(uint32_t bound) { return static_cast<uint32_t>(_engine() % bound); }
    uint32_t between(uint32_t low, uint32_t high)
    {
        return low + static_cast<uint32_t>(_engine() % (high - low + 1ULL));
    }
    bool oneIn(uint32_t count) { return below(count) == 0; }

    // All digits are possible, those at the ends of the range often.
    mpDigit digit()
    {
        static constexpr mpDigit special[] = {
            0, 1, 2, 0xFFFFU, 0x10000U, 0x7FFFFFFFU, 0x80000000U, 0x80000001U, 0xFFFF0000U, 0xFFFFFFFEU, 0xFFFFFFFFU};
        return oneIn(2) ? special[below(sizeof(special) / sizeof(special[0]))] : uniform();
    }

    // n digits of some pattern, high zeros included.
    std::vector<mpDigit> number(size_t n)
    {
        std::vector<mpDigit> result(n);
        if (n == 0)
        {
            return result;
        }
        const uint32_t pattern = below(10);
        switch (pattern)
        {
        case 0:  // all ones
            result.assign(n, 0xFFFFFFFFU);
            break;
        case 1:  // a single bit
            result[below(static_cast<uint32_t>(n))] = 1U << below(32);
            break;
        case 2:  // long runs of zero bits and of one bits
            for (size_t bit = 0, value = below(2), left = 0; bit < 32 * n; bit++, --left)
            {
                if (left == 0)
                {
                    value = 1 - value;
                    left = between(1, static_cast<uint32_t>(16 * n));
                }
                result[bit / 32] |= static_cast<mpDigit>(value) << bit % 32;
            }
            break;
        case 3:  // a few digits among zeros
            for (uint32_t count = below(4) + 1; count > 0; --count)
            {
                result[below(static_cast<uint32_t>(n))] = digit();
            }
            break;
        case 4:  // small
            result[0] = digit();
            break;
        default:
            for (mpDigit& one : result)
            {
                one = pattern < 7 ? digit() : uniform();
            }
        }
        if (oneIn(4))
        {
            static constexpr mpDigit tops[] = {0x80000000U, 0xFFFFFFFFU, 1, 0x80000001U};
            result[n - 1] = tops[below(4)];
        }
        if (oneIn(4))
        {
            const size_t kept = below(static_cast<uint32_t>(n) + 1);
            std::fill(result.begin() + static_cast<std::ptrdiff_t>(kept), result.end(), 0);
        }
        return result;
    }

    std::vector<mpDigit> uniformNumber(size_t n)
    {
        std::vector<mpDigit> result;
        for (size_t i = 0; i < n; ++i)
        {
            result.push_back(uniform());
        }
        return result;
    }

    mpDigit uniform() { return static_cast<mpDigit>(_engine()); }

private:
    static uint64_t chooseSeed()
    {
        const char* given = std::getenv("COUNTERSIGN_TEST_SEED");
        return given != nullptr ? std::strtoull(given, nullptr, 10) : std::random_device{}();
    }

    uint64_t _seed;
    std::mt19937_64 _engine;
};

// The number of random cases to run: all of them in an optimised build, a part of them where each takes long.
// COUNTERSIGN_TEST_PERCENT overrides that.
inline uint32_t casesToRun(uint32_t all)
{
#if defined(__SANITIZE_THREAD__)
    uint32_t percent = 2;
#elif defined(__SANITIZE_ADDRESS__) || !defined(NDEBUG)
    uint32_t percent = 10;
#else
    uint32_t percent = 100;
#endif
    if (const char* given = std::getenv("COUNTERSIGN_TEST_PERCENT"))
    {
        percent = static_cast<uint32_t>(std::strtoul(given, nullptr, 10));
    }
    const uint64_t cases = uint64_t{all} * percent / 100;
    return cases == 0 ? 1 : static_cast<uint32_t>(cases);
}

#endif
