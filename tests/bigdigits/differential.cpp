// SPDX-License-Identifier: Apache-2.0
// Every arithmetic function against GMP: at each length from 0 to 300 digits, and in a million random cases.
#include "Digits.h"
#include "RandomNumbers.h"

#include <algorithm>
#include <cstring>
#include <ostream>

namespace
{

Natural base(size_t n)
{
    return Natural::powerOfTwo(32 * n);
}

// A random operand in a guarded array, and its value.
struct Operand
{
    Operand(RandomNumbers& random, size_t n) : digits(random.number(n)), value(digits.value()) {}
    bool isUnchanged() const { return digits.value() == value; }

    Digits digits;
    Natural value;
};

int32_t order(const Natural& a, const Natural& b)
{
    if (a == b)
    {
        return 0;
    }
    return a > b ? 1 : -1;
}

// ---- Digit arrays and basic arithmetic

void setting(RandomNumbers& random, uint32_t n)
{
    Digits a(n);
    mpSetZero(a, n);
    EXPECT_TRUE(a.value().isZero());

    const mpDigit d = random.digit();
    Digits b(n == 0 ? 1 : n);
    mpSetDigit(b, d, n);
    EXPECT_EQ(b.value(), Natural(d));

    Operand x(random, n);
    mpSetEqual(a, x.digits, n);
    EXPECT_EQ(a.value(), x.value);
    mpSetEqual(a, a, n);
    EXPECT_EQ(a.value(), x.value);
}

void comparing(RandomNumbers& random, uint32_t n)
{
    Operand a(random, n);
    Operand b(random, n);
    if (n != 0 && random.oneIn(2))
    {
        // Different in one bit, or not at all.
        mpSetEqual(b.digits, a.digits, n);
        b.digits[random.below(n)] ^= random.below(2) << random.below(32);
        b.value = b.digits.value();
    }
    EXPECT_EQ(mpCompare(a.digits, b.digits, n), order(a.value, b.value));
    EXPECT_EQ(mpEqual(a.digits, b.digits, n), n == 0 ? -1 : a.value == b.value);
    EXPECT_EQ(mpIsZero(a.digits, n), n == 0 ? -1 : a.value.isZero());
    EXPECT_EQ(mpBitLength(a.digits, n), a.value.bits());
    EXPECT_EQ(mpSizeof(a.digits, n), (a.value.bits() + 31) / 32);
    const mpDigit d = random.oneIn(2) ? random.digit() : a.value.low();
    EXPECT_EQ(mpShortCmp(a.digits, d, n), order(a.value, Natural(d)));
}

void addition(RandomNumbers& random, uint32_t n)
{
    Operand u(random, n);
    const Operand v(random, n);
    Digits w(n);
    const Natural sum = u.value + v.value;
    EXPECT_EQ(mpAdd(w, u.digits, v.digits, n), (sum >> 32 * n).low());
    EXPECT_EQ(w.value(), sum.lowBits(32 * n));
    EXPECT_TRUE(u.isUnchanged() && v.isUnchanged());
    EXPECT_EQ(mpAdd(u.digits, u.digits, v.digits, n), (sum >> 32 * n).low());
    EXPECT_EQ(u.digits.value(), sum.lowBits(32 * n));
}

void subtraction(RandomNumbers& random, uint32_t n)
{
    Operand u(random, n);
    const Operand v(random, n);
    Digits w(n);
    const mpDigit borrow = u.value < v.value ? 1 : 0;
    const Natural difference = (u.value - v.value).lowBits(32 * n);
    EXPECT_EQ(mpSubtract(w, u.digits, v.digits, n), borrow);
    EXPECT_EQ(w.value(), difference);
    EXPECT_TRUE(u.isUnchanged() && v.isUnchanged());
    EXPECT_EQ(mpSubtract(u.digits, u.digits, v.digits, n), borrow);
    EXPECT_EQ(u.digits.value(), difference);
}

void multiplication(RandomNumbers& random, uint32_t n)
{
    const Operand u(random, n);
    const Operand v(random, n);
    Digits w(size_t{2} * n);
    EXPECT_EQ(mpMultiply(w, u.digits, v.digits, n), 0);
    EXPECT_EQ(w.value(), u.value * v.value);
    EXPECT_TRUE(u.isUnchanged() && v.isUnchanged());
}

void squaring(RandomNumbers& random, uint32_t n)
{
    const Operand x(random, n);
    Digits square(size_t{2} * n);
    Digits product(size_t{2} * n);
    EXPECT_EQ(mpSquare(square, x.digits, n), 0);
    EXPECT_EQ(square.value(), x.value * x.value);
    EXPECT_EQ(mpMultiply(product, x.digits, x.digits, n), 0);
    EXPECT_EQ(product.vector(), square.vector());
    EXPECT_TRUE(x.isUnchanged());
}

// The documented carry of a left shift, from the number before and after it is moved by whole digits.
mpDigit carryLeft(const Natural& b, uint32_t shift, uint32_t n, bool inPlace)
{
    const size_t whole = shift / 32;
    const uint32_t bits = shift % 32;
    const Natural moved = (b << 32 * whole).lowBits(32 * size_t{n});
    const mpDigit pushedOut = ((moved << bits) >> 32 * size_t{n}).low();
    if (whole == 0 || whole > n)
    {
        return pushedOut;
    }
    const mpDigit read = ((inPlace ? moved : b) >> 32 * (n - whole)).low();
    return read << bits | pushedOut;
}

void shiftingLeft(RandomNumbers& random, uint32_t n)
{
    Operand b(random, n);
    const uint32_t shift = random.oneIn(2) ? random.below(32) : random.between(32, 32 * (n + 3));
    const Natural shifted = (b.value << shift).lowBits(32 * size_t{n});
    Digits a(n);
    EXPECT_EQ(mpShiftLeft(a, b.digits, shift, n), carryLeft(b.value, shift, n, false)) << "shift " << shift;
    EXPECT_EQ(a.value(), shifted) << "shift " << shift;
    EXPECT_TRUE(b.isUnchanged());
    EXPECT_EQ(mpShiftLeft(b.digits, b.digits, shift, n), carryLeft(b.value, shift, n, true)) << "shift " << shift;
    EXPECT_EQ(b.digits.value(), shifted) << "shift " << shift;
}

// b is the whole array that is read, which may be longer than the n digits that are shifted.
mpDigit carryRight(const Digits& b, uint32_t shift, uint32_t n, bool inPlace)
{
    const size_t whole = shift / 32;
    const uint32_t bits = shift % 32;
    const Natural moved = Natural(b, n) >> 32 * whole;
    const mpDigit pushedOut = (moved << (32 - bits)).low();
    if (whole == 0)
    {
        return pushedOut;
    }
    const mpDigit read = inPlace && whole <= n ? (moved >> 32 * (whole - 1)).low() : b[whole - 1];
    return read >> bits | pushedOut;
}

void shiftingRight(RandomNumbers& random, uint32_t n)
{
    const uint32_t shift = random.oneIn(2) ? random.below(32) : random.between(32, 32 * (n + 3));
    Digits b(random.number(std::max(n, shift / 32)));
    const Digits before(b);
    const Natural shifted = Natural(b, n) >> shift;
    Digits a(n);
    EXPECT_EQ(mpShiftRight(a, b, shift, n), carryRight(before, shift, n, false)) << "shift " << shift;
    EXPECT_EQ(a.value(), shifted) << "shift " << shift;
    EXPECT_EQ(b.vector(), before.vector());
    EXPECT_EQ(mpShiftRight(b, b, shift, n), carryRight(before, shift, n, true)) << "shift " << shift;
    EXPECT_EQ(Natural(b, n), shifted) << "shift " << shift;
}

void bits(RandomNumbers& random, uint32_t n)
{
    Operand u(random, n);
    Operand v(random, n);
    Digits w(n);
    mpXorBits(w, u.digits, v.digits, n);
    EXPECT_EQ(w.value(), u.value ^ v.value);
    mpOrBits(w, u.digits, v.digits, n);
    EXPECT_EQ(w.value(), u.value | v.value);
    mpAndBits(w, u.digits, v.digits, n);
    EXPECT_EQ(w.value(), u.value & v.value);
    EXPECT_TRUE(u.isUnchanged() && v.isUnchanged());

    mpXorBits(u.digits, u.digits, v.digits, n);
    EXPECT_EQ(u.digits.value(), u.value ^ v.value);
    mpOrBits(v.digits, u.digits, v.digits, n);
    EXPECT_EQ(v.digits.value(), (u.value ^ v.value) | v.value);
    mpAndBits(v.digits, v.digits, v.digits, n);
    EXPECT_EQ(v.digits.value(), (u.value ^ v.value) | v.value);
    mpXorBits(u.digits, u.digits, u.digits, n);
    EXPECT_TRUE(u.digits.value().isZero());

    Operand a(random, n);
    const uint32_t power = random.below(32 * (n + 2));
    mpModPowerOf2(a.digits, n, power);
    EXPECT_EQ(a.digits.value(), a.value.lowBits(power)) << "power " << power;
}

void shortArithmetic(RandomNumbers& random, uint32_t n)
{
    // With no digits, digit 0 takes part all the same in the sum and the difference.
    const uint32_t held = n == 0 ? 1 : n;
    Operand u(random, held);
    const mpDigit d = random.digit();
    Digits w(held);
    const Natural sum = u.value + Natural(d);
    EXPECT_EQ(mpShortAdd(w, u.digits, d, n), (sum >> 32 * held).low());
    EXPECT_EQ(w.value(), sum.lowBits(32 * held));
    const Natural difference = (u.value - Natural(d)).lowBits(32 * held);
    EXPECT_EQ(mpShortSub(w, u.digits, d, n), u.value < Natural(d) ? 1U : 0U);
    EXPECT_EQ(w.value(), difference);
    EXPECT_TRUE(u.isUnchanged());

    Digits inPlace(u.digits);
    EXPECT_EQ(mpShortAdd(inPlace, inPlace, d, n), (sum >> 32 * held).low());
    EXPECT_EQ(inPlace.value(), sum.lowBits(32 * held));
    EXPECT_EQ(mpShortSub(inPlace, inPlace, d, n), (sum >> 32 * held).low());
    EXPECT_EQ(inPlace.value(), u.value);

    Operand x(random, n);
    Digits p(n);
    const Natural product = x.value * Natural(d);
    EXPECT_EQ(mpShortMult(p, x.digits, d, n), (product >> 32 * n).low());
    EXPECT_EQ(p.value(), product.lowBits(32 * n));
    EXPECT_TRUE(x.isUnchanged());
    EXPECT_EQ(mpShortMult(x.digits, x.digits, d, n), (product >> 32 * n).low());
    EXPECT_EQ(x.digits.value(), product.lowBits(32 * n));
}

void singleDigits(RandomNumbers& random, uint32_t)
{
    const mpDigit x = random.digit();
    const mpDigit y = random.digit();
    Digits p(2);
    EXPECT_EQ(spMultiply(p, x, y), 0);
    EXPECT_EQ(p.value(), Natural(x) * Natural(y)) << x << " * " << y;

    const mpDigit v = random.digit() | 0x80000000U;
    const Digits u{random.digit(), random.digit()};
    mpDigit q = Digits::rubbish;
    mpDigit r = Digits::rubbish;
    const mpDigit overflow = spDivide(&q, &r, u, v);
    const Natural quotient = u.value() / Natural(v);
    EXPECT_EQ(Natural(overflow), quotient >> 32) << u.value() << " / " << v;
    EXPECT_EQ(q, quotient.low()) << u.value() << " / " << v;
    EXPECT_EQ(Natural(r), u.value() % Natural(v)) << u.value() << " / " << v;
}

// ---- Division

void dividing(RandomNumbers& random, uint32_t n)
{
    const uint32_t vdigits = random.oneIn(3) ? n : random.between(0, n);
    Operand u(random, n);
    Operand v(random, vdigits);
    if (random.oneIn(4) && vdigits != 0)
    {
        // Near a multiple of v: quotients and remainders at the ends of their ranges.
        const Natural multiple = v.value * Natural(random.number(n - vdigits + 1));
        const Natural near = multiple + Natural(random.below(3)) - Natural(1) + base(n);
        u.value = near.lowBits(32 * n);
        const std::vector<mpDigit> digits = u.value.digits(n);
        mpSetEqual(u.digits, digits.data(), n);
    }
    Digits q(n);
    Digits r(n);
    const int32_t result = mpDivide(q, r, u.digits, n, v.digits, vdigits);
    if (v.value.isZero())
    {
        EXPECT_EQ(result, -1);
        EXPECT_TRUE(q.value().isZero() && r.value().isZero());
    }
    else
    {
        EXPECT_EQ(result, 0);
        EXPECT_EQ(q.value(), u.value / v.value);
        EXPECT_EQ(r.value(), u.value % v.value);
    }
    EXPECT_TRUE(u.isUnchanged());
    EXPECT_TRUE(v.isUnchanged()) << "the divisor comes back";
}

void shortDividing(RandomNumbers& random, uint32_t n)
{
    Operand u(random, n);
    const mpDigit d = random.oneIn(3) ? random.digit() >> random.below(32) : random.digit();
    Digits q(n);
    const Natural divisor(d);
    const mpDigit remainder = mpShortDiv(q, u.digits, d, n);
    EXPECT_EQ(mpShortMod(u.digits, d, n), remainder);
    EXPECT_TRUE(u.isUnchanged());
    if (d == 0)
    {
        EXPECT_EQ(remainder, 0U);
        EXPECT_TRUE(q.isUntouched());
        return;
    }
    EXPECT_EQ(Natural(remainder), u.value % divisor) << u.value << " / " << d;
    EXPECT_EQ(q.value(), u.value / divisor) << u.value << " / " << d;
    EXPECT_EQ(mpShortDiv(u.digits, u.digits, d, n), remainder);
    EXPECT_EQ(u.digits.value(), u.value / divisor);
}

// ---- Modular arithmetic

void remainders(RandomNumbers& random, uint32_t n)
{
    const uint32_t udigits = random.between(0, 2 * n);
    const Operand u(random, udigits);
    Operand v(random, n);
    Digits r(n);
    const Natural expected = v.value.isZero() ? Natural(0UL) : u.value % v.value;
    EXPECT_EQ(mpModulo(r, u.digits, udigits, v.digits, n), 0);
    EXPECT_EQ(r.value(), expected) << u.value << " % " << v.value;
    EXPECT_TRUE(u.isUnchanged() && v.isUnchanged());

    if (udigits >= n)
    {
        // Into the number that is divided: the low n digits of it.
        Digits in(u.digits);
        EXPECT_EQ(mpModulo(in, in, udigits, v.digits, n), 0);
        EXPECT_EQ(Natural(in, n), expected);
    }
    EXPECT_EQ(mpModulo(v.digits, u.digits, udigits, v.digits, n), 0);
    EXPECT_EQ(v.digits.value(), expected);
}

void modularProducts(RandomNumbers& random, uint32_t n)
{
    const Operand x(random, n);
    const Operand y(random, n);
    const Operand m(random, n);
    const Natural expected = m.value.isZero() ? Natural(0UL) : x.value * y.value % m.value;
    Digits a(n);
    EXPECT_EQ(mpModMult(a, x.digits, y.digits, m.digits, n), 0);
    EXPECT_EQ(a.value(), expected);
    EXPECT_TRUE(x.isUnchanged() && y.isUnchanged() && m.isUnchanged());

    for (const Operand* pInto : {&x, &y, &m})
    {
        Digits xs(x.digits);
        Digits ys(y.digits);
        Digits ms(m.digits);
        Digits& into = pInto == &x ? xs : pInto == &y ? ys : ms;
        EXPECT_EQ(mpModMult(into, xs, ys, ms, n), 0);
        EXPECT_EQ(into.value(), expected);
    }
}

void modularPowers(RandomNumbers& random, uint32_t n, uint32_t longestExponent)
{
    Operand x(random, n);
    Operand e(random, n);
    Operand m(random, n);
    Digits y(n);
    if (n == 0)
    {
        EXPECT_EQ(mpModExp(y, x.digits, e.digits, m.digits, 0), -1);
        return;
    }
    if (longestExponent < n)
    {
        mpModPowerOf2(e.digits, n, 32 * longestExponent);
        e.value = e.digits.value();
    }
    for (Operand* pNotZero : {&e, &m})
    {
        if (pNotZero->value.isZero())
        {
            mpSetDigit(pNotZero->digits, random.between(1, 5), n);
            pNotZero->value = pNotZero->digits.value();
        }
    }
    const Natural expected = e.value == Natural(1) ? x.value : x.value.powerModulo(e.value, m.value);
    EXPECT_EQ(mpModExp(y, x.digits, e.digits, m.digits, n), 0);
    EXPECT_EQ(y.value(), expected) << x.value << " ^ " << e.value << " % " << m.value;
    EXPECT_TRUE(x.isUnchanged() && e.isUnchanged() && m.isUnchanged());

    Digits& into = random.oneIn(3) ? x.digits : random.oneIn(2) ? e.digits : m.digits;
    EXPECT_EQ(mpModExp(into, x.digits, e.digits, m.digits, n), 0);
    EXPECT_EQ(into.value(), expected);
}

void inverses(RandomNumbers& random, uint32_t n)
{
    Operand u(random, n);
    Operand v(random, n);
    Digits inv(n);
    const int32_t result = mpModInv(inv, u.digits, v.digits, n);
    EXPECT_TRUE(u.isUnchanged() && v.isUnchanged());
    Natural expected;
    if (v.value <= Natural(1))
    {
        // Modulo 1 everything has the inverse 1; modulo 0 only 1 has one.
        const bool exists = n != 0 && (v.value == Natural(1) || u.value == Natural(1));
        EXPECT_EQ(result, exists ? 0 : 1);
        expected = Natural(exists ? 1UL : 0UL);
    }
    else
    {
        const bool exists = u.value.inverseModulo(v.value, expected);
        EXPECT_EQ(result, exists ? 0 : 1);
        expected = exists ? expected : Natural(0UL);
    }
    EXPECT_EQ(inv.value(), expected) << "inverse of " << u.value << " modulo " << v.value;

    Digits& into = random.oneIn(2) ? u.digits : v.digits;
    EXPECT_EQ(mpModInv(into, u.digits, v.digits, n), result);
    EXPECT_EQ(into.value(), expected);
}

void divisors(RandomNumbers& random, uint32_t n)
{
    Operand x(random, n);
    Operand y(random, n);
    if (n > 1 && random.oneIn(2))
    {
        const Natural common(random.number(n / 2));
        for (Operand* pMultiple : {&x, &y})
        {
            pMultiple->value = (common * Natural(random.number(n - n / 2))).lowBits(32 * n);
            mpSetEqual(pMultiple->digits, pMultiple->value.digits(n).data(), n);
        }
    }
    const Natural expected = x.value.gcd(y.value);
    Digits g(n);
    EXPECT_EQ(mpGcd(g, x.digits, y.digits, n), 0);
    EXPECT_EQ(g.value(), expected) << x.value << ", " << y.value;
    EXPECT_TRUE(x.isUnchanged() && y.isUnchanged());
    Digits& into = random.oneIn(2) ? x.digits : y.digits;
    EXPECT_EQ(mpGcd(into, x.digits, y.digits, n), 0);
    EXPECT_EQ(into.value(), expected);
}

void roots(RandomNumbers& random, uint32_t n)
{
    Operand x(random, n);
    if (random.oneIn(3) && n > 1)
    {
        // Around a square.
        const Natural root(random.number(n / 2));
        x.value = (root * root + Natural(random.below(3)) + base(n) - Natural(1)).lowBits(32 * n);
        mpSetEqual(x.digits, x.value.digits(n).data(), n);
    }
    Digits s(n);
    EXPECT_EQ(mpSqrt(s, x.digits, n), 0);
    EXPECT_EQ(s.value(), x.value.squareRoot()) << x.value;
    EXPECT_TRUE(x.isUnchanged());
    EXPECT_EQ(mpSqrt(x.digits, x.digits, n), 0);
    EXPECT_EQ(x.digits.value(), x.value.squareRoot());
}

// ---- Conversions

void octets(RandomNumbers& random, uint32_t n)
{
    const Operand a(random, n);
    const uint32_t nbytes = random.between(0, 4 * n + 5);
    std::vector<unsigned char> written(nbytes + 1, 0xEE);
    EXPECT_EQ(mpConvToOctets(a.digits, n, written.data(), nbytes), (a.value.bits() + 7) / 8);
    EXPECT_EQ(written[nbytes], 0xEE);
    Natural left = a.value;
    for (size_t i = nbytes; i-- > 0; left = left >> 8)
    {
        EXPECT_EQ(written[i], left.low() & 0xFF) << "octet " << i << " of " << nbytes;
    }

    const uint32_t bdigits = random.between(0, n + 1);
    Digits b(bdigits);
    EXPECT_EQ(mpConvFromOctets(b, bdigits, written.data(), nbytes), std::min(bdigits, (nbytes + 3) / 4));
    EXPECT_EQ(b.value(), a.value.lowBits(8 * size_t{nbytes}).lowBits(32 * size_t{bdigits}));
}

void texts(RandomNumbers& random, uint32_t n)
{
    const Operand a(random, n);
    const bool isDecimal = random.oneIn(2);
    const std::string whole = n == 0 ? "" : a.value.text(isDecimal ? 10 : 16);
    const auto convert = isDecimal ? mpConvToDecimal : mpConvToHex;
    EXPECT_EQ(convert(a.digits, n, nullptr, 5), whole.size());

    const uint32_t smax = random.oneIn(2) ? static_cast<uint32_t>(whole.size()) + 1 + random.below(3)
                                          : random.between(2, static_cast<uint32_t>(whole.size()) + 2);
    std::string written(smax + 1, '#');
    EXPECT_EQ(convert(a.digits, n, written.data(), smax), whole.size());
    std::string expected = whole.substr(0, smax - 1);
    expected += '\0';
    while (expected.size() < smax)
    {
        expected += expected.size() + 1 < smax ? '0' : '\0';
    }
    EXPECT_EQ(written, expected + '#') << a.value << " into " << smax;

    // Read again, with other characters strewn in.
    std::string strewn;
    for (const char ch : whole)
    {
        while (random.oneIn(8))
        {
            static const std::string others = " ,.-+xyz:/@`g\t\x80\xb5\xff";
            strewn += others[random.below(static_cast<uint32_t>(others.size()))];
        }
        strewn += random.oneIn(2) ? static_cast<char>(toupper(ch)) : ch;
    }
    const uint32_t bdigits = random.between(0, n + 1);
    Digits b(bdigits);
    const uint32_t used = (isDecimal ? mpConvFromDecimal : mpConvFromHex)(b, bdigits, strewn.c_str());
    EXPECT_EQ(b.value(), a.value.lowBits(32 * size_t{bdigits})) << strewn;
    EXPECT_GE(used, mpSizeof(b, bdigits));
}

// ---------------------------------------------------------------------------------------------------------------------

struct Operation
{
    const char* name;
    void (*check)(RandomNumbers&, uint32_t n);
    uint32_t longest;  // digits of a random case
    uint32_t share;    // of the random cases
};

std::ostream& operator<<(std::ostream& stream, const Operation& operation)
{
    return stream << operation.name;
}

const Operation operations[] = {
    {"setting", setting, 40, 2},
    {"comparing", comparing, 40, 4},
    {"addition", addition, 40, 5},
    {"subtraction", subtraction, 40, 5},
    {"multiplication", multiplication, 24, 9},
    {"squaring", squaring, 24, 9},
    {"shiftingLeft", shiftingLeft, 20, 6},
    {"shiftingRight", shiftingRight, 20, 6},
    {"bits", bits, 20, 4},
    {"shortArithmetic", shortArithmetic, 20, 6},
    {"singleDigits", singleDigits, 1, 9},
    {"dividing", dividing, 24, 14},
    {"shortDividing", shortDividing, 20, 6},
    {"remainders", remainders, 12, 4},
    {"modularProducts", modularProducts, 12, 3},
    {"modularPowers", [](RandomNumbers& random, uint32_t n) { modularPowers(random, n, 1); }, 8, 1},
    {"inverses", inverses, 6, 1},
    {"divisors", divisors, 6, 1},
    {"roots", roots, 8, 1},
    {"octets", octets, 12, 2},
    {"texts", texts, 8, 2},
};

class EachLength : public testing::TestWithParam<Operation>
{
};

TEST_P(EachLength, AgreesWithGmp)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    const uint32_t tries = casesToRun(10);
    for (uint32_t n = 0; n <= 300 && !HasFailure(); ++n)
    {
        SCOPED_TRACE(n);
        // The costly ones take the longer lengths in steps.
        const bool isCostly = GetParam().share == 1 || GetParam().check == texts;
        const bool isSkipped = isCostly && n > 64 && n % 20 != 0;
        for (uint32_t i = 0; i < (isSkipped ? 0 : isCostly ? 1 : tries); ++i)
        {
            GetParam().check(random, n);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Differential, EachLength, testing::ValuesIn(operations),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST(Differential, AMillionRandomCasesAgreeWithGmp)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    std::vector<const Operation*> deck;
    for (const Operation& operation : operations)
    {
        deck.insert(deck.end(), operation.share, &operation);
    }
    const uint32_t count = casesToRun(1000000);
    for (uint32_t i = 0; i < count && !HasFailure(); ++i)
    {
        const Operation& operation = *deck[random.below(static_cast<uint32_t>(deck.size()))];
        SCOPED_TRACE(operation.name);
        // Mostly short: there the ends of ranges meet most often.
        operation.check(random, random.oneIn(2) ? random.between(0, 3) : random.between(0, operation.longest));
    }
}

TEST(Differential, ModularPowersWithFullExponentsAgreeWithGmp)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    const uint32_t count = casesToRun(2000);
    for (uint32_t i = 0; i < count && !HasFailure(); ++i)
    {
        modularPowers(random, random.oneIn(100) ? 32 : random.between(1, 8), 32);
    }
}

}  // namespace
