// Fast forms of products and quotients against their plain forms, at every length and every alignment. The source is
// included, since these are its private matters; so this program is built once for each way of building the module.
#include "bigdigits.cpp"

#include "Digits.h"
#include "RandomNumbers.h"

namespace
{

// What every operation below is tried on: arrays that begin anywhere within a vector register.
class Shifted
{
public:
    Shifted(const std::vector<mpDigit>& values, size_t offset)
        : _offset(offset % columns), _all(values.size() + 2 * columns, rubbish)
    {
        std::copy(values.begin(), values.end(), begin());
    }
    Shifted(const Shifted&) = delete;
    Shifted& operator=(const Shifted&) = delete;
    ~Shifted()
    {
        for (size_t i = 0; i < _all.size(); i++)
        {
            if (i < _offset || i >= _offset + _all.size() - 2 * columns)
            {
                EXPECT_EQ(_all[i], rubbish) << "written outside of the array";
            }
        }
    }
    mpDigit* get() { return _all.data() + _offset; }
    std::vector<mpDigit> vector()
    {
        return {begin(), begin() + static_cast<std::ptrdiff_t>(_all.size() - 2 * columns)};
    }

private:
    static constexpr size_t columns = 16;
    static constexpr mpDigit rubbish = 0x5EAF00D5U;

    std::vector<mpDigit>::iterator begin() { return _all.begin() + static_cast<std::ptrdiff_t>(_offset); }

    size_t _offset;
    std::vector<mpDigit> _all;
};

struct Form
{
    const char* name;
    bool isThere;
    void (*multiply)(mpDigit w[], const mpDigit u[], size_t un, const mpDigit v[], size_t vn);
    bool (*divide)(mpDigit q[], mpDigit r[], mpDigit top, const mpDigit v[], size_t n, size_t m);
    size_t shortest;
};

std::ostream& operator<<(std::ostream& stream, const Form& form)
{
    return stream << form.name;
}

bool divideByRowsAlways(mpDigit q[], mpDigit r[], mpDigit top, const mpDigit v[], size_t n, size_t m)
{
    divideByRows(q, r, top, v, n, m);
    return true;
}

const Form forms[] = {
    {"Rows", true, multiplyByRows, divideByRowsAlways, 2},
#if MP_HAS_COLUMNS
    {"Columns128Bits", true, multiplyBy128Bits, divideBy128Bits, shortestForColumns},
#if defined(__x86_64__)
    {"Columns256Bits", has256Bits(), multiplyBy256Bits, divideBy256Bits, shortestForColumns},
    {"Columns512Bits", has512Bits(), multiplyBy512Bits, divideBy512Bits, shortestForColumns},
#endif
    {"ColumnsForThisProcessor", true, multiplyByColumns, divideByColumns, shortestForColumns},
#endif
};

class EachForm : public testing::TestWithParam<Form>
{
protected:
    void SetUp() override
    {
        if (!GetParam().isThere)
        {
            GTEST_SKIP() << "this processor has no such registers";
        }
    }

    void checkProduct(const std::vector<mpDigit>& u, const std::vector<mpDigit>& v, size_t alignment)
    {
        Shifted factor(u, alignment);
        Shifted other(v, alignment / 3);
        Shifted product(std::vector<mpDigit>(u.size() + v.size(), 0xDEADBEEFU), alignment / 7);
        std::vector<mpDigit> plain(u.size() + v.size());
        GetParam().multiply(product.get(), factor.get(), u.size(), other.get(), v.size());
        multiplyByRows(plain.data(), u.data(), u.size(), v.data(), v.size());
        ASSERT_EQ(product.vector(), plain);
        ASSERT_EQ(Natural(plain), Natural(u) * Natural(v));
        ASSERT_EQ(factor.vector(), u);
        ASSERT_EQ(other.vector(), v);
    }

    // v is made normalised. As in a division, the digit shifted out at the top is less than the top digit of v.
    void checkQuotient(std::vector<mpDigit> u, std::vector<mpDigit> v, size_t alignment, bool mustSucceed = false)
    {
        const size_t n = v.size();
        v[n - 1] |= topBit;
        const mpDigit top = u.back();
        u.pop_back();
        const size_t m = u.size() - n;
        const Natural whole = Natural(u) + (Natural(top) << 32 * u.size());
        if (top >= v[n - 1])
        {
            return;
        }
        Shifted remainder(u, alignment);
        Shifted divisor(v, alignment / 3);
        Shifted quotient(std::vector<mpDigit>(m + 1, 0xDEADBEEFU), alignment / 7);
        std::vector<mpDigit> plainRemainder = u;
        std::vector<mpDigit> plainQuotient(m + 1);
        divideByRows(plainQuotient.data(), plainRemainder.data(), top, v.data(), n, m);
        const bool isDone = GetParam().divide(quotient.get(), remainder.get(), top, divisor.get(), n, m);
        ASSERT_EQ(divisor.vector(), v);
        _given += isDone ? 0U : 1U;
        _done += isDone ? 1U : 0U;
        ASSERT_TRUE(isDone || !mustSucceed);
        if (isDone)
        {
            plainRemainder.resize(n);
            std::vector<mpDigit> low = remainder.vector();
            low.resize(n);
            ASSERT_EQ(quotient.vector(), plainQuotient);
            ASSERT_EQ(low, plainRemainder);
        }
        ASSERT_EQ(Natural(plainQuotient), whole / Natural(v));
    }

    // How often a division was done, and given back to be done by rows.
    unsigned _done = 0;
    unsigned _given = 0;
};

TEST_P(EachForm, MultipliesAtEveryLengthAndAlignment)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (size_t n = GetParam().shortest; n <= 300 && !HasFailure(); n++)
    {
        SCOPED_TRACE(n);
        for (size_t alignment = n % 3; alignment < 16; alignment += n < 70 ? 1 : 5)
        {
            checkProduct(random.number(n), random.number(random.oneIn(2) ? n : random.below(300) + 1), alignment);
        }
        checkProduct(std::vector<mpDigit>(n, allOnes), std::vector<mpDigit>(n, allOnes), n);
    }
}

TEST_P(EachForm, DividesAtEveryLengthAndAlignment)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (size_t n = GetParam().shortest; n <= 300 && !HasFailure(); n++)
    {
        SCOPED_TRACE(n);
        for (size_t alignment = n % 3; alignment < 16; alignment += n < 70 ? 1 : 5)
        {
            const size_t m = random.oneIn(2) ? n : random.below(300);
            std::vector<mpDigit> u = random.number(n + m + 1);
            u.back() &= random.oneIn(2) ? 0 : 0x7FFFFFFFU;
            checkQuotient(u, random.number(n), alignment);
        }
    }
}

TEST_P(EachForm, DividesUniformNumbersWithoutHelp)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (uint32_t i = casesToRun(3000); i > 0 && !HasFailure(); i--)
    {
        const size_t n = GetParam().shortest + random.below(40);
        std::vector<mpDigit> u = random.uniformNumber(n + random.below(40));
        u.push_back(random.uniform() >> 1);
        checkQuotient(u, random.uniformNumber(n), i, true);
    }
}

// Multiples of the divisor and their neighbours, and quotients with long runs: where an estimate goes wrong.
TEST_P(EachForm, DividesNearMultiples)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (uint32_t i = casesToRun(20000); i > 0 && !HasFailure(); i--)
    {
        const size_t n = GetParam().shortest + random.below(20);
        const size_t m = random.below(40);
        std::vector<mpDigit> v = random.number(n);
        v[n - 1] |= topBit;
        const Natural multiple = Natural(v) * (Natural(random.number(m + 1)) >> 1);
        const Natural near = multiple + Natural(random.below(3)) - Natural(random.oneIn(2) ? 1UL : 0UL);
        checkQuotient(near.lowBits(32 * (n + m + 1)).digits(n + m + 1), v, i);
    }
    EXPECT_GT(_done, 0U);
    if (GetParam().divide != divideByRowsAlways)
    {
        EXPECT_GT(_given, 0U) << "no case was hard enough";
    }
}

INSTANTIATE_TEST_SUITE_P(Columns, EachForm, testing::ValuesIn(forms),
                         [](const auto& instance) { return std::string(instance.param.name); });

// The row operations themselves, against GMP.
TEST(Rows, AgreeWithGmpAtEveryLengthAndAlignment)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (size_t n = 0; n <= 300 && !HasFailure(); n++)
    {
        SCOPED_TRACE(n);
        for (size_t alignment = 0; alignment < 16; alignment++)
        {
            const std::vector<mpDigit> w = random.number(n);
            const std::vector<mpDigit> u = random.number(n);
            const mpDigit d = random.digit();
            Shifted sum(w, alignment);
            Shifted factor(u, alignment / 3);
            const mpDigit carry = rowMultiplyAdd(sum.get(), factor.get(), n, d);
            const Natural expected = Natural(w) + Natural(u) * Natural(d);
            ASSERT_EQ(Natural(sum.vector()) + (Natural(carry) << 32 * n), expected);

            Shifted difference(w, alignment);
            const mpDigit borrow = rowMultiplySubtract(difference.get(), factor.get(), n, d);
            ASSERT_EQ(Natural(difference.vector()) + Natural(u) * Natural(d), Natural(w) + (Natural(borrow) << 32 * n));
        }
    }
}

TEST(Estimate, ThreeDigitsByTwoAgreesWithItsPlainForm)
{
#if MP_HAS_COLUMNS
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (uint32_t i = casesToRun(500000); i > 0 && !HasFailure(); i--)
    {
        const mpDigit vHigh = random.digit() | topBit;
        const mpDigit vLow = random.digit();
        const uint64_t divisor = uint64_t{vHigh} << 32 | vLow;
        const uint64_t high = random.oneIn(2) ? (uint64_t{random.digit()} << 32 | random.digit()) % divisor
                                              : divisor - 1 - random.below(3);
        const auto top = static_cast<mpDigit>(high >> 32);
        const auto next = static_cast<mpDigit>(high);
        const mpDigit last = random.digit();
        uint64_t u = uint64_t{next} << 32 | last;
        const Quotient quotient = divideThreeByTwo(top, u, divisor, reciprocal(divisor));
        const mpDigit q = quotient.digit();
        ASSERT_EQ(q, estimateQuotient(top, next, last, vHigh, vLow)) << high << " " << last << " / " << divisor;
        ASSERT_EQ(Natural(q) * Natural(divisor) + Natural(u), (Natural(high) << 32) + Natural(last));
        ASSERT_LT(u, divisor);
        ASSERT_EQ(quotient.times(last), uint64_t{q} * last);
    }
#endif
}

TEST(Squares, AgreeWithTheirPlainFormAtEveryLengthAndAlignment)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (size_t n = 0; n <= 300 && !HasFailure(); n++)
    {
        SCOPED_TRACE(n);
        for (size_t alignment = 0; alignment < 16; alignment++)
        {
            const std::vector<mpDigit> x = random.number(n);
            Shifted number(x, alignment);
            Shifted fast(std::vector<mpDigit>(2 * n, 0xDEADBEEFU), alignment / 3);
            Shifted plain(std::vector<mpDigit>(2 * n, 0xDEADBEEFU), alignment / 7);
            square(fast.get(), number.get(), n);
            squareByRows(plain.get(), number.get(), n);
            ASSERT_EQ(fast.vector(), plain.vector());
            ASSERT_EQ(Natural(fast.vector()), Natural(x) * Natural(x));
        }
    }
}

}  // namespace
