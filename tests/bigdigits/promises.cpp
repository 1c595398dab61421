// SPDX-License-Identifier: Apache-2.0
// What the header promises beyond results: which memory is written and wiped, how rounds are counted, how the process
// is left.
#include "Digits.h"
#include "RandomNumbers.h"
#include "watching.h"

#include "tests/support/instructions.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

using watching::Generator;
using watching::Memory;

// ---- Rounds and trial division

TEST(Rounds, AreAsManyAsAreAskedFor)
{
    struct Prime
    {
        size_t exponent;
        uint32_t n;
    };
    // Mersenne primes of one digit and of many.
    for (const Prime& one : {Prime{31, 1}, Prime{61, 2}, Prime{521, 17}, Prime{1279, 40}})
    {
        const Digits w(Natural::powerOfTwo(one.exponent) - Natural(1), one.n);
        for (const uint32_t rounds : {1U, 2U, 11U, 51U, 101U})
        {
            // Each of these words is a witness at once.
            std::deque<int> answers;
            for (uint32_t i = 0; i < rounds; ++i)
            {
                answers.insert(answers.end(), {static_cast<int>(i), 1, 0, 0});
            }
            const Generator generator(answers);
            EXPECT_EQ(mpRabinMiller(w, one.n, rounds), 1);
            EXPECT_EQ(generator.callsOfRand(), 4U * rounds) << "2^" << one.exponent << " - 1";
            EXPECT_EQ(mpIsPrime(w, one.n, rounds), 1);
            EXPECT_GE(generator.callsOfRand(), 8U * rounds) << "2^" << one.exponent << " - 1";
        }
    }
}

TEST(TrialDivision, KnowsAllPrimesFrom3To997)
{
    // Not divisible by any of them itself.
    const Natural large = Natural::powerOfTwo(127) - Natural(1);
    unsigned primes = 0;
    for (unsigned long p = 3; p < 1000; p += 2)
    {
        if (!Natural(p).isPrime())
        {
            continue;
        }
        ++primes;
        const Digits w(large * Natural(p), 5);
        // Without rounds, whatever trial division lets pass is a prime.
        EXPECT_EQ(mpIsPrime(w, 5, 0), 0) << p;
        EXPECT_EQ(mpIsPrime(Digits(Natural(p), 1), 1, 0), 1) << p;
    }
    EXPECT_EQ(primes, 167U);
    EXPECT_EQ(mpIsPrime(Digits(large, 5), 5, 0), 1);
    // The first prime that it does not know.
    EXPECT_EQ(mpIsPrime(Digits(large * Natural(1009), 5), 5, 0), 1);
}

// ---- Seeding

TEST(Seeding, OfThePrimalityTestIsIndependentOfThatOfSimpleRand)
{
    spSimpleRand(1, 9);
    const Digits w{1009};
    Generator generator({}, 1111);
    using Seeds = std::vector<unsigned int>;
    for (unsigned call = 1; call < 4; ++call)
    {
        generator.tellTime(call);
        EXPECT_EQ(mpRabinMiller(w, 1, call % 2), 1);
        ASSERT_EQ(generator.seeds().size(), call) << "every call seeds, also without rounds";
        EXPECT_EQ(generator.seeds().back(), call);
        spSimpleRand(1, 9);
        EXPECT_EQ(generator.seeds().size(), call) << "seeds no more once it has";
    }
    EXPECT_EQ(mpIsPrime(w, 1, 0), 1);
    EXPECT_EQ(generator.seeds(), (Seeds{1, 2, 3, 3}));
    spRandBetween(1, 9);
    EXPECT_EQ(generator.seeds().size(), 4U);
}

// ---- Wiping on every way out

void expectAllWiped(const Memory& memory, size_t leastBlocks)
{
    EXPECT_GE(memory.blocks().size(), leastBlocks);
    for (const Memory::Block& block : memory.blocks())
    {
        EXPECT_TRUE(block.isFreed);
        EXPECT_TRUE(block.wasZeroWhenFreed) << "of " << block.size << " bytes";
    }
}

TEST(Wiping, OfThePrimalityTestWhateverItFinds)
{
    const Digits prime(Natural::powerOfTwo(127) - Natural(1), 4);
    {
        const Memory memory;
        EXPECT_EQ(mpRabinMiller(prime, 4, 5), 1);
        expectAllWiped(memory, 6);
    }
    const Digits composite(Natural::powerOfTwo(101) - Natural(1), 4);
    {
        const Memory memory;
        EXPECT_EQ(mpRabinMiller(composite, 4, 5), 0);
        expectAllWiped(memory, 6);
    }
    const Memory memory;
    EXPECT_EQ(mpRabinMiller(composite, 4, 0), 1);
    expectAllWiped(memory, 6);
    const Memory ofTrialDivision;
    EXPECT_EQ(mpIsPrime(Digits(Natural::powerOfTwo(100) - Natural(1), 4), 4, 5), 0);
    expectAllWiped(ofTrialDivision, 1);
}

TEST(Wiping, OfTextThatIsLongerThanItsArray)
{
    const std::string text(300, '7');
    Digits a(3);
    const Memory memory;
    mpConvFromDecimal(a, 3, text.c_str());
    mpConvFromHex(a, 3, text.c_str());
    Digits none(0);
    mpConvFromDecimal(none, 0, text.c_str());
    mpConvFromHex(none, 0, text.c_str());
    expectAllWiped(memory, 4);
}

TEST(Wiping, OfTextThatIsCut)
{
    const Digits a{0x12345678U, 0x9ABCDEF0U, 0xFFFFFFFFU};
    char room[5];
    const Memory memory;
    mpConvToDecimal(a, 3, room, 5);
    mpConvToHex(a, 3, room, 5);
    mpConvToDecimal(a, 3, nullptr, 0);
    mpConvToHex(a, 3, nullptr, 0);
    expectAllWiped(memory, 8);
}

TEST(Wiping, OfQuotientsOfEveryKind)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (const uint32_t n : {1U, 2U, 5U, 20U, 70U})
    {
        const Digits x(random.uniformNumber(n));
        Digits e(n);
        for (const uint32_t size : {0U, 1U, 2U, n / 2, n})
        {
            SCOPED_TRACE(std::to_string(n) + " digits, modulus of " + std::to_string(size));
            Digits m(n);
            mpSetZero(m, n);
            for (uint32_t i = 0; i < size && i < n; ++i)
            {
                m[i] = random.uniform() | 1;
            }
            Digits y(n);
            const Memory memory;
            // The last quotient is as long as a number, or twice as long.
            for (const mpDigit exponent : {13U, 2U})
            {
                mpSetDigit(e, exponent, n);
                mpModExp(y, x, e, m, n);
            }
            mpModMult(y, x, x, m, n);
            mpModInv(y, x, m, n);
            mpGcd(y, x, m, n);
            // A divisor that is longer than the dividend, and one that is shorter.
            mpModulo(y, x, n / 2, m, n);
            if (size > 0)
            {
                mpModulo(y, x, n, m, std::min(size, n));
            }
            expectAllWiped(memory, 20);
        }
    }
}

// ---- The modulus is only read

// An array that cannot be written to.
class ReadOnlyDigits
{
public:
    explicit ReadOnlyDigits(const std::vector<mpDigit>& values)
        : _pMemory(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))
    {
        std::memcpy(_pMemory, values.data(), values.size() * sizeof(mpDigit));
        mprotect(_pMemory, size, PROT_READ);
    }
    ReadOnlyDigits(const ReadOnlyDigits&) = delete;
    ReadOnlyDigits& operator=(const ReadOnlyDigits&) = delete;
    ~ReadOnlyDigits() { munmap(_pMemory, size); }
    operator const mpDigit*() const { return static_cast<const mpDigit*>(_pMemory); }

private:
    static constexpr size_t size = 4096;
    void* _pMemory;
};

TEST(Operands, OfModularArithmeticMayBeInMemoryThatCannotBeWritten)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (const uint32_t n : {1U, 2U, 5U, 16U, 17U, 40U, 100U})
    {
        for (const uint32_t shift : {0U, 1U, 31U})
        {
            std::vector<mpDigit> modulus = random.uniformNumber(n);
            modulus[0] |= 1;
            modulus[n - 1] = (modulus[n - 1] | 0x80000000U) >> shift;
            const ReadOnlyDigits m(modulus);
            const ReadOnlyDigits x(random.uniformNumber(n));
            std::vector<mpDigit> exponent(n);
            exponent[0] = 5;
            const ReadOnlyDigits e(exponent);
            const Natural value(x, n);
            Digits y(n);
            mpModExp(y, x, e, m, n);
            EXPECT_EQ(y.value(), value.powerModulo(Natural(5), Natural(modulus)));
            mpModMult(y, x, e, m, n);
            EXPECT_EQ(y.value(), value * Natural(5) % Natural(modulus));
            mpModMult(y, m, m, m, n);
            EXPECT_TRUE(y.value().isZero());
            mpModInv(y, x, m, n);
            mpGcd(y, x, m, n);
            EXPECT_EQ(y.value(), value.gcd(Natural(modulus)));
            mpSqrt(y, x, n);
            EXPECT_EQ(y.value(), value.squareRoot());
            mpRabinMiller(m, n, 1);
        }
    }
}

// ---- The end of the process, and printing

void sayGoodbye()
{
    (void)fputs("exit function\n", stderr);
}

TEST(FailDeathTest, LeavesThroughExit)
{
    char name[] = "/tmp/countersign-test-XXXXXX";
    const int descriptor = mkstemp(name);
    ASSERT_GE(descriptor, 0);
    close(descriptor);
    EXPECT_EXIT(
        {
            (void)atexit(sayGoodbye);
            FILE* pFile = fopen(name, "w");
            (void)fputs("buffered", pFile);
            errno = ENOMEM;
            mpFail("the end");
        },
        testing::ExitedWithCode(1), "^the end: Cannot allocate memory\nexit function\n$");
    FILE* pFile = fopen(name, "r");
    char text[20] = "";
    EXPECT_NE(fgets(text, sizeof(text), pFile), nullptr);
    EXPECT_STREQ(text, "buffered");
    (void)fclose(pFile);
    unlink(name);
}

TEST(Printing, OfOneLineIsOneLineHoweverLong)
{
    const Digits a(std::vector<mpDigit>(1000, 0xABCDU));
    testing::internal::CaptureStdout();
    mpPrint(a, 1000);
    mpPrintTrim(a, 1000);
    const std::string text = testing::internal::GetCapturedStdout();
    EXPECT_EQ(text.size(), 18000U);
    EXPECT_EQ(text.find('\n'), std::string::npos);
}

// ---- How a power is computed

#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

TEST(ModExp, SquaresByTheFunctionThatIsMadeForIt)
{
    // A longer power keeps its value in another form than digits, and squares it in that.
    constexpr uint32_t n = 20;
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    const Digits x(random.uniformNumber(n));
    Digits m(random.uniformNumber(n));
    m[n - 1] |= 0x80000000U;
    Digits e(n);
    Digits y(n);
    Digits wide(size_t{2} * n);
    // Three squarings more, and nothing else.
    mpSetDigit(e, 2, n);
    const long few = tsInstructionsOf([&] { mpModExp(y, x, e, m, n); });
    if (few == 0)
    {
        GTEST_SKIP() << "a process may not be followed here";
    }
    mpSetDigit(e, 16, n);
    const long many = tsInstructionsOf([&] { mpModExp(y, x, e, m, n); });
    const long square = tsInstructionsOf([&] { mpSquare(wide, x, n); });
    const long product = tsInstructionsOf([&] { mpMultiply(wide, x, x, n); });
    // The same steps, with multiplications: an exponent of four ones has three of them more than 8 has.
    mpSetDigit(e, 8, n);
    const long squares = tsInstructionsOf([&] { mpModExp(y, x, e, m, n); });
    mpSetDigit(e, 15, n);
    const long both = tsInstructionsOf([&] { mpModExp(y, x, e, m, n); });
    ASSERT_GT(many, few);
    ASSERT_NE(square, product);
    // A step with a square and a step with a product differ as the two functions do.
    const long stepWithSquare = (many - few) / 3;
    const long stepWithProduct = (both - squares) / 3;
    const long expected = product - square;
    EXPECT_LT(std::abs((stepWithProduct - stepWithSquare) - expected), std::abs(expected) / 2)
        << "square " << square << ", product " << product << ", steps " << stepWithSquare << " and " << stepWithProduct;
}

// ---- How a product is computed

// Instructions for a product.
long instructionsOfProduct(const Digits& u, const Digits& v)
{
    Digits wide(size_t{2} * u.size());
    return tsInstructionsOf([&] { mpMultiply(wide, u, v, u.size()); });
}

Digits withoutZeros(RandomNumbers& random, uint32_t n)
{
    Digits result(random.uniformNumber(n));
    for (uint32_t i = 0; i < n; ++i)
    {
        result[i] |= 0x80000000U;
    }
    return result;
}

TEST(Products, ZerosAtTheTopCostNextToNothing)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    // Of both factors, where these are multiplied digit by digit and where they are not.
    for (const uint32_t n : {15U, 60U})
    {
        const Digits u = withoutZeros(random, n);
        const Digits v = withoutZeros(random, n);
        const long product = instructionsOfProduct(u, v);
        if (product == 0)
        {
            GTEST_SKIP() << "a process may not be followed here";
        }
        const Digits longU(u.value(), size_t{2} * n);
        const Digits longV(v.value(), size_t{2} * n);
        EXPECT_LT(instructionsOfProduct(longU, longV), product / 2 * 3) << n;
    }
    // Of either.
    const Digits u = withoutZeros(random, 15);
    const Digits v(withoutZeros(random, 5).value(), 15);
    const long product = instructionsOfProduct(u, u);
    EXPECT_LT(instructionsOfProduct(u, v), product / 3 * 2);
    EXPECT_LT(instructionsOfProduct(v, u), product / 3 * 2);
}

TEST(Products, ZeroDigitsAreSkippedBetweenShortFactorsOnly)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (const uint32_t n : {15U, 16U})
    {
        const Digits u = withoutZeros(random, n);
        const Digits v = withoutZeros(random, n);
        Digits holed(v);
        mpSetZero(holed + 1, n - 2);
        const long whole = instructionsOfProduct(u, v);
        if (whole == 0)
        {
            GTEST_SKIP() << "a process may not be followed here";
        }
        const long rest = instructionsOfProduct(u, holed);
        if (n < 16)
        {
            EXPECT_LT(rest, whole / 3) << "two digits are left of fifteen";
        }
        else
        {
            EXPECT_GT(rest, whole / 10 * 9);
        }
    }
}

#endif

}  // namespace
