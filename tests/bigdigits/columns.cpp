// SPDX-License-Identifier: Apache-2.0
// Fast forms of products and quotients against their plain forms, at every length and every alignment. The source is
// included, since these are its private matters; so this program is built once for each way of building the module.
#if defined(MP_EMULATED)
#include "emulatedVectors.h"
#endif

#include "bigdigits.cpp"  // NOLINT(bugprone-suspicious-include)

#include "Digits.h"
#include "RandomNumbers.h"

#include <algorithm>
#include <iterator>

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
        for (size_t i = 0; i < _all.size(); ++i)
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
    bool (*isThere)();
    // Null for rows.
    const ColumnForms& (*columns)();
    // Null where divisions do not go by short limbs.
    bool (*divideByLimbs)(mpDigit q[], mpDigit r[], mpDigit top, const mpDigit v[], size_t n, size_t m,
                          const Scaling& scaling) = nullptr;

    size_t shortest() const { return columns == nullptr ? 2 : shortestForColumns; }
    void multiply(mpDigit w[], const mpDigit u[], size_t un, const mpDigit v[], size_t vn) const
    {
        if (columns == nullptr)
        {
            multiplyByRows(w, u, un, v, vn);
            return;
        }
        columns().multiply(w, u, un, v, vn);
    }
    // Columns need m < n.
    bool divide(mpDigit q[], mpDigit r[], mpDigit top, const mpDigit v[], size_t n, size_t m, bool isLeavingOut) const
    {
        if (columns == nullptr)
        {
            divideByRows(q, r, top, v, n, m);
            return true;
        }
        const size_t skipped = isLeavingOut && n >= shortestForLeavingOut ? 1 : 0;
        std::vector<mpDigit> complement(n - skipped);
        Scaling scaling = {};
        if (!columns().scale(scaling, complement.data(), skipped, v, n))
        {
            return false;
        }
        const bool isByLimbs = divideByLimbs != nullptr && n <= longestForShortLimbs;
        return isByLimbs ? divideByLimbs(q, r, top, v, n, m, scaling) : columns().divide(q, r, top, v, n, m, scaling);
    }
};

std::ostream& operator<<(std::ostream& stream, const Form& form)
{
    return stream << form.name;
}

bool isAlwaysThere()
{
    return true;
}

#if MP_HAS_COLUMNS && MP_HAS_NEON
// The compiler knows: a function of its own, so that what is emulated is told from it.
bool hasNeon()
{
    return true;
}
#endif

#if defined(MP_EMULATED)
constexpr bool isEmulated = true;
#else
constexpr bool isEmulated = false;
#endif

// What is emulated is what only some processors have; other programs try the rest.
template <class AnyForm, size_t count>
std::vector<AnyForm> toTry(const AnyForm (&all)[count])
{
    std::vector<AnyForm> result;
    std::copy_if(std::begin(all), std::end(all), std::back_inserter(result),
                 [](const AnyForm& form) { return !isEmulated || form.isThere != isAlwaysThere; });
    return result;
}

// scripts/list-forms.sh tells emulated forms by their names.
template <class Instance>
std::string nameOf(const Instance& instance)
{
    return std::string(isEmulated ? "Emulated" : "") + instance.param.name;
}

#if MP_HAS_COLUMNS
// The wide forms made of what every processor has.
const ColumnForms plainColumnForms256Bits = {multiplyByColumnsWith<Vector32>, scaleWith<Vector32>,
                                             divideByColumnsWith<Vector32>};
const ColumnForms plainColumnForms512Bits = {multiplyByColumnsWith<Vector64>, scaleWith<Vector64>,
                                             divideByColumnsWith<Vector64>};
#endif

const Form forms[] = {
    {"Rows", isAlwaysThere, nullptr},
#if MP_HAS_COLUMNS
    {"Columns128Bits", isAlwaysThere, []() -> const ColumnForms& { return columnForms128Bits; }},
    {"PlainColumns256Bits", isAlwaysThere, []() -> const ColumnForms& { return plainColumnForms256Bits; }},
    {"PlainColumns512Bits", isAlwaysThere, []() -> const ColumnForms& { return plainColumnForms512Bits; }},
#if defined(__x86_64__)
    {"Columns256Bits", has256Bits, []() -> const ColumnForms& { return columnForms256Bits; }},
    {"Columns512Bits", has512Bits, []() -> const ColumnForms& { return columnForms512Bits; }},
#endif
    {"ColumnsForThisProcessor", isAlwaysThere, columnForms},
    {"PlainLimbs128Bits", isAlwaysThere, columnForms, divideByShortLimbsWith<Vector16, PlainPairs<Vector16>>},
    {"PlainLimbs256Bits", isAlwaysThere, columnForms, divideByShortLimbsWith<Vector32, PlainPairs<Vector32>>},
    {"PlainLimbs512Bits", isAlwaysThere, columnForms, divideByShortLimbsWith<Vector64, PlainPairs<Vector64>>},
    {"PlainLimbRows", isAlwaysThere, columnForms, divideByShortLimbsWith<Vector16, PlainRows>},
    {"PlainBoth256Bits", isAlwaysThere, columnForms, divideByBothWith<Vector32, PlainPairs<Vector32>>},
    {"PlainBoth512Bits", isAlwaysThere, columnForms, divideByBothWith<Vector64, PlainPairs<Vector64>>},
    {"Limbs128Bits", isAlwaysThere, columnForms, shortLimbForms128Bits.divide},
    {"Both128Bits", isAlwaysThere, columnForms, shortLimbForms128Bits.divideByBoth},
#if MP_HAS_WIDE_PAIRS
    {"Limbs256Bits", has256Bits, columnForms, shortLimbForms256Bits.divide},
    {"Both256Bits", has256Bits, columnForms, shortLimbForms256Bits.divideByBoth},
    {"Limbs512Bits", has512Bits, columnForms, shortLimbForms512Bits.divide},
    {"Both512Bits", has512Bits, columnForms, shortLimbForms512Bits.divideByBoth},
#endif
#if MP_HAS_NEON
    {"LimbsNeon", hasNeon, columnForms, shortLimbFormsNeon.divide},
    {"BothNeon", hasNeon, columnForms, shortLimbFormsNeon.divideByBoth},
#endif
#endif
};

class EachForm : public testing::TestWithParam<Form>
{
protected:
    void SetUp() override
    {
        if (!GetParam().isThere())
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
        const bool isDone =
            GetParam().divide(quotient.get(), remainder.get(), top, divisor.get(), n, m, alignment % 2 == 0);
        ASSERT_EQ(divisor.vector(), v);
        _given += isDone ? 0U : 1U;
        _done += isDone ? 1U : 0U;
        ASSERT_TRUE(isDone || !mustSucceed);
        if (!isDone)
        {
            ASSERT_EQ(remainder.vector(), u) << "what is given back must be whole";
        }
        else
        {
            plainRemainder.resize(n);
            std::vector<mpDigit> low = remainder.vector();
            low.resize(n);
            ASSERT_EQ(quotient.vector(), plainQuotient);
            ASSERT_EQ(low, plainRemainder);
        }
        ASSERT_EQ(Natural(plainQuotient), whole / Natural(v));
    }

    // How many more digits than a divisor of n digits a dividend may have, of those that are wanted.
    static uint32_t longest(size_t n, uint32_t wanted)
    {
        return GetParam().columns != nullptr && wanted > n ? static_cast<uint32_t>(n) : wanted;
    }

    // How often a division was done, and given back to be done by rows.
    unsigned _done = 0;
    unsigned _given = 0;
};

TEST_P(EachForm, MultipliesAtEveryLengthAndAlignment)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (size_t n = GetParam().shortest(); n <= 300 && !HasFailure(); ++n)
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
    for (size_t n = GetParam().shortest(); n <= 300 && !HasFailure(); ++n)
    {
        SCOPED_TRACE(n);
        for (size_t alignment = n % 3; alignment < 16; alignment += n < 70 ? 1 : 5)
        {
            const size_t m = random.oneIn(2) ? n - 1 : random.below(longest(n, 300));
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
    for (uint32_t i = casesToRun(3000); i > 0 && !HasFailure(); --i)
    {
        const size_t n = GetParam().shortest() + random.below(40);
        std::vector<mpDigit> u = random.uniformNumber(n + random.below(longest(n, 40)));
        u.push_back(random.uniform() >> 1);
        checkQuotient(u, random.uniformNumber(n), i, true);
    }
}

// Multiples of the divisor and their neighbours, and quotients with long runs: where an estimate goes wrong.
TEST_P(EachForm, DividesNearMultiples)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (uint32_t i = casesToRun(20000); i > 0 && !HasFailure(); --i)
    {
        const size_t n = GetParam().shortest() + random.below(20);
        const size_t m = random.below(longest(n, 40));
        std::vector<mpDigit> v = random.number(n);
        v[n - 1] |= topBit;
        const Natural multiple = Natural(v) * (Natural(random.number(m + 1)) >> 1);
        const Natural near = multiple + Natural(random.below(3)) - Natural(random.oneIn(2) ? 1UL : 0UL);
        checkQuotient(near.lowBits(32 * (n + m + 1)).digits(n + m + 1), v, i);
    }
    EXPECT_GT(_done, 0U);
    if (GetParam().columns != nullptr)
    {
        EXPECT_GT(_given, 0U) << "no case was hard enough";
    }
}

INSTANTIATE_TEST_SUITE_P(Columns, EachForm, testing::ValuesIn(toTry(forms)),
                         [](const auto& instance) { return nameOf(instance); });

// The row operations themselves, against GMP.
TEST(Rows, AgreeWithGmpAtEveryLengthAndAlignment)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (size_t n = 0; n <= 300 && !HasFailure(); ++n)
    {
        SCOPED_TRACE(n);
        for (size_t alignment = 0; alignment < 16; ++alignment)
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

#if MP_HAS_COLUMNS

class EachKindOfColumns : public EachForm
{
};

std::vector<Form> columnsToTry()
{
    std::vector<Form> result = toTry(forms);
    const auto isRows = [](const Form& form) { return form.columns == nullptr; };
    result.erase(std::remove_if(result.begin(), result.end(), isRows), result.end());
    return result;
}

TEST_P(EachKindOfColumns, ScaleDivisors)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    unsigned scaled = 0;
    for (uint32_t i = casesToRun(20000); i > 0 && !HasFailure(); --i)
    {
        const size_t n = shortestForColumns + random.below(40);
        const size_t skipped = n >= shortestForLeavingOut ? random.below(2) : 0;
        std::vector<mpDigit> v = random.oneIn(2) ? random.number(n) : random.uniformNumber(n);
        v[n - 1] |= topBit;
        // One more than that is a digit more.
        const bool isHighest = random.oneIn(8);
        if (isHighest)
        {
            std::fill(v.end() - 3, v.end(), allOnes);
        }
        Shifted complement(std::vector<mpDigit>(n - skipped, 0xDEADBEEFU), i);
        Scaling scaling = {{0xDEADBEEFU, 0xDEADBEEFU, 0xDEADBEEFU}, nullptr, n};
        if (!GetParam().columns().scale(scaling, complement.get(), skipped, v.data(), n))
        {
            ASSERT_FALSE(isHighest);
            continue;
        }
        ++scaled;
        ASSERT_EQ(scaling.skipped, skipped);
        ASSERT_EQ(scaling.complement, complement.get());
        ASSERT_EQ(scaling.factor[2], 1U);
        const Natural factor(std::vector<mpDigit>(scaling.factor, scaling.factor + 3));
        const Natural whole = (Natural(1U) << 32 * (n + 2)) - factor * Natural(v);
        ASSERT_LT(whole, Natural(1U) << 32 * n);
        ASSERT_EQ(Natural(complement.vector()), whole >> 32 * skipped);
    }
    EXPECT_GT(scaled, 0U);
}

INSTANTIATE_TEST_SUITE_P(Columns, EachKindOfColumns, testing::ValuesIn(columnsToTry()),
                         [](const auto& instance) { return nameOf(instance); });

#endif

#if MP_HAS_COLUMNS

// Products by limbs of 13 bits. The plain kinds do the same as those of the processors, with vectors that the compiler
// makes of what there is, so that the ways of each width are tried everywhere.
struct NamedShortLimbForm
{
    const char* name;
    bool (*isThere)();
    void (*multiply)(mpDigit w[], const mpDigit u[], size_t un, const mpDigit v[], size_t vn);
};

std::ostream& operator<<(std::ostream& stream, const NamedShortLimbForm& form)
{
    return stream << form.name;
}

const NamedShortLimbForm namedShortLimbForms[] = {
    {"Plain128Bits", isAlwaysThere, multiplyByShortLimbsWith<PlainPairs<Vector16>>},
    {"Plain256Bits", isAlwaysThere, multiplyByShortLimbsWith<PlainPairs<Vector32>>},
    {"Plain512Bits", isAlwaysThere, multiplyByShortLimbsWith<PlainPairs<Vector64>>},
    {"PlainRows", isAlwaysThere, multiplyByShortLimbsWith<PlainRows>},
    {"Pairs128Bits", isAlwaysThere, shortLimbForms128Bits.multiply},
#if MP_HAS_WIDE_PAIRS
    {"Pairs256Bits", has256Bits, shortLimbForms256Bits.multiply},
    {"Pairs512Bits", has512Bits, shortLimbForms512Bits.multiply},
#endif
#if MP_HAS_NEON
    {"PairsNeon", hasNeon, shortLimbFormsNeon.multiply},
#endif
};

class EachKindOfShortLimbs : public testing::TestWithParam<NamedShortLimbForm>
{
protected:
    void SetUp() override
    {
        if (!GetParam().isThere())
        {
            GTEST_SKIP() << "this processor cannot do it";
        }
    }

    static void check(const std::vector<mpDigit>& u, const std::vector<mpDigit>& v, size_t alignment)
    {
        Shifted factor(u, alignment);
        Shifted other(v, alignment / 3);
        Shifted product(std::vector<mpDigit>(u.size() + v.size(), 0xDEADBEEFU), alignment / 7);
        GetParam().multiply(product.get(), factor.get(), u.size(), other.get(), v.size());
        ASSERT_EQ(Natural(product.vector()), Natural(u) * Natural(v)) << u.size() << " by " << v.size();
        ASSERT_EQ(factor.vector(), u);
        ASSERT_EQ(other.vector(), v);
    }
};

TEST_P(EachKindOfShortLimbs, MultipliesAtEveryLength)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (size_t n = 1; n <= 270 && !HasFailure(); ++n)
    {
        check(random.number(n), random.number(n), n);
        check(random.uniformNumber(n), random.number(random.below(270) + 1), n);
        // The greatest sums.
        check(std::vector<mpDigit>(n, allOnes), std::vector<mpDigit>(n, allOnes), n);
        check(std::vector<mpDigit>(n, allOnes), std::vector<mpDigit>(random.below(270) + 1, allOnes), n);
    }
}

TEST_P(EachKindOfShortLimbs, MultipliesEveryPairOfShortLengths)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (size_t un = 1; un <= 45 && !HasFailure(); ++un)
    {
        for (size_t vn = 1; vn <= 45 && !HasFailure(); ++vn)
        {
            check(random.uniformNumber(un), random.uniformNumber(vn), un);
        }
    }
}

TEST_P(EachKindOfShortLimbs, MultipliesAtLengthsAroundBlocks)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (const size_t un : {259U, 260U, 261U, 519U, 520U, 521U, 1000U})
    {
        for (const size_t vn : {1U, 40U, 260U, 261U, 521U, 800U})
        {
            check(random.number(un), random.number(vn), un);
            check(std::vector<mpDigit>(un, allOnes), std::vector<mpDigit>(vn, allOnes), vn);
        }
    }
}

// Each pattern of bits moves a limb over another place of a group.
TEST_P(EachKindOfShortLimbs, MultipliesPowersOfTwo)
{
    for (size_t bit = 0; bit < size_t{32} * 30 && !HasFailure(); ++bit)
    {
        std::vector<mpDigit> u(30);
        u[bit / 32] = mpDigit{1} << bit % 32;
        check(u, std::vector<mpDigit>(30, allOnes), bit);
        check(std::vector<mpDigit>(30, allOnes), u, bit);
    }
}

INSTANTIATE_TEST_SUITE_P(Columns, EachKindOfShortLimbs, testing::ValuesIn(toTry(namedShortLimbForms)),
                         [](const auto& instance) { return nameOf(instance); });

// Powers by short limbs, in the same kinds.
struct NamedPowerForm
{
    const char* name;
    bool (*isThere)();
    void (*power)(mpDigit y[], const mpDigit x[], const mpDigit e[], uint64_t bits, const mpDigit v[], size_t n);
};

std::ostream& operator<<(std::ostream& stream, const NamedPowerForm& form)
{
    return stream << form.name;
}

const NamedPowerForm namedPowerForms[] = {
    {"Plain128Bits", isAlwaysThere, powerByShortLimbsWith<PlainPairs<Vector16>, PlainPairs<Vector16>>},
    {"Plain256Bits", isAlwaysThere, powerByShortLimbsWith<PlainPairs<Vector32>, PlainPairs<Vector32>>},
    {"Plain512And256Bits", isAlwaysThere, powerByShortLimbsWith<PlainPairs<Vector64>, PlainPairs<Vector32>>},
    {"Plain512Bits", isAlwaysThere, powerByShortLimbsWith<PlainPairs<Vector64>, PlainPairs<Vector64>>},
    {"PlainRows", isAlwaysThere, powerByShortLimbsWith<PlainRows, PlainRows>},
    {"Pairs128Bits", isAlwaysThere, shortLimbForms128Bits.power},
#if MP_HAS_WIDE_PAIRS
    {"Pairs256Bits", has256Bits, shortLimbForms256Bits.power},
    {"Pairs512Bits", has512Bits, shortLimbForms512Bits.power},
#endif
#if MP_HAS_NEON
    {"PairsNeon", hasNeon, shortLimbFormsNeon.power},
#endif
};

class EachKindOfPower : public testing::TestWithParam<NamedPowerForm>
{
protected:
    void SetUp() override
    {
        if (!GetParam().isThere())
        {
            GTEST_SKIP() << "this processor cannot do it";
        }
    }

    static void check(const std::vector<mpDigit>& x, std::vector<mpDigit> e, std::vector<mpDigit> v, size_t alignment)
    {
        v.back() |= topBit;
        Shifted base(x, alignment);
        Shifted modulus(v, alignment / 3);
        Shifted power(std::vector<mpDigit>(longestForShortLimbs + 1), alignment / 7);
        GetParam().power(power.get(), base.get(), e.data(), bitLength(e.data(), e.size()), modulus.get(), v.size());
        ASSERT_EQ(Natural(power.vector()) % Natural(v), Natural(x).powerModulo(Natural(e), Natural(v)));
        ASSERT_EQ(base.vector(), x);
        ASSERT_EQ(modulus.vector(), v);
    }
};

TEST_P(EachKindOfPower, AgreesWithGmpAtEveryLength)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (size_t n = 16; n <= longestForPowers && !HasFailure(); n += n < 70 ? 1 : 7)
    {
        SCOPED_TRACE(n);
        check(random.uniformNumber(n), {random.uniform() | 1U}, random.uniformNumber(n), n);
        check(random.number(n), {random.uniform() & 0xFFU, 1}, random.number(n), n);
    }
    check(random.uniformNumber(longestForPowers), {0xFFFFU}, random.uniformNumber(longestForPowers), 0);
}

// Multiples of them, and complements, are the longest and the shortest.
TEST_P(EachKindOfPower, TakesUncommonModuli)
{
    for (const size_t n : {16U, 33U, 64U, static_cast<unsigned>(longestForPowers)})
    {
        std::vector<mpDigit> lowest(n);
        std::vector<mpDigit> afterLowest(n);
        afterLowest[0] = 1;
        std::vector<mpDigit> highest(n, allOnes);
        std::vector<mpDigit> beforeHighest(n, allOnes);
        --beforeHighest[0];
        for (const auto& v : {lowest, afterLowest, highest, beforeHighest})
        {
            for (const auto& x : {lowest, afterLowest, highest, beforeHighest})
            {
                check(x, {0xB7U}, v, 5);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Columns, EachKindOfPower, testing::ValuesIn(toTry(namedPowerForms)),
                         [](const auto& instance) { return nameOf(instance); });

// A carry that the quotient does not see, since it comes from more than two units below.
class PowerWithLateCarry : public PowerByShortLimbs<PlainPairs<Vector16>, PlainPairs<Vector16>>
{
public:
    Natural reduceBase()
    {
        for (size_t i = 0; i < unitsOfDividend(); ++i)
        {
            _units[i] = 0;
        }
        _units[_size / 2 - 1] = unitMask;
        _units[_size / 2 - 2] = unitMask;
        _units[_size / 2 - 3] = unitMask + 1;
        reduce();
        std::vector<mpDigit> result(digits());
        value(result.data());
        return Natural(result);
    }
    size_t bits() const { return _size * shortLimbBits; }
};

TEST(Powers, TakeALateCarry)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    std::vector<mpDigit> v = random.uniformNumber(40);
    v.back() |= topBit;
    PowerWithLateCarry power;
    power.setModulus(v.data(), v.size());
    power.setValue(v.data(), v.size());
    EXPECT_EQ(power.reduceBase() % Natural(v), (Natural(1U) << power.bits()) % Natural(v));
}

// Units, and everything that is cut into halves and parts.
template <class Pairs>
void squareByPlainUnits(mpDigit w[], const mpDigit x[], size_t n)
{
    squareBy(w, x, n, squareByUnitsWith<Pairs>, 256);
}

#endif

#if defined(__SIZEOF_INT128__)

void squareByHalvesOfRows(mpDigit w[], const mpDigit x[], size_t n)
{
    squareBy(w, x, n, squareByRows, 8);
}

#endif

struct NamedSquareForm
{
    const char* name;
    bool (*isThere)();
    void (*square)(mpDigit w[], const mpDigit x[], size_t n);
};

std::ostream& operator<<(std::ostream& stream, const NamedSquareForm& form)
{
    return stream << form.name;
}

const NamedSquareForm squareForms[] = {
    {"ForThisProcessor", isAlwaysThere, square},
    {"Rows", isAlwaysThere, squareByRows},
#if defined(__SIZEOF_INT128__)
    {"HalvesOfRows", isAlwaysThere, squareByHalvesOfRows},
    {"Words", isAlwaysThere, squareWithWords},
#if MP_HAS_COLUMNS
    {"PlainUnits128Bits", isAlwaysThere, squareByPlainUnits<PlainPairs<Vector16>>},
    {"PlainUnits256Bits", isAlwaysThere, squareByPlainUnits<PlainPairs<Vector32>>},
    {"PlainUnits512Bits", isAlwaysThere, squareByPlainUnits<PlainPairs<Vector64>>},
#if MP_HAS_WIDE_PAIRS
    {"Units", has256Bits, squareByUnits},
#endif
#endif
#if defined(__x86_64__)
    {"WordsWithBmi2", [] { return MP_PROCESSOR_HAS("bmi2"); }, squareWithBmi2},
    {"Limbs", has52BitLimbs, squareByBlocks},
#endif
#endif
};

class EachSquare : public testing::TestWithParam<NamedSquareForm>
{
protected:
    void SetUp() override
    {
        if (!GetParam().isThere())
        {
            GTEST_SKIP() << "this processor cannot do it";
        }
    }

    static void check(const std::vector<mpDigit>& x, size_t alignment)
    {
        const size_t n = x.size();
        Shifted number(x, alignment);
        Shifted result(std::vector<mpDigit>(2 * n, 0xDEADBEEFU), alignment / 3);
        GetParam().square(result.get(), number.get(), n);
        ASSERT_EQ(Natural(result.vector()), Natural(x) * Natural(x));
        ASSERT_EQ(number.vector(), x);
    }
};

TEST_P(EachSquare, AgreesWithGmpAtEveryLengthAndAlignment)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (size_t n = 0; n <= 300 && !HasFailure(); ++n)
    {
        SCOPED_TRACE(n);
        for (size_t alignment = 0; alignment < 16; ++alignment)
        {
            check(random.number(n), alignment);
        }
        check(std::vector<mpDigit>(n, allOnes), n);
    }
}

TEST_P(EachSquare, AgreesWithGmpAtLengthsAroundBlocks)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    for (const size_t n : {511U, 512U, 513U, 700U, 767U, 768U, 769U, 1024U, 1025U, 2000U, 3100U})
    {
        SCOPED_TRACE(n);
        check(random.number(n), n);
        check(random.uniformNumber(n), n);
        // The longest carries.
        check(std::vector<mpDigit>(n, allOnes), n);
    }
}

INSTANTIATE_TEST_SUITE_P(Squares, EachSquare, testing::ValuesIn(toTry(squareForms)),
                         [](const auto& instance) { return nameOf(instance); });

}  // namespace
