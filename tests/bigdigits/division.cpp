// SPDX-License-Identifier: Apache-2.0
// Long division at the places where the estimate of a quotient digit is wrong.
#include "Digits.h"
#include "RandomNumbers.h"

namespace
{

// How a division goes, worked out with GMP from the operands alone.
struct Course
{
    unsigned withoutCorrection = 0;
    unsigned withOneCorrection = 0;
    unsigned withTwoCorrections = 0;
    unsigned addedBack = 0;
    unsigned overflowed = 0;
    unsigned overflowedWithoutTest = 0;
    unsigned zeroDigits = 0;

    // Counts what each quotient digit takes when u is divided by v, which has n > 1 digits without high zeros.
    void follow(const Natural& u, const Natural& v, size_t n)
    {
        const size_t shift = 32 * n - v.bits();
        const Natural divisor = v << shift;
        const Natural first = divisor >> 32 * (n - 1);
        const Natural firstTwo = divisor >> 32 * (n - 2);
        Natural rest = u << shift;
        for (size_t j = (u.bits() + 31) / 32 - n + 1; j-- > 0;)
        {
            const Natural part = rest >> 32 * j;
            const Natural estimateFromOne = (part >> 32 * (n - 1)) / first;
            // With the second digit taken into account; at most two less than the first estimate.
            const Natural estimateFromTwo = (part >> 32 * (n - 2)) / firstTwo;
            const Natural digit = part / divisor;
            const Natural largest(0xFFFFFFFFUL);
            const bool overflows = estimateFromOne > largest;
            const Natural start = overflows ? largest : estimateFromOne;
            const Natural settled = estimateFromTwo > largest ? largest : estimateFromTwo;
            overflowed += overflows ? 1U : 0U;
            const Natural remainderOfStart = (part >> 32 * (n - 1)) - start * first;
            overflowedWithoutTest += overflows && remainderOfStart > largest ? 1U : 0U;
            zeroDigits += digit.isZero() ? 1U : 0U;
            withoutCorrection += start == settled ? 1U : 0U;
            withOneCorrection += start == settled + Natural(1) ? 1U : 0U;
            withTwoCorrections += start == settled + Natural(2) ? 1U : 0U;
            addedBack += settled == digit + Natural(1) ? 1U : 0U;
            rest = rest - ((digit * divisor) << 32 * j);
        }
    }
};

void checkDivision(Course& course, const std::vector<mpDigit>& uDigits, const std::vector<mpDigit>& vDigits)
{
    const Digits u(uDigits);
    Digits v(vDigits);
    const Natural divisor = v.value();
    const Natural dividend = u.value();
    Digits q(u.size());
    Digits r(u.size());
    ASSERT_EQ(mpDivide(q, r, u, u.size(), v, v.size()), 0);
    ASSERT_EQ(q.value(), dividend / divisor) << dividend << " / " << divisor;
    ASSERT_EQ(r.value(), dividend % divisor) << dividend << " / " << divisor;
    ASSERT_EQ(v.value(), divisor);
    const size_t n = mpSizeof(v, v.size());
    if (n > 1 && mpSizeof(u, u.size()) >= n)
    {
        course.follow(dividend, divisor, n);
    }
}

// A first digit of 2^31 and a second one of all ones: seen by its first digit alone, the divisor looks smallest.
TEST(Division, CorrectsAnEstimateThatIsTwoTooLarge)
{
    Course course;
    checkDivision(course, {0x415B5549U, 0x3EA4AAB4U, 0x5F52555BU}, {0xFFFFFFFFU, 0x80000000U});
    EXPECT_EQ(course.withTwoCorrections, 1U);
    checkDivision(course, {0x24, 0xBFFFFFB6U, 0x7FFFFFEFU}, {0xFFFFFFFFU, 0x80000001U});
    EXPECT_EQ(course.withTwoCorrections, 2U);
}

TEST(Division, CorrectsAnEstimateThatIsOneTooLarge)
{
    Course course;
    checkDivision(course, {0xE08F03D0U, 0x9F70FC2EU, 0x0FB87E17U}, {0xFFFFFFFFU, 0x80000000U});
    EXPECT_EQ(course.withOneCorrection, 1U);
    checkDivision(course, {0x7FFFFFFFU, 0xFFFFFFEFU, 0x7FFFFFEFU}, {0x80000000U, 0x80000000U});
    EXPECT_EQ(course.withOneCorrection, 2U);
}

// The third digit of the divisor makes the estimate too large, and two digits cannot tell.
TEST(Division, AddsBackWhenTheEstimateSurvivesTheTest)
{
    Course course;
    checkDivision(course, {3, 0, 0x80000000U}, {1, 0, 0x20000000U});
    EXPECT_EQ(course.addedBack, 1U);
    checkDivision(course, {0, 0, 0x80000000U, 0x7FFFFFFFU}, {1, 0, 0x80000000U});
    EXPECT_EQ(course.addedBack, 2U);
    checkDivision(course, {0, 0, 0, 0x80000000U, 0x7FFFFFFFU}, {1, 0, 0, 0x80000000U});
    EXPECT_EQ(course.addedBack, 3U);
}

TEST(Division, TakesTheLargestDigitWhenTheEstimateOverflows)
{
    Course course;
    // The running top digit equals the divisor's first digit.
    checkDivision(course, {0, 0, 0, 0xFFFFFFFEU, 0xFFFFFFFFU}, {0xFFFFFFFFU, 0xFFFFFFFFU});
    EXPECT_GT(course.overflowed, 0U);
    checkDivision(course, {0, 0xFFFFFFFFU, 0xFFFFFFFFU, 0x80000000U}, {0xFFFFFFFFU, 0xFFFFFFFFU, 0x80000000U});
    checkDivision(course, {5, 0xFFFFFFFFU, 0xFFFFFFF0U, 0x80000000U}, {7, 0xFFFFFFFFU, 0x80000000U});
    EXPECT_GT(course.overflowedWithoutTest, 0U);
}

// Divisors of all shapes against dividends just below and above their multiples: every way through a quotient digit
// is taken many times, and the counts prove it.
TEST(Division, TakesEveryWayThroughAQuotientDigit)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    Course course;
    const uint32_t count = casesToRun(100000);
    for (uint32_t i = 0; i < count && !HasFailure(); ++i)
    {
        const uint32_t n = random.between(2, 6);
        std::vector<mpDigit> v = random.number(n);
        if (random.oneIn(2))
        {
            v[n - 1] = 0x80000000U + random.below(3);
            v[n - 2] = random.oneIn(2) ? 0xFFFFFFFFU - random.below(3) : random.below(3);
            v[0] = random.digit();
        }
        if (Natural(v).isZero())
        {
            v[0] = 1;
        }
        const uint32_t udigits = random.between(n, n + 4);
        std::vector<mpDigit> u = random.number(udigits);
        if (random.oneIn(2))
        {
            const Natural multiple = Natural(v) * Natural(random.number(udigits - n + 1));
            u = (multiple + Natural(random.below(3)) - Natural(1)).digits(udigits);
        }
        checkDivision(course, u, v);
    }
    EXPECT_GT(course.withoutCorrection, 0U);
    EXPECT_GT(course.withOneCorrection, 0U);
    EXPECT_GT(course.withTwoCorrections, 0U);
    EXPECT_GT(course.addedBack, 0U);
    EXPECT_GT(course.overflowed, 0U);
    EXPECT_GT(course.overflowedWithoutTest, 0U);
    EXPECT_GT(course.zeroDigits, 0U);
}

TEST(Division, OfASmallerNumberGivesItBackAsTheRemainder)
{
    Course course;
    checkDivision(course, {5, 4, 0}, {0, 0, 1});
    checkDivision(course, {5, 4, 3}, {6, 4, 3});
    checkDivision(course, {0, 0, 0}, {1, 1});
}

TEST(Division, OfEqualNumbersGivesOne)
{
    const Digits u{9, 8, 7, 0};
    Digits v{9, 8, 7};
    Digits q(4);
    Digits r(4);
    EXPECT_EQ(mpDivide(q, r, u, 4, v, 3), 0);
    EXPECT_EQ(q.value(), Natural(1));
    EXPECT_TRUE(r.value().isZero());
}

TEST(Division, OfNumbersOfTheSameSizeComparesThem)
{
    Course course;
    checkDivision(course, {1, 9, 7}, {9, 8, 7});
    checkDivision(course, {8, 8, 7}, {9, 8, 7});
    checkDivision(course, {10, 8, 7}, {9, 8, 7});
    checkDivision(course, {0xFFFFFFFFU, 0xFFFFFFFFU}, {0, 1});
}

TEST(Division, ByOneSignificantDigitMayHaveMoreDigits)
{
    Course course;
    checkDivision(course, {1, 2, 3, 4}, {3, 0, 0, 0, 0, 0});
    checkDivision(course, {1, 2, 3, 4}, {3});
    checkDivision(course, {1, 2, 3, 4}, {0xFFFFFFFFU, 0});
}

TEST(Division, ByAnArrayLongerThanTheDividend)
{
    const Digits u{1, 2};
    Digits v{3, 4, 5};
    Digits q(2);
    Digits r(2);
    EXPECT_EQ(mpDivide(q, r, u, 2, v, 3), 0);
    EXPECT_TRUE(q.value().isZero());
    EXPECT_EQ(r.value(), u.value());
    EXPECT_EQ(v.vector(), (std::vector<mpDigit>{3, 4, 5}));
}

TEST(Division, ByZeroGivesMinusOneAndZeros)
{
    const Digits u{1, 2, 3};
    Digits v{0, 0};
    for (const uint32_t vdigits : {2U, 0U})
    {
        Digits q(3);
        Digits r(3);
        EXPECT_EQ(mpDivide(q, r, u, 3, v, vdigits), -1);
        EXPECT_TRUE(q.value().isZero());
        EXPECT_TRUE(r.value().isZero());
    }
}

TEST(Division, OfNoDigits)
{
    const Digits u(0);
    Digits q(1);
    Digits r(1);
    Digits zero{0, 0};
    EXPECT_EQ(mpDivide(q, r, u, 0, zero, 2), -1);
    Digits two{1, 2};
    EXPECT_EQ(mpDivide(q, r, u, 0, two, 2), 0);
    EXPECT_TRUE(q.isUntouched() && r.isUntouched());
    Digits one{7, 0};
    EXPECT_EQ(mpDivide(q, r, u, 0, one, 2), 0);
    EXPECT_TRUE(q.isUntouched());
    EXPECT_EQ(r[0], 0U) << "the remainder's digit is written all the same";
    EXPECT_EQ(one.vector(), (std::vector<mpDigit>{7, 0}));
}

TEST(Division, GivesTheDivisorBack)
{
    for (uint32_t shift = 0; shift < 32; ++shift)
    {
        const Digits u{0x12345678U, 0x9ABCDEF0U, 0xFFFFFFFFU, 0x7FFFFFFFU};
        Digits v{0xFFFFFFFFU, 0x80000001U, 0xFFFFFFFFU >> shift, 0};
        const Digits before(v);
        Digits q(4);
        Digits r(4);
        EXPECT_EQ(mpDivide(q, r, u, 4, v, 4), 0);
        EXPECT_EQ(v.vector(), before.vector());
        EXPECT_EQ(q.value(), u.value() / before.value());
        // Also when nothing remains.
        const Digits multiple(q.value() * before.value(), 4);
        EXPECT_EQ(mpDivide(q, r, multiple, 4, v, 4), 0);
        EXPECT_EQ(v.vector(), before.vector());
        EXPECT_TRUE(r.value().isZero());
    }
}

TEST(Division, ShortDivisionByZeroLeavesTheQuotient)
{
    const Digits u{1, 2};
    Digits q(2);
    EXPECT_EQ(mpShortDiv(q, u, 0, 2), 0U);
    EXPECT_EQ(mpShortDiv(q, u, 5, 0), 0U);
    EXPECT_TRUE(q.isUntouched());
    EXPECT_EQ(mpShortMod(u, 0, 2), 0U);
    EXPECT_EQ(mpShortMod(u, 5, 0), 0U);
}

TEST(Division, OfADoubleDigitTellsTheOverflow)
{
    mpDigit q = 9;
    mpDigit r = 9;
    const mpDigit twoTo32[2] = {0, 1};
    EXPECT_EQ(spDivide(&q, &r, twoTo32, 0x80000000U), 0U);
    EXPECT_EQ(q, 2U);
    EXPECT_EQ(r, 0U);
    const mpDigit twoTo63[2] = {0, 0x80000000U};
    EXPECT_EQ(spDivide(&q, &r, twoTo63, 0x80000000U), 1U);
    EXPECT_EQ(q, 0U);
    EXPECT_EQ(r, 0U);
    const mpDigit largest[2] = {0xFFFFFFFFU, 0xFFFFFFFFU};
    EXPECT_EQ(spDivide(&q, &r, largest, 0x80000000U), 1U);
    EXPECT_EQ(q, 0xFFFFFFFFU);
    EXPECT_EQ(r, 0x7FFFFFFFU);
}

TEST(Division, OfADoubleDigitRefusesADivisorThatIsNotNormalised)
{
    const mpDigit u[2] = {5, 0};
    for (const mpDigit v : {0U, 1U, 0x7FFFFFFFU})
    {
        mpDigit q = 9;
        mpDigit r = 9;
        EXPECT_EQ(spDivide(&q, &r, u, v), 0xFFFFFFFFU);
        EXPECT_EQ(q, 0U);
        EXPECT_EQ(r, 0U);
    }
}

TEST(Division, OfADoubleDigitInPlace)
{
    mpDigit u[2] = {0x9ABCDEF0U, 0x12345678U};
    const Natural value(u, 2);
    EXPECT_EQ(spDivide(&u[0], &u[1], u, 0x87654321U), 0U);
    EXPECT_EQ(Natural(u[0]), value / Natural(0x87654321U));
    EXPECT_EQ(Natural(u[1]), value % Natural(0x87654321U));
}

// Both half-digit steps with quotients at the ends of their range.
TEST(Division, OfDoubleDigitsNearMultiplesAgreesWithGmp)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    const uint32_t count = casesToRun(300000);
    for (uint32_t i = 0; i < count && !HasFailure(); ++i)
    {
        const mpDigit v = random.digit() | 0x80000000U;
        const uint64_t multiple = uint64_t{v} * (random.oneIn(2) ? random.digit() : random.below(4) << 16);
        const uint64_t value = multiple + random.below(3) - 1;
        const mpDigit u[2] = {static_cast<mpDigit>(value), static_cast<mpDigit>(value >> 32)};
        mpDigit q = 0;
        mpDigit r = 0;
        const uint64_t overflow = spDivide(&q, &r, u, v);
        ASSERT_EQ(overflow << 32 | q, value / v) << value << " / " << v;
        ASSERT_EQ(r, value % v) << value << " / " << v;
    }
}

}  // namespace
