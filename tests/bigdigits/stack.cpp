// SPDX-License-Identifier: Apache-2.0
// What modular arithmetic leaves on the stack: it runs in a thread whose stack is this test's own memory, which is
// searched for secrets afterwards.
#include "Digits.h"
#include "RandomNumbers.h"

#include <pthread.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>

namespace
{

constexpr size_t stackSize = size_t{1} << 18;
constexpr unsigned char paint = 0xC6;

// Memory for a stack, painted.
class PaintedStack
{
public:
    PaintedStack()
        : _pMemory(static_cast<unsigned char*>(
              mmap(nullptr, stackSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)))
    {
        std::memset(_pMemory, paint, stackSize);
    }
    PaintedStack(const PaintedStack&) = delete;
    PaintedStack& operator=(const PaintedStack&) = delete;
    ~PaintedStack() { munmap(_pMemory, stackSize); }

    // Runs the work on it.
    void run(const std::function<void()>& work)
    {
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        ASSERT_EQ(pthread_attr_setstack(&attributes, _pMemory, stackSize), 0);
        pthread_t thread{};
        ASSERT_EQ(pthread_create(&thread, &attributes, call, const_cast<std::function<void()>*>(&work)), 0);
        ASSERT_EQ(pthread_join(thread, nullptr), 0);
        pthread_attr_destroy(&attributes);
        _pUsed = std::find_if(_pMemory, _pMemory + stackSize, [](unsigned char octet) { return octet != paint; });
    }
    bool isUsed() const { return _pUsed < end(); }
    bool holds(const void* pSecret, size_t size) const
    {
        return memmem(_pUsed, static_cast<size_t>(end() - _pUsed), pSecret, size) != nullptr;
    }

private:
    static void* call(void* pWork)
    {
        (*static_cast<std::function<void()>*>(pWork))();
        return nullptr;
    }

    const unsigned char* end() const { return _pMemory + stackSize; }

    unsigned char* _pMemory;
    // A stack grows downwards.
    const unsigned char* _pUsed = nullptr;
};

// The number, cut into limbs of so many bits, each in an integer of the type.
template <class Limb>
std::vector<Limb> limbs(const Natural& number, size_t bits)
{
    std::vector<Limb> result;
    for (Natural rest = number; !rest.isZero(); rest = rest >> bits)
    {
        const std::vector<mpDigit> low = rest.lowBits(bits).digits(2);
        result.push_back(static_cast<Limb>(low[0] | uint64_t{low[1]} << 32));
    }
    return result;
}

// What is found of the number in the forms that the module computes with. Sixteen octets in a row are no accident.
template <class Limb>
void expectNone(const PaintedStack& stack, const Natural& number, size_t bits, const char* what)
{
    const std::vector<Limb> all = limbs<Limb>(number, bits);
    const size_t inARow = std::max<size_t>(2, 16 / sizeof(Limb));
    for (size_t i = 0; i + inARow <= all.size(); i += inARow)
    {
        ASSERT_FALSE(stack.holds(&all[i], inARow * sizeof(Limb)))
            << what << ": limbs of " << bits << " bits from number " << i << " on";
    }
}

void expectNoTraces(const PaintedStack& stack, const Natural& number, const char* what)
{
    EXPECT_TRUE(stack.isUsed());
    expectNone<mpDigit>(stack, number, 32, what);
    expectNone<uint64_t>(stack, number, 52, what);
    expectNone<uint16_t>(stack, number, 13, what);
    expectNone<uint64_t>(stack, number, 32, what);
}

TEST(Stack, IsSearchedWithSuccess)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    const Digits secret(random.uniformNumber(20));
    PaintedStack stack;
    stack.run(
        [&secret]
        {
            // Many times: the end of the thread takes the upper part of the stack for itself.
            volatile uint64_t room[1000];
            for (size_t i = 0; i < 1000; ++i)
            {
                room[i] = secret[i % 20];
            }
            (void)room[0];
        });
    EXPECT_TRUE(stack.isUsed());
    const std::vector<uint64_t> all = limbs<uint64_t>(secret.value(), 32);
    EXPECT_TRUE(stack.holds(all.data(), 2 * sizeof(uint64_t)));
}

class StackAfter : public testing::TestWithParam<uint32_t>
{
protected:
    StackAfter()
        : n(GetParam()),
          x(random.uniformNumber(n)),
          m(random.uniformNumber(n)),
          result(n),
          trace(__FILE__, __LINE__, random.trace())
    {
        m[0] |= 1;
        m[n - 1] |= 0x80000000U;
        x[n - 1] &= 0x7FFFFFFFU;
    }

    void SetUp() override
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "sanitizers lay out the stack in their own way and keep copies";
#endif
    }

    RandomNumbers random;
    uint32_t n;
    Digits x;
    Digits m;
    Digits result;
    testing::ScopedTrace trace;
};

TEST_P(StackAfter, APowerHoldsNothingOfIt)
{
    Digits e(n);
    mpSetDigit(e, 0xD, n);
    PaintedStack stack;
    stack.run([this, &e] { mpModExp(result, x, e, m, n); });
    expectNoTraces(stack, result.value(), "the result");
    expectNoTraces(stack, x.value(), "the base");
    // What is squared last, its square, and the product that is reduced last.
    const Natural last = x.value().powerModulo(Natural(6), m.value());
    expectNoTraces(stack, last, "what is squared last");
    expectNoTraces(stack, last * last, "the last square");
    expectNoTraces(stack, last * last % m.value(), "the last remainder but one");
    expectNoTraces(stack, last * last % m.value() * x.value(), "the last product");
    expectNoTraces(stack, last * last % m.value() * x.value() / m.value(), "the last quotient");
}

TEST_P(StackAfter, AProductHoldsNothingOfIt)
{
    const Digits y(random.uniformNumber(n));
    PaintedStack stack;
    stack.run([this, &y] { mpModMult(result, x, y, m, n); });
    expectNoTraces(stack, result.value(), "the result");
    expectNoTraces(stack, x.value(), "a factor");
    expectNoTraces(stack, y.value(), "the other factor");
    expectNoTraces(stack, x.value() * y.value(), "the product");
    expectNoTraces(stack, x.value() * y.value() / m.value(), "the quotient");
}

TEST_P(StackAfter, ARemainderHoldsNothingOfIt)
{
    const Digits u(random.uniformNumber(size_t{2} * n));
    const Natural divisor = m.value();
    PaintedStack stack;
    stack.run([this, &u] { mpModulo(result, u, 2 * n, m, n); });
    expectNoTraces(stack, result.value(), "the result");
    expectNoTraces(stack, u.value(), "the dividend");
    expectNoTraces(stack, divisor, "the divisor");
    expectNoTraces(stack, u.value() / divisor, "the quotient");
}

TEST_P(StackAfter, AnInverseHoldsNothingOfIt)
{
    PaintedStack stack;
    stack.run([this] { mpModInv(result, x, m, n); });
    expectNoTraces(stack, result.value(), "the result");
    expectNoTraces(stack, x.value(), "the number");
    expectNoTraces(stack, m.value(), "the modulus");
}

TEST_P(StackAfter, ADivisorHoldsNothingOfTheNumbers)
{
    PaintedStack stack;
    stack.run([this] { mpGcd(result, x, m, n); });
    expectNoTraces(stack, x.value(), "a number");
    expectNoTraces(stack, m.value(), "the other number");
}

// Texts so long that they are halved.
class StackAfterText : public StackAfter
{
protected:
    // What n digits are cut into: pieces of so many characters, and of eight times as many.
    void expectNoPieces(const PaintedStack& stack, unsigned long characters)
    {
        expectNoTraces(stack, x.value() % Natural::power(10, characters), "the lowest piece");
        expectNoTraces(stack, x.value() / Natural::power(10, 8 * characters), "the upper half");
        expectNoTraces(stack, x.value() % Natural::power(10, 8 * characters), "the lower half");
    }
};

TEST_P(StackAfterText, NothingOfTheNumberIsThere)
{
    std::string text(size_t{10} * n, '#');
    PaintedStack writing;
    writing.run([&] { mpConvToDecimal(x, n, text.data(), static_cast<uint32_t>(text.size())); });
    expectNoPieces(writing, 992);
    PaintedStack reading;
    reading.run([&] { mpConvFromDecimal(result, n, text.c_str()); });
    // The length below makes leaves of that many characters.
    expectNoPieces(reading, 608);
    EXPECT_EQ(result.value(), x.value());
}

INSTANTIATE_TEST_SUITE_P(Lengths, StackAfterText, testing::Values(1000), testing::PrintToStringParamName());

INSTANTIATE_TEST_SUITE_P(Lengths, StackAfter, testing::Values(4, 8, 9, 15, 16, 17, 20, 33, 64, 128, 257),
                         testing::PrintToStringParamName());

}  // namespace
