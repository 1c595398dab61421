// SPDX-License-Identifier: Apache-2.0
// Several threads at once.
#include "Digits.h"
#include "RandomNumbers.h"

#include <array>
#include <functional>
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

// What threads get that call it many times at once, each with its number, is what one gets alone.
void expectTheSameAtOnce(const std::function<std::string(size_t number)>& work)
{
    std::array<std::string, threadCount> expected;
    std::array<std::string, threadCount> results;
    for (size_t number = 0; number < threadCount; ++number)
    {
        expected[number] = work(number);
    }
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (size_t number = 0; number < threadCount; ++number)
    {
        threads.emplace_back(
            [&, number]
            {
                results[number] = work(number);
                for (int i = 1; i < rounds && results[number] == expected[number]; ++i)
                {
                    results[number] = work(number);
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(results, expected);
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
    expectTheSameAtOnce([&](size_t) { return compute(x, e, m); });
}

// What one thread sees of another's numbers would not be the same as its own.
TEST(Threads, ComputeAtOnceWithOperandsOfTheirOwn)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    std::vector<Digits> x;
    std::vector<Digits> e;
    std::vector<Digits> m;
    for (int i = 0; i < threadCount; ++i)
    {
        x.emplace_back(random.uniformNumber(n));
        e.emplace_back(Natural(0xF0F0F0F1U), n);
        m.emplace_back(random.uniformNumber(n));
        m.back()[0] |= 1;
        m.back()[n - 1] |= 0x80000000U;
    }
    expectTheSameAtOnce([&](size_t number) { return compute(x[number], e[number], m[number]); });
}

// Long enough to be halved.
TEST(Threads, WriteAndReadLongTextsAtOnce)
{
    constexpr uint32_t length = 2500;
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    std::vector<Digits> numbers;
    for (int i = 0; i < threadCount; ++i)
    {
        numbers.emplace_back(random.uniformNumber(length));
    }
    expectTheSameAtOnce(
        [&](size_t number)
        {
            std::string text(size_t{10} * length, '#');
            mpConvToDecimal(numbers[number], length, text.data(), static_cast<uint32_t>(text.size()));
            Digits back(length);
            mpConvFromDecimal(back, length, text.c_str());
            return text + (back.vector() == numbers[number].vector() ? "" : " is read as another number");
        });
}

}  // namespace
