// SPDX-License-Identifier: Apache-2.0
// One array in two places of a call, wherever the header allows it: the result is the same as with separate arrays.
#include "Digits.h"
#include "RandomNumbers.h"

#include <functional>

namespace
{

class Aliasing : public testing::Test
{
protected:
    // Lengths of rows, of columns, with and without a digit left out, and some more.
    void forEachLength(const std::function<void(uint32_t n)>& check)
    {
        SCOPED_TRACE(random.trace());
        for (const uint32_t n : {1U, 2U, 3U, 5U, 15U, 16U, 17U, 18U, 20U, 33U, 64U, 100U})
        {
            for (int i = 0; i < 8 && !HasFailure(); ++i)
            {
                SCOPED_TRACE(n);
                check(n);
            }
        }
    }

    // Never zero.
    Digits number(uint32_t n)
    {
        Digits result(random.number(n));
        result[0] |= 1;
        return result;
    }

    RandomNumbers random;
};

TEST_F(Aliasing, DivideTakesDividendAndDivisorInOneArray)
{
    forEachLength(
        [this](uint32_t n)
        {
            Digits a = number(n);
            const Digits before(a);
            Digits q(n);
            Digits r(n);
            EXPECT_EQ(mpDivide(q, r, a, n, a, n), 0);
            EXPECT_EQ(q.value(), Natural(1));
            EXPECT_TRUE(r.value().isZero());
            EXPECT_EQ(a.vector(), before.vector());
        });
}

// The divisor is the lower part of the dividend.
TEST_F(Aliasing, DivideTakesThemAtDifferentLengths)
{
    forEachLength(
        [this](uint32_t n)
        {
            const uint32_t udigits = n + 1 + random.below(n + 3);
            Digits a(udigits);
            mpSetEqual(a, random.uniformNumber(udigits).data(), udigits);
            // Divisors that have to be shifted, by every number of bits.
            a[n - 1] = (a[n - 1] >> random.below(32)) | 1;
            const Digits before(a);
            const Natural divisor(a, n);
            Digits q(udigits);
            Digits r(udigits);
            EXPECT_EQ(mpDivide(q, r, a, udigits, a, n), 0);
            EXPECT_EQ(q.value(), before.value() / divisor);
            EXPECT_EQ(r.value(), before.value() % divisor);
            EXPECT_EQ(a.vector(), before.vector());
        });
}

TEST_F(Aliasing, DivideTakesADividendThatIsShorterThanItsOwnDivisor)
{
    forEachLength(
        [this](uint32_t n)
        {
            Digits a(random.uniformNumber(n + 1));
            a[n] |= 1;
            const Digits before(a);
            Digits q(n);
            Digits r(n);
            EXPECT_EQ(mpDivide(q, r, a, n, a, n + 1), 0);
            EXPECT_TRUE(q.value().isZero());
            EXPECT_EQ(r.value(), Natural(before, n));
            EXPECT_EQ(a.vector(), before.vector());
        });
}

TEST_F(Aliasing, ModuloTakesDividendDivisorAndResultInOneArray)
{
    forEachLength(
        [this](uint32_t n)
        {
            const uint32_t udigits = n + random.below(n + 3);
            Digits a(random.uniformNumber(udigits));
            a[n - 1] = (a[n - 1] >> random.below(32)) | 1;
            const Natural expected = a.value() % Natural(a, n);
            Digits r(n);
            EXPECT_EQ(mpModulo(r, a, udigits, a, n), 0);
            EXPECT_EQ(r.value(), expected);
            EXPECT_EQ(mpModulo(a, a, udigits, a, n), 0);
            EXPECT_EQ(Natural(a, n), expected);
        });
}

TEST_F(Aliasing, ModMultTakesAFactorThatIsTheModulus)
{
    forEachLength(
        [this](uint32_t n)
        {
            const Digits m = number(n);
            const Digits y = number(n);
            for (int way = 0; way < 3; ++way)
            {
                Digits a(n);
                mpModMult(a, way == 1 ? y : m, way == 0 ? y : m, m, n);
                EXPECT_TRUE(a.value().isZero()) << way;
            }
            Digits all(m);
            mpModMult(all, all, all, all, n);
            EXPECT_TRUE(all.value().isZero());
            Digits square(n);
            mpModMult(square, y, y, m, n);
            EXPECT_EQ(square.value(), y.value() * y.value() % m.value());
        });
}

TEST_F(Aliasing, ModExpTakesABaseOrAnExponentThatIsTheModulus)
{
    forEachLength(
        [this](uint32_t n)
        {
            Digits m = number(n);
            if (n > 20)
            {
                // An exponent of that many bits takes long.
                mpSetZero(m + 2, n - 2);
                m[1] |= 1;
            }
            const Digits x = number(n);
            Digits y(n);
            mpModExp(y, x, m, m, n);
            const Natural one(1);
            EXPECT_EQ(y.value(), m.value() == one ? x.value() : x.value().powerModulo(m.value(), m.value()));
            mpModExp(y, x, x, m, n);
            EXPECT_EQ(y.value(), x.value() == one ? x.value() : x.value().powerModulo(x.value(), m.value()));
            Digits exponent(n);
            mpSetDigit(exponent, 3, n);
            mpModExp(y, m, exponent, m, n);
            EXPECT_TRUE(y.value().isZero());
            mpModExp(y, m, m, m, n);
            EXPECT_EQ(y.value(), m.value() == one ? one : Natural(0UL));
            Digits all(m);
            mpModExp(all, all, all, all, n);
            EXPECT_EQ(all.vector(), y.vector());
        });
}

TEST_F(Aliasing, ModInvTakesANumberThatIsTheModulus)
{
    forEachLength(
        [this](uint32_t n)
        {
            Digits u = number(n);
            const bool isOne = u.value() == Natural(1);
            Digits inv(n);
            EXPECT_EQ(mpModInv(inv, u, u, n), isOne ? 0 : 1);
            EXPECT_EQ(inv.value(), Natural(isOne ? 1UL : 0UL));
            mpSetDigit(u, 1, n);
            EXPECT_EQ(mpModInv(inv, u, u, n), 0);
            EXPECT_EQ(inv.value(), Natural(1));
            EXPECT_EQ(mpModInv(u, u, u, n), 0);
            EXPECT_EQ(u.value(), Natural(1));
            mpSetDigit(u, 6, n);
            EXPECT_EQ(mpModInv(u, u, u, n), 1);
            EXPECT_TRUE(u.value().isZero());
        });
}

TEST_F(Aliasing, GcdOfANumberAndItselfIsTheNumber)
{
    forEachLength(
        [this](uint32_t n)
        {
            Digits x = number(n);
            const Digits before(x);
            Digits g(n);
            EXPECT_EQ(mpGcd(g, x, x, n), 0);
            EXPECT_EQ(g.vector(), before.vector());
            EXPECT_EQ(mpGcd(x, x, x, n), 0);
            EXPECT_EQ(x.vector(), before.vector());
            mpSetZero(x, n);
            EXPECT_EQ(mpGcd(x, x, x, n), 0);
            EXPECT_TRUE(x.value().isZero());
        });
}

TEST_F(Aliasing, SqrtTakesItsNumberAsTheResult)
{
    forEachLength(
        [this](uint32_t n)
        {
            Digits x = number(n);
            const Natural expected = x.value().squareRoot();
            EXPECT_EQ(mpSqrt(x, x, n), 0);
            EXPECT_EQ(x.value(), expected);
        });
}

TEST_F(Aliasing, SumsAndDifferencesTakeANumberTwice)
{
    forEachLength(
        [this](uint32_t n)
        {
            const Digits u = number(n);
            const Natural twice = u.value() + u.value();
            Digits w(n);
            EXPECT_EQ(mpAdd(w, u, u, n), (twice >> 32 * n).low());
            EXPECT_EQ(w.value(), twice.lowBits(32 * n));
            EXPECT_EQ(mpSubtract(w, u, u, n), 0U);
            EXPECT_TRUE(w.value().isZero());
            EXPECT_EQ(mpCompare(u, u, n), 0);
            EXPECT_EQ(mpEqual(u, u, n), 1);
        });
}

TEST_F(Aliasing, BitOperationsMayWriteIntoTheirSecondNumber)
{
    forEachLength(
        [this](uint32_t n)
        {
            const Digits u = number(n);
            const Digits v = number(n);
            Digits w(v);
            mpXorBits(w, u, w, n);
            EXPECT_EQ(w.value(), u.value() ^ v.value());
            mpSetEqual(w, v, n);
            mpOrBits(w, u, w, n);
            EXPECT_EQ(w.value(), u.value() | v.value());
            mpSetEqual(w, v, n);
            mpAndBits(w, u, w, n);
            EXPECT_EQ(w.value(), u.value() & v.value());
            mpSetEqual(w, v, n);
            mpOrBits(w, w, w, n);
            EXPECT_EQ(w.value(), v.value());
            mpAndBits(w, w, w, n);
            EXPECT_EQ(w.value(), v.value());
            mpXorBits(w, w, w, n);
            EXPECT_TRUE(w.value().isZero());
        });
}

TEST_F(Aliasing, DivisionOfADoubleDigitMayWriteBothResultsIntoIt)
{
    SCOPED_TRACE(random.trace());
    for (int i = 0; i < 1000 && !HasFailure(); ++i)
    {
        const mpDigit v = random.digit() | 0x80000000U;
        const mpDigit u[2] = {random.digit(), random.digit()};
        const Natural value(u, 2);
        for (const bool isSwapped : {false, true})
        {
            mpDigit both[2] = {u[0], u[1]};
            mpDigit* q = &both[isSwapped ? 1 : 0];
            mpDigit* r = &both[isSwapped ? 0 : 1];
            const mpDigit overflow = spDivide(q, r, both, v);
            EXPECT_EQ(Natural(*q) + (Natural(overflow) << 32), value / Natural(v));
            EXPECT_EQ(Natural(*r), value % Natural(v));
        }
    }
}

}  // namespace
