// SPDX-License-Identifier: Apache-2.0
// Digit arrays and basic arithmetic at the edges.
#include "Digits.h"

#include <sys/mman.h>

#include <algorithm>

namespace
{

using Values = std::vector<mpDigit>;
constexpr mpDigit allOnes = 0xFFFFFFFFU;

TEST(Setting, ADigitIsWrittenEvenWithoutLength)
{
    Digits a{1, 2, 3};
    mpSetDigit(a, 7, 0);
    EXPECT_EQ(a.vector(), (Values{7, 2, 3}));
    mpSetDigit(a, 9, 2);
    EXPECT_EQ(a.vector(), (Values{9, 0, 3}));
}

TEST(Setting, NothingIsTouchedWithoutLength)
{
    Digits a(3);
    const Digits b{1, 2, 3};
    mpSetZero(a, 0);
    mpSetEqual(a, b, 0);
    mpModPowerOf2(a, 0, 0);
    mpXorBits(a, b, b, 0);
    mpOrBits(a, b, b, 0);
    mpAndBits(a, b, b, 0);
    EXPECT_EQ(mpAdd(a, b, b, 0), 0U);
    EXPECT_EQ(mpSubtract(a, b, b, 0), 0U);
    EXPECT_EQ(mpMultiply(a, b, b, 0), 0);
    EXPECT_EQ(mpSquare(a, b, 0), 0);
    EXPECT_EQ(mpShortMult(a, b, 5, 0), 0U);
    EXPECT_EQ(mpShortMult(a, b, 0, 0), 0U);
    EXPECT_EQ(mpShiftLeft(a, b, 5, 0), 0U);
    EXPECT_EQ(mpShiftRight(a, b, 5, 0), 0U);
    EXPECT_EQ(mpShiftLeft(a, b, 0, 0), 0U);
    EXPECT_EQ(mpShiftRight(a, b, 0, 0), 0U);
    EXPECT_TRUE(a.isUntouched());
}

TEST(ShortArithmetic, DigitZeroIsWrittenEvenWithoutLength)
{
    const Digits u{allOnes, 5};
    Digits w(2);
    EXPECT_EQ(mpShortAdd(w, u, 3, 0), 1U);
    EXPECT_EQ(w.vector(), (Values{2, Digits::rubbish}));
    EXPECT_EQ(mpShortAdd(w, u, 0, 0), 0U);
    EXPECT_EQ(w[0], allOnes);
    const Digits one{1};
    EXPECT_EQ(mpShortSub(w, one, 3, 0), 1U);
    EXPECT_EQ(w.vector(), (Values{0xFFFFFFFEU, Digits::rubbish}));
    EXPECT_EQ(mpShortSub(w, one, 1, 0), 0U);
    EXPECT_EQ(w[0], 0U);
}

TEST(ShortArithmetic, CarriesAndBorrowsRunThrough)
{
    Digits a{allOnes, allOnes, allOnes};
    EXPECT_EQ(mpShortAdd(a, a, 1, 3), 1U);
    EXPECT_EQ(a.vector(), (Values{0, 0, 0}));
    EXPECT_EQ(mpShortSub(a, a, 1, 3), 1U);
    EXPECT_EQ(a.vector(), (Values{allOnes, allOnes, allOnes}));
    Digits w(3);
    EXPECT_EQ(mpShortMult(w, a, allOnes, 3), 0xFFFFFFFEU);
    EXPECT_EQ(w.vector(), (Values{1, allOnes, allOnes}));
    EXPECT_EQ(mpShortMult(w, a, 0, 3), 0U);
    EXPECT_EQ(w.vector(), (Values{0, 0, 0}));
}

TEST(ShortArithmetic, Comparison)
{
    const Digits a{5, 0, 1};
    EXPECT_EQ(mpShortCmp(a, 0, 0), 0);
    EXPECT_EQ(mpShortCmp(a, 5, 0), -1);
    EXPECT_EQ(mpShortCmp(a, 5, 1), 0);
    EXPECT_EQ(mpShortCmp(a, 6, 1), -1);
    EXPECT_EQ(mpShortCmp(a, 4, 1), 1);
    EXPECT_EQ(mpShortCmp(a, 5, 2), 0);
    EXPECT_EQ(mpShortCmp(a, 6, 2), -1);
    EXPECT_EQ(mpShortCmp(a, allOnes, 3), 1);
}

TEST(Comparison, WithoutLength)
{
    const Digits a{1, 2};
    const Digits b{3, 4};
    EXPECT_EQ(mpEqual(a, b, 0), -1);
    EXPECT_EQ(mpIsZero(a, 0), -1);
    EXPECT_EQ(mpCompare(a, b, 0), 0);
    EXPECT_EQ(mpSizeof(a, 0), 0U);
    EXPECT_EQ(mpBitLength(a, 0), 0U);
}

TEST(Comparison, TheHighestDifferenceDecides)
{
    const Digits a{9, 1, 5};
    const Digits b{1, 2, 5};
    EXPECT_EQ(mpCompare(a, b, 3), -1);
    EXPECT_EQ(mpCompare(b, a, 3), 1);
    EXPECT_EQ(mpCompare(a, b, 1), 1);
    EXPECT_EQ(mpCompare(a, a, 3), 0);
    EXPECT_EQ(mpEqual(a, b, 3), 0);
    EXPECT_EQ(mpEqual(a, a, 3), 1);
    const Digits zeros{0, 0, 0};
    const Digits top{0, 0, 1};
    EXPECT_EQ(mpIsZero(zeros, 3), 1);
    EXPECT_EQ(mpIsZero(top, 3), 0);
    EXPECT_EQ(mpIsZero(top, 2), 1);
}

TEST(Comparison, BitLength)
{
    EXPECT_EQ(mpBitLength(nullptr, 5), 0U);
    const Digits one{1};
    EXPECT_EQ(mpBitLength(one, 1), 1U);
    const Digits high{0x80000000U};
    EXPECT_EQ(mpBitLength(high, 1), 32U);
    const Digits zero{0, 0, 0};
    EXPECT_EQ(mpBitLength(zero, 3), 0U);
    EXPECT_EQ(mpSizeof(zero, 3), 0U);
    const Digits more{allOnes, 1, 0};
    EXPECT_EQ(mpBitLength(more, 3), 33U);
    EXPECT_EQ(mpSizeof(more, 3), 2U);
}

TEST(Comparison, BitLengthIsTakenModulo2To32)
{
    constexpr uint32_t n = 1U << 27;
    constexpr size_t size = (size_t{n} + 1) * sizeof(mpDigit);
    // Half a gigabyte of zeros, of which the system has only the pages that are written to.
    void* pMemory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (pMemory == MAP_FAILED)
    {
        GTEST_SKIP() << "there is no room for half a gigabyte";
    }
    auto* a = static_cast<mpDigit*>(pMemory);
    a[n - 1] = allOnes >> 1;
    EXPECT_EQ(mpBitLength(a, n), allOnes);
    a[n - 1] = allOnes;
    EXPECT_EQ(mpBitLength(a, n), 0U);
    a[n] = 2;
    EXPECT_EQ(mpBitLength(a, n + 1), 2U);
    munmap(pMemory, size);
}

TEST(Addition, OfAllOnesAndOneCarriesOut)
{
    const Digits u{allOnes, allOnes, allOnes};
    const Digits v{1, 0, 0};
    Digits w(3);
    EXPECT_EQ(mpAdd(w, u, v, 3), 1U);
    EXPECT_EQ(w.vector(), (Values{0, 0, 0}));
    EXPECT_EQ(mpAdd(w, u, u, 3), 1U);
    EXPECT_EQ(w.vector(), (Values{0xFFFFFFFEU, allOnes, allOnes}));
}

TEST(Subtraction, OfOneFromZeroBorrowsOut)
{
    const Digits u{0, 0, 0};
    const Digits v{1, 0, 0};
    Digits w(3);
    EXPECT_EQ(mpSubtract(w, u, v, 3), 1U);
    EXPECT_EQ(w.vector(), (Values{allOnes, allOnes, allOnes}));
    const Digits ones{allOnes, allOnes, allOnes};
    EXPECT_EQ(mpSubtract(w, u, ones, 3), 1U);
    EXPECT_EQ(w.vector(), (Values{1, 0, 0}));
}

TEST(Products, OfAllOnes)
{
    for (size_t n = 1; n <= 70; ++n)
    {
        const Digits u(Values(n, allOnes));
        Digits w(2 * n);
        EXPECT_EQ(mpMultiply(w, u, u, u.size()), 0);
        Values expected(2 * n, allOnes);
        std::fill(expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(n), 0);
        expected[0] = 1;
        expected[n] = 0xFFFFFFFEU;
        EXPECT_EQ(w.vector(), expected);
        Digits square(2 * n);
        EXPECT_EQ(mpSquare(square, u, u.size()), 0);
        EXPECT_EQ(square.vector(), expected);
    }
}

// More rows than are summed up in the lanes of a register before these are emptied.
TEST(Products, OfVeryLongNumbers)
{
    for (const size_t n : {16383U, 16384U, 16385U, 33000U})
    {
        const Digits u(Values(n, allOnes));
        Digits w(2 * n);
        EXPECT_EQ(mpMultiply(w, u, u, u.size()), 0);
        EXPECT_TRUE(w.value() == u.value() * u.value()) << n << " digits";
    }
}

TEST(Products, ZeroDigitsOfTheSecondFactorAreSkipped)
{
    const Digits u{allOnes, allOnes, allOnes, allOnes};
    const Digits v{0, allOnes, 0, 0};
    Digits w(8);
    mpMultiply(w, u, v, 4);
    EXPECT_EQ(w.value(), u.value() * v.value());
    mpMultiply(w, v, u, 4);
    EXPECT_EQ(w.value(), u.value() * v.value());
}

TEST(ShiftLeft, ByZeroCopies)
{
    const Digits b{1, 2, 0x80000000U};
    Digits a(3);
    EXPECT_EQ(mpShiftLeft(a, b, 0, 3), 0U);
    EXPECT_EQ(a.vector(), b.vector());
}

TEST(ShiftLeft, ByLessThanADigitGivesTheBitsPushedOut)
{
    const Digits b{0x80000001U, 0xF0000000U};
    Digits a(2);
    EXPECT_EQ(mpShiftLeft(a, b, 4, 2), 0xFU);
    EXPECT_EQ(a.vector(), (Values{0x10, 8}));
    EXPECT_EQ(mpShiftLeft(a, b, 31, 2), 0x78000000U);
}

TEST(ShiftLeft, ByADigitMovesAllDigitsUp)
{
    const Digits b{1, 2, 3};
    Digits a(3);
    // The digit read for the carry is the one that just left the top.
    EXPECT_EQ(mpShiftLeft(a, b, 32, 3), 3U);
    EXPECT_EQ(a.vector(), (Values{0, 1, 2}));
}

TEST(ShiftLeft, TheCarryOfALongShiftIsReadAfterTheMove)
{
    const Digits b{1, 2, 3};
    Digits a(3);
    EXPECT_EQ(mpShiftLeft(a, b, 36, 3), (3U << 4) | 0U);
    EXPECT_EQ(a.vector(), (Values{0, 16, 32}));
    Digits same{1, 2, 3};
    // In place digit 2 holds what was digit 1 by then.
    EXPECT_EQ(mpShiftLeft(same, same, 36, 3), 2U << 4);
    EXPECT_EQ(same.vector(), (Values{0, 16, 32}));
    Digits high{0xF0000000U, 0, 0x0000000FU};
    EXPECT_EQ(mpShiftLeft(a, high, 68, 3), (0U << 4) | 0xFU) << "what the last move pushes out is joined to it";
}

TEST(ShiftLeft, ByAllDigitsAndByMore)
{
    const Digits b{1, 2, 3};
    Digits a(3);
    EXPECT_EQ(mpShiftLeft(a, b, 97, 3), 2U);
    EXPECT_TRUE(a.value().isZero());
    Digits same{1, 2, 3};
    EXPECT_EQ(mpShiftLeft(same, same, 97, 3), 0U);
    EXPECT_TRUE(same.value().isZero());
    // More whole digits than there are: there is nothing to read.
    for (const uint32_t shift : {128U, 129U, 1000000U, allOnes})
    {
        EXPECT_EQ(mpShiftLeft(a, b, shift, 3), 0U);
        EXPECT_TRUE(a.value().isZero());
        Digits nothing(1);
        EXPECT_EQ(mpShiftLeft(nothing, b, shift, 0), 0U);
        EXPECT_TRUE(nothing.isUntouched());
    }
}

TEST(ShiftRight, ByLessThanADigitGivesTheBitsPushedOut)
{
    const Digits b{0x8000000FU, 0xF0000001U};
    Digits a(2);
    EXPECT_EQ(mpShiftRight(a, b, 4, 2), 0xF0000000U);
    EXPECT_EQ(a.vector(), (Values{0x18000000U, 0x0F000000U}));
    EXPECT_EQ(mpShiftRight(a, b, 0, 2), 0U);
    EXPECT_EQ(a.vector(), b.vector());
}

TEST(ShiftRight, TheCarryOfALongShiftIsReadAfterTheMove)
{
    const Digits b{0x10, 0x20, 0x35};
    Digits a(3);
    EXPECT_EQ(mpShiftRight(a, b, 32, 3), 0x10U);
    EXPECT_EQ(a.vector(), (Values{0x20, 0x35, 0}));
    EXPECT_EQ(mpShiftRight(a, b, 36, 3), 1U);
    EXPECT_EQ(a.vector(), (Values{0x50000002U, 3, 0}));
    Digits same{0x10, 0x20, 0x35};
    EXPECT_EQ(mpShiftRight(same, same, 68, 3), 0x50000000U) << "digit 1 is 0 by then";
    EXPECT_EQ(same.vector(), (Values{3, 0, 0}));
    Digits twice{0x10, 0x20, 0x35};
    EXPECT_EQ(mpShiftRight(twice, twice, 36, 3), 0x20U >> 4);
}

TEST(ShiftRight, ByMoreDigitsThanThereAreReadsTheArrayBehind)
{
    const Digits b{1, 2, 3, 0x40, 0x55};
    Digits a(2);
    EXPECT_EQ(mpShiftRight(a, b, 32 * 5 + 4, 2), 5U);
    EXPECT_TRUE(a.value().isZero());
    // Also without any digit to write.
    Digits nothing(1);
    EXPECT_EQ(mpShiftRight(nothing, b, 32 * 4 + 4, 0), 4U);
    EXPECT_EQ(mpShiftRight(nothing, b, 32, 0), 1U);
    EXPECT_TRUE(nothing.isUntouched());
}

TEST(ModPowerOf2, ClearsTheBitsAbove)
{
    Digits a{allOnes, allOnes, allOnes, allOnes};
    mpModPowerOf2(a, 4, 128);
    mpModPowerOf2(a, 4, 1000);
    mpModPowerOf2(a, 4, allOnes);
    EXPECT_EQ(a.vector(), Values(4, allOnes));
    mpModPowerOf2(a, 4, 100);
    EXPECT_EQ(a.vector(), (Values{allOnes, allOnes, allOnes, 0xF}));
    mpModPowerOf2(a, 4, 64);
    EXPECT_EQ(a.vector(), (Values{allOnes, allOnes, 0, 0}));
    mpModPowerOf2(a, 4, 31);
    EXPECT_EQ(a.vector(), (Values{0x7FFFFFFFU, 0, 0, 0}));
    mpModPowerOf2(a, 4, 0);
    EXPECT_TRUE(a.value().isZero());
}

TEST(SingleDigits, ProductOfHalvesThatOverflowTheMiddle)
{
    mpDigit p[2];
    EXPECT_EQ(spMultiply(p, allOnes, allOnes), 0);
    EXPECT_EQ(p[0], 1U);
    EXPECT_EQ(p[1], 0xFFFFFFFEU);
    spMultiply(p, 0xFFFF0000U, 0x0000FFFFU);
    EXPECT_EQ(p[0], 0x00010000U);
    EXPECT_EQ(p[1], 0x0000FFFEU);
    spMultiply(p, 0, allOnes);
    EXPECT_EQ(p[0] | p[1], 0U);
}

}  // namespace
