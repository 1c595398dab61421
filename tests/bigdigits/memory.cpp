// SPDX-License-Identifier: Apache-2.0
// Allocation, clearing, and running out of memory.
#include "Digits.h"
#include "RandomNumbers.h"
#include "watching.h"

#include <sys/resource.h>

#include <algorithm>
#include <fstream>

namespace
{

using watching::Memory;

TEST(Memory, IsZeroAndReleasedOnce)
{
    mpDigit* a = mpAlloc(100);
    ASSERT_NE(a, nullptr);
    for (int i = 0; i < 100; ++i)
    {
        EXPECT_EQ(a[i], 0U);
        a[i] = 1;
    }
    mpFree(&a);
    EXPECT_EQ(a, nullptr);
    mpFree(&a);
    EXPECT_EQ(a, nullptr);
    mpFree(nullptr);
}

TEST(Memory, IsZeroWhereOtherDigitsWere)
{
    for (const uint32_t n : {1U, 5U, 100U, 1000U})
    {
        mpDigit* a = mpAlloc(n);
        std::fill_n(a, n, 0xA5A5A5A5U);
        mpFree(&a);
        // It may well be the same memory.
        a = mpAlloc(n);
        EXPECT_TRUE(std::all_of(a, a + n, [](mpDigit digit) { return digit == 0; })) << n;
        mpFree(&a);
    }
}

TEST(Memory, OfNoDigitsIsNotNull)
{
    mpDigit* a = mpAlloc(0);
    EXPECT_NE(a, nullptr);
    mpFree(&a);
    EXPECT_EQ(a, nullptr);
}

TEST(Memory, IsAskedForInDigits)
{
    const Memory memory;
    mpDigit* a = mpAlloc(25);
    mpFree(&a);
    ASSERT_EQ(memory.blocks().size(), 1U);
    EXPECT_EQ(memory.blocks()[0].size, 100U);
    EXPECT_TRUE(memory.blocks()[0].isFreed);
}

// What a call allocates: sizes in bytes, in any order.
std::vector<size_t> sizes(const Memory& memory)
{
    std::vector<size_t> result;
    for (const Memory::Block& block : memory.blocks())
    {
        EXPECT_TRUE(block.isFreed);
        result.push_back(block.size);
    }
    std::sort(result.begin(), result.end());
    return result;
}

bool allCleared(const Memory& memory)
{
    bool result = true;
    for (const Memory::Block& block : memory.blocks())
    {
        result = result && block.wasZeroWhenFreed;
    }
    return result;
}

using Sizes = std::vector<size_t>;

class Temporaries : public testing::Test
{
protected:
    static constexpr uint32_t n = 5;
    Digits x{0x12345678U, 0xFFFFFFFFU, 0x9ABCDEF1U, 5, 0x77777777U};
    Digits y{0x87654321U, 0x80000000U, 7, 0xFFFFFFFFU, 0x12121212U};
    Digits m{0xFFFFFFF1U, 3, 0, 1, 0xF0000000U};
    Digits e{0xFFFFFFFFU, 0xFFFFFFFFU, 1, 0, 0};
    Digits w{0, 0, 0, 0, 0};
};

TEST_F(Temporaries, OfModExpAreFiveHoweverLongTheExponent)
{
    for (const mpDigit top : {0U, 1U, 0xFFFFFFFFU})
    {
        e[4] = top;
        const Memory memory;
        mpModExp(w, x, e, m, n);
        EXPECT_EQ(sizes(memory), (Sizes{20, 20, 40, 40, 40}));
        EXPECT_TRUE(allCleared(memory));
    }
    const Memory memory;
    mpModExp(w, x, e, m, 0);
    EXPECT_TRUE(memory.blocks().empty());
}

// Long numbers are computed with in other ways, which keep more.
TEST_F(Temporaries, OfLongNumbersAreClearedBeforeTheyAreFreed)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (const uint32_t length : {16U, 17U, 18U, 40U, 100U})
    {
        Digits base(random.number(length));
        Digits modulus(random.number(length));
        modulus[0] |= 1;
        modulus[length - 1] |= 0x80000000U;
        Digits exponent(length);
        mpSetDigit(exponent, 65537, length);
        Digits result(length);
        const Memory memory;
        mpModExp(result, base, exponent, modulus, length);
        mpModMult(result, base, result, modulus, length);
        mpModInv(result, base, modulus, length);
        mpGcd(result, base, modulus, length);
        mpModulo(result, base, length, modulus, length / 2);
        EXPECT_TRUE(allCleared(memory)) << length;
    }
}

TEST_F(Temporaries, OfModuloAreTwo)
{
    const Memory memory;
    mpModulo(w, x, n, m, n);
    EXPECT_EQ(sizes(memory), (Sizes{20, 20}));
    mpModulo(w, x, 2, m, n);
    EXPECT_EQ(sizes(memory), (Sizes{8, 20, 20, 20}));
    EXPECT_TRUE(allCleared(memory));
}

TEST_F(Temporaries, OfModMultAreClearedBeforeTheyAreFreed)
{
    const Memory memory;
    mpModMult(w, x, y, m, n);
    // Its own two, and those of the remainder.
    EXPECT_EQ(sizes(memory), (Sizes{20, 40, 40, 40}));
    EXPECT_TRUE(allCleared(memory));
}

TEST_F(Temporaries, OfModInvAreEight)
{
    const Memory memory;
    mpModInv(w, x, m, n);
    EXPECT_EQ(sizes(memory), (Sizes{20, 20, 20, 20, 20, 20, 20, 40}));
    EXPECT_TRUE(allCleared(memory));
}

TEST_F(Temporaries, OfGcdAreClearedBeforeTheyAreFreed)
{
    const Memory memory;
    mpGcd(w, x, y, n);
    EXPECT_TRUE(allCleared(memory));
    EXPECT_GE(sizes(memory).size(), 2U);
}

TEST_F(Temporaries, OfShortModAreOneOfTwiceTheLength)
{
    const Memory memory;
    mpShortMod(x, 1000, n);
    EXPECT_EQ(sizes(memory), (Sizes{40}));
    EXPECT_TRUE(allCleared(memory));
}

TEST_F(Temporaries, OfSqrtAreFiveAndKeepTheirDigits)
{
    const Memory memory;
    mpSqrt(w, x, n);
    EXPECT_EQ(sizes(memory), (Sizes{20, 20, 20, 20, 20}));
    EXPECT_FALSE(allCleared(memory));
    const Memory none;
    mpSetDigit(x, 1, n);
    mpSqrt(w, x, n);
    EXPECT_TRUE(none.blocks().empty());
}

TEST_F(Temporaries, OfRabinMillerAreClearedBeforeTheyAreFreed)
{
    x[0] |= 1;
    const Memory memory;
    mpRabinMiller(x, n, 1);
    EXPECT_GE(memory.blocks().size(), 6U);
    EXPECT_TRUE(allCleared(memory));
}

TEST_F(Temporaries, OfTheConvertersAreClearedBeforeTheyAreFreed)
{
    const Memory memory;
    char room[100];
    mpConvToDecimal(x, n, room, 100);
    mpConvFromDecimal(x, n, room);
    mpConvToHex(x, n, room, 100);
    mpConvFromHex(x, n, room);
    EXPECT_EQ(memory.blocks().size(), 6U);
    EXPECT_TRUE(allCleared(memory));
}

TEST_F(Temporaries, OfDecimalTextAreTheSameHoweverLong)
{
    for (const uint32_t length : {5U, 100U, 1500U})
    {
        // Half a digit at the top: 4 * length - 2 octets.
        std::vector<mpDigit> values(length, 0x9E3779B9U);
        values[length - 1] = 0x1234U;
        const Digits a(values);
        std::string text(size_t{10} * length, '#');
        const Memory writing;
        const uint32_t characters = mpConvToDecimal(a, length, text.data(), static_cast<uint32_t>(text.size()));
        EXPECT_EQ(sizes(writing), (Sizes{4 * size_t{length}, ceilToUnsigned((4 * length - 2) * 2.40824)}));
        EXPECT_TRUE(allCleared(writing));

        Digits b(length + 1);
        const Memory reading;
        mpConvFromDecimal(b, length + 1, text.c_str());
        EXPECT_EQ(sizes(reading), (Sizes{(ceilToUnsigned(characters * 0.41524) + 3) / 4 * size_t{4}}));
        EXPECT_TRUE(allCleared(reading));
    }
}

TEST_F(Temporaries, OfBasicArithmeticAreNone)
{
    Digits wide(10);
    mpDigit q = 0;
    mpDigit r = 0;
    const mpDigit u[2] = {1, 2};
    unsigned char octets[30];
    const Memory memory;
    mpSetZero(wide, 10);
    mpSetDigit(wide, 3, 10);
    mpSetEqual(w, x, n);
    mpSizeof(x, n);
    mpBitLength(x, n);
    mpCompare(x, y, n);
    mpEqual(x, y, n);
    mpIsZero(x, n);
    mpAdd(w, x, y, n);
    mpSubtract(w, x, y, n);
    mpMultiply(wide, x, y, n);
    mpSquare(wide, x, n);
    mpShiftLeft(w, x, 45, n);
    mpShiftRight(w, x, 45, n);
    mpModPowerOf2(w, n, 40);
    mpXorBits(w, x, y, n);
    mpOrBits(w, x, y, n);
    mpAndBits(w, x, y, n);
    mpShortAdd(w, x, 5, n);
    mpShortSub(w, x, 5, n);
    mpShortMult(w, x, 5, n);
    mpShortCmp(w, 5, n);
    spMultiply(wide, 5, 6);
    spDivide(&q, &r, u, 0x80000000U);
    mpShortDiv(w, x, 5, n);
    Digits quotient(n);
    mpDivide(quotient, w, x, n, m, n);
    mpConvToOctets(x, n, octets, 30);
    mpConvFromOctets(x, n, octets, 30);
    EXPECT_TRUE(memory.blocks().empty());
}

TEST_F(Temporaries, WithoutLengthNothingIsTouched)
{
    Digits a(2);
    Digits b(2);
    Digits c(2);
    EXPECT_EQ(mpModulo(a, b, 0, c, 0), 0);
    EXPECT_EQ(mpModMult(a, b, b, c, 0), 0);
    EXPECT_EQ(mpModExp(a, b, b, c, 0), -1);
    EXPECT_EQ(mpModInv(a, b, c, 0), 1);
    EXPECT_EQ(mpGcd(a, b, c, 0), 0);
    EXPECT_EQ(mpSqrt(a, b, 0), 0);
    EXPECT_EQ(mpRabinMiller(b, 0, 5), 0);
    EXPECT_EQ(mpIsPrime(b, 0, 5), 0);
    EXPECT_TRUE(a.isUntouched() && b.isUntouched() && c.isUntouched());
}

// ---- Out of memory: status 1, and the exact text on standard error

const auto failed = testing::ExitedWithCode(1);
const char* const allocText = "^mpAlloc: Unable to allocate memory\\.: Cannot allocate memory\n$";
const char* const toBaseText = "^conv_to_base: Not enough memory: src/bigdigits: Cannot allocate memory\n$";
const char* const fromDecimalText = "^mpConvFromDecimal: Not enough memory: src/bigdigits: Cannot allocate memory\n$";
const char* const fromHexText = "^mpConvFromHex: Not enough memory: src/bigdigits: Cannot allocate memory\n$";

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

// No more memory than the process has already, and some to spare for small things.
void limitMemory()
{
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t limit = (pages << 12) + (rlim_t{64} << 20);
    const rlimit both{limit, limit};
    if (setrlimit(RLIMIT_AS, &both) != 0)
    {
        abort();
    }
}

TEST(OutOfMemoryDeathTest, EndsTheProcessWhenTheAddressSpaceIsUsedUp)
{
    EXPECT_EXIT(
        {
            limitMemory();
            mpAlloc(0xFFFFFFFFU);
        },
        failed, allocText);
    EXPECT_EXIT(
        {
            limitMemory();
            for (;;)
            {
                mpAlloc(1000000);
            }
        },
        failed, allocText);
}

TEST(OutOfMemoryDeathTest, EndsTheProcessInTheConverters)
{
    mpDigit* a = mpAlloc(30000000);
    a[0] = 1;
    EXPECT_EXIT(
        {
            limitMemory();
            mpConvToDecimal(a, 30000000, nullptr, 0);
        },
        failed, toBaseText);
    mpFree(&a);
    const std::string text(size_t{400} << 20, ' ');
    Digits b(1);
    EXPECT_EXIT(
        {
            limitMemory();
            mpConvFromDecimal(b, 1, text.c_str());
        },
        failed, fromDecimalText);
    EXPECT_EXIT(
        {
            limitMemory();
            mpConvFromHex(b, 1, text.c_str());
        },
        failed, fromHexText);
}

TEST(OutOfMemoryDeathTest, EndsTheProcessWhenTwiceTheLengthDoesNotFitIn32Bits)
{
    // 2 * 2^31 digits, which must not become an array of none.
    const Digits u{1};
    EXPECT_EXIT(
        {
            limitMemory();
            mpShortMod(u, 3, 0x80000000U);
        },
        failed, allocText);
    EXPECT_EXIT(
        {
            limitMemory();
            mpModExp(nullptr, u, u, u, 0x80000000U);
        },
        failed, allocText);
}

#endif

TEST(OutOfMemoryDeathTest, EndsTheProcessInEachAllocation)
{
    Digits a{7, 1};
    Digits b{5, 1};
    Digits w{0, 0, 0, 0};
    struct Call
    {
        void (*call)(Digits& w, Digits& a, Digits& b);
        int allocations;
        const char* text;
    };
    const Call calls[] = {
        {[](Digits&, Digits&, Digits&) { mpAlloc(3); }, 1, allocText},
        {[](Digits&, Digits& u, Digits&) { mpShortMod(u, 5, 2); }, 1, allocText},
        {[](Digits& r, Digits& u, Digits& v) { mpModulo(r, u, 2, v, 2); }, 2, allocText},
        {[](Digits& r, Digits& u, Digits& v) { mpModMult(r, u, u, v, 2); }, 4, allocText},
        {[](Digits& r, Digits& u, Digits& v) { mpModExp(r, u, u, v, 2); }, 5, allocText},
        {[](Digits& r, Digits& u, Digits& v) { mpModInv(r, u, v, 2); }, 8, allocText},
        {[](Digits& r, Digits& u, Digits& v) { mpGcd(r, u, v, 2); }, 4, allocText},
        {[](Digits& r, Digits& u, Digits&) { mpSqrt(r, u, 2); }, 5, allocText},
        {[](Digits&, Digits& u, Digits&) { mpRabinMiller(u, 2, 1); }, 6, allocText},
        {[](Digits&, Digits& u, Digits&) { mpConvToHex(u, 2, nullptr, 0); }, 2, toBaseText},
        {[](Digits& r, Digits&, Digits&) { mpConvFromDecimal(r, 2, "123"); }, 1, fromDecimalText},
        {[](Digits& r, Digits&, Digits&) { mpConvFromHex(r, 2, "123"); }, 1, fromHexText},
    };
    for (const Call& one : calls)
    {
        for (int failing = 0; failing < one.allocations; ++failing)
        {
            EXPECT_EXIT(
                {
                    const Memory memory(failing);
                    one.call(w, a, b);
                },
                failed, one.text);
        }
    }
}

TEST(OutOfMemoryDeathTest, FailPrintsTheSystemsText)
{
    EXPECT_EXIT(
        {
            errno = ENOENT;
            mpFail("a message");
        },
        failed, "^a message: No such file or directory\n$");
}

}  // namespace
