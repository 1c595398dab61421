// SPDX-License-Identifier: Apache-2.0
// Several threads at once on shared operands.
#include "Digits.h"

#include <array>
#include <thread>

namespace
{

constexpr uint32_t n = 16;
constexpr int threadCount = 4;
constexpr int rounds = 20;

// One thread's share: everything reads the same operands, everything writes to arrays of its own.
std::string compute(const Digits& x, const Digits& e, const Digits& m)
{
    std::array<mpDigit, 2 * n> wide{};
    std::array<mpDigit, n> w{};
    std::array<mpDigit, n> q{};
    std::array<mpDigit, n> ownModulus{};
    std::string result;
    const auto note = [&result, &w]
    {
        std::array<char, 400> text{};
        mpConvToHex(w.data(), n, text.data(), text.size());
        result += text.data();
        result += ' ';
        mpConvToDecimal(w.data(), n, text.data(), text.size());
        mpConvFromDecimal(w.data(), n, text.data());
        result += text.data();
        result += '\n';
    };
    mpModExp(w.data(), x, e, m, n);
    note();
    mpModMult(w.data(), x, x, m, n);
    note();
    mpModInv(w.data(), x, m, n);
    note();
    mpGcd(w.data(), x, m, n);
    note();
    mpSqrt(w.data(), x, n);
    note();
    mpSquare(wide.data(), x, n);
    mpSetEqual(w.data(), wide.data() + n, n);
    note();
    mpMultiply(wide.data(), x, m, n);
    mpSetEqual(w.data(), wide.data() + n, n);
    note();
    // These write to their divisor, so each thread has its own.
    mpSetEqual(ownModulus.data(), m, n);
    mpDivide(q.data(), w.data(), x, n, ownModulus.data(), n);
    note();
    mpModulo(w.data(), x, n, ownModulus.data(), n);
    note();
    result += std::to_string(mpShortMod(x, 1000003, n));
    return result;
}

TEST(Threads, ComputeAtOnceWithSharedOperands)
{
    Digits x(n);
    Digits e(n);
    Digits m(n);
    for (mpDigit i = 0; i < n; ++i)
    {
        x[i] = 0x9E3779B9U * (i + 1);
        e[i] = i < 2 ? 0xF0F0F0F1U : 0;
        m[i] = 0x7F4A7C15U * (i + 3);
    }
    m[0] |= 1;
    const std::string expected = compute(x, e, m);

    std::array<std::string, threadCount> results;
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (std::string& result : results)
    {
        threads.emplace_back(
            [&]
            {
                result = compute(x, e, m);
                for (int i = 1; i < rounds && result == expected; ++i)
                {
                    result = compute(x, e, m);
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    for (const std::string& result : results)
    {
        EXPECT_EQ(result, expected);
    }
}

}  // namespace
