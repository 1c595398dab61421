// SPDX-License-Identifier: Apache-2.0
// Modular arithmetic at the edges.
#include "Digits.h"

namespace
{

using Values = std::vector<mpDigit>;

TEST(ModExp, WithoutLengthGivesMinusOne)
{
    Digits y(1);
    const Digits x{1};
    EXPECT_EQ(mpModExp(y, x, x, x, 0), -1);
    EXPECT_TRUE(y.isUntouched());
}

TEST(ModExp, WithExponentOneHandsTheBaseOn)
{
    const Digits x{100, 5};
    const Digits e{1, 0};
    const Digits m{7, 0};
    Digits y(2);
    EXPECT_EQ(mpModExp(y, x, e, m, 2), 0);
    EXPECT_EQ(y.vector(), x.vector()) << "not reduced";
}

TEST(ModExp, WithExponentTwoReducesTheSquare)
{
    const Digits x{100, 5};
    const Digits e{2, 0};
    const Digits m{7, 0};
    Digits y(2);
    EXPECT_EQ(mpModExp(y, x, e, m, 2), 0);
    EXPECT_EQ(y.value(), x.value() * x.value() % Natural(7));
}

TEST(ModExp, WithoutExponentOrModulusStaysInItsArrays)
{
    const Digits x{100, 5};
    const Digits none{0, 0};
    const Digits one{1, 0};
    const Digits big{0, 0x80000000U};
    for (const Digits* pModulus : {&one, &big, &none})
    {
        Digits y(2);
        EXPECT_EQ(mpModExp(y, x, none, *pModulus, 2), 0);
        EXPECT_EQ(y.value(), Natural(pModulus == &big ? 1UL : 0UL));
    }
    Digits y(2);
    EXPECT_EQ(mpModExp(y, x, big, none, 2), 0);
    EXPECT_EQ(y.value(), Natural(0UL));
}

TEST(ModExp, StepsToTheNextDigitOfTheExponent)
{
    for (const Values& exponent :
         {Values{0, 1, 0}, Values{1, 1, 0}, Values{0x80000000U, 1, 0}, Values{0, 0, 1}, Values{0, 0x80000000U, 0},
          Values{0xFFFFFFFFU, 0, 0}, Values{2, 0, 0}, Values{0x80000000U, 0, 0}, Values{3, 0, 0}, Values{65537, 0, 0}})
    {
        const Digits x{0x12345678U, 0x9ABCDEF0U, 3};
        const Digits e(exponent);
        const Digits m{0xFFFFFFF1U, 0, 0xF0000001U};
        Digits y(3);
        EXPECT_EQ(mpModExp(y, x, e, m, 3), 0);
        EXPECT_EQ(y.value(), x.value().powerModulo(e.value(), m.value())) << e.value();
    }
}

TEST(ModExp, ModuloOneGivesZero)
{
    const Digits x{5};
    const Digits e{2};
    const Digits m{1};
    Digits y(1);
    EXPECT_EQ(mpModExp(y, x, e, m, 1), 0);
    EXPECT_EQ(y[0], 0U);
}

TEST(ModInv, WorkedValues)
{
    struct Case
    {
        mpDigit u, v;
        int32_t result;
        mpDigit inverse;
    };
    for (const Case& one : {Case{3, 7, 0, 5}, Case{2, 4, 1, 0}, Case{0, 7, 1, 0}, Case{1, 0, 0, 1}, Case{2, 0, 1, 0},
                            Case{0, 0, 1, 0}, Case{1, 1, 0, 1}, Case{0, 1, 0, 1}, Case{6, 7, 0, 6}, Case{1, 7, 0, 1},
                            Case{10, 7, 0, 5}, Case{17, 3120, 0, 2753}})
    {
        const Digits u{one.u, 0};
        const Digits v{one.v, 0};
        Digits inv(2);
        EXPECT_EQ(mpModInv(inv, u, v, 2), one.result) << one.u << " modulo " << one.v;
        EXPECT_EQ(inv.vector(), (Values{one.inverse, 0})) << one.u << " modulo " << one.v;
    }
}

TEST(Gcd, WorkedValues)
{
    struct Case
    {
        mpDigit x, y, g;
    };
    for (const Case& one : {Case{0, 9, 9}, Case{9, 0, 9}, Case{0, 0, 0}, Case{12, 18, 6}, Case{18, 12, 6},
                            Case{7, 7, 7}, Case{1, 5, 1}, Case{17, 31, 1}})
    {
        const Digits x{one.x, 0};
        const Digits y{one.y, 0};
        Digits g(2);
        EXPECT_EQ(mpGcd(g, x, y, 2), 0);
        EXPECT_EQ(g.vector(), (Values{one.g, 0})) << one.x << ", " << one.y;
    }
}

// Neighbours in the Fibonacci series take the most rounds.
TEST(Gcd, OfFibonacciNumbers)
{
    const Digits x(Natural::fibonacci(300), 8);
    const Digits y(Natural::fibonacci(301), 8);
    Digits g(8);
    mpGcd(g, x, y, 8);
    EXPECT_EQ(g.value(), Natural(1));
    const Digits z(Natural::fibonacci(120), 8);
    mpGcd(g, x, z, 8);
    EXPECT_EQ(g.value(), Natural::fibonacci(60));

    Digits inv(8);
    EXPECT_EQ(mpModInv(inv, x, y, 8), 0);
    EXPECT_EQ(inv.value() * x.value() % y.value(), Natural(1));
}

TEST(Sqrt, WorkedValues)
{
    struct Case
    {
        mpDigit x, s;
    };
    for (const Case& one : {Case{0, 0}, Case{1, 1}, Case{2, 1}, Case{3, 1}, Case{4, 2}, Case{8, 2}, Case{9, 3},
                            Case{10, 3}, Case{15, 3}, Case{16, 4}, Case{24, 4}, Case{25, 5}, Case{0xFFFFFFFFU, 65535}})
    {
        const Digits x{one.x, 0};
        Digits s(2);
        EXPECT_EQ(mpSqrt(s, x, 2), 0);
        EXPECT_EQ(s.vector(), (Values{one.s, 0})) << one.x;
    }
}

TEST(Sqrt, OfAllSmallNumbers)
{
    for (mpDigit i = 0; i < 5000; ++i)
    {
        const Digits x{i};
        Digits s(1);
        mpSqrt(s, x, 1);
        EXPECT_EQ(s.value(), x.value().squareRoot()) << i;
    }
}

TEST(Modulo, IntoTheDivisor)
{
    const Digits u{100, 0, 5};
    Digits v{7, 1};
    const Natural expected = u.value() % v.value();
    EXPECT_EQ(mpModulo(v, u, 3, v, 2), 0);
    EXPECT_EQ(v.value(), expected);
}

TEST(Modulo, OfAShorterNumberFillsUp)
{
    const Digits u{9};
    Digits v{7, 1, 5};
    Digits r(3);
    EXPECT_EQ(mpModulo(r, u, 1, v, 3), 0);
    EXPECT_EQ(r.vector(), (Values{9, 0, 0}));
    EXPECT_EQ(v.vector(), (Values{7, 1, 5}));
    EXPECT_EQ(mpModulo(r, u, 0, v, 3), 0);
    EXPECT_EQ(r.vector(), (Values{0, 0, 0}));
}

TEST(Modulo, ByZeroGivesZero)
{
    const Digits u{9, 8};
    Digits zero{0, 0};
    Digits r(2);
    EXPECT_EQ(mpModulo(r, u, 2, zero, 2), 0);
    EXPECT_TRUE(r.value().isZero());
    EXPECT_EQ(mpModMult(r, u, u, zero, 2), 0);
    EXPECT_TRUE(r.value().isZero());
}

// A published factorisation (RSA-100) and a key made of it: what one exponent does, the other undoes.
TEST(PublishedValues, AKeyFromAKnownFactorisation)
{
    constexpr uint32_t n = 11;
    Digits p(n);
    Digits q(n);
    Digits product(n);
    mpConvFromDecimal(p, n, "37975227936943673922808872755445627854565536638199");
    mpConvFromDecimal(q, n, "40094690950920881030683735292761468389214899724061");
    mpConvFromDecimal(
        product, n,
        "1522605027922533360535618378132637429718068114961380688657908494580122963258952897654000350692006"
        "139");
    Digits m(size_t{2} * n);
    mpMultiply(m, p, q, n);
    EXPECT_EQ(m.value(), product.value());

    Digits pMinus1(n);
    Digits qMinus1(n);
    mpShortSub(pMinus1, p, 1, n);
    mpShortSub(qMinus1, q, 1, n);
    Digits phi(size_t{2} * n);
    mpMultiply(phi, pMinus1, qMinus1, n);
    const Digits e(Natural(65537), n);
    Digits d(n);
    ASSERT_EQ(mpModInv(d, e, phi, n), 0);

    const Digits x(Natural("123456789012345678901234567890"), n);
    Digits y(n);
    Digits z(n);
    mpModExp(y, x, e, product, n);
    EXPECT_NE(y.value(), x.value());
    mpModExp(z, y, d, product, n);
    EXPECT_EQ(z.value(), x.value());
}

}  // namespace
