// SPDX-License-Identifier: Apache-2.0
// Prints one number that depends on every result of a long run of operations. Builds of the module with other
// compilers and options must print the same. Needs nothing but the module, so that it builds where the tests do not.
#include "bigdigits.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace
{

using Number = std::vector<mpDigit>;

uint64_t state = 0x9E3779B97F4A7C15U;
uint64_t digest = 0xCBF29CE484222325U;

mpDigit next()
{
    // xorshift: the same numbers everywhere
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    return static_cast<mpDigit>(state >> 16);
}

mpDigit below(mpDigit bound)
{
    return next() % bound;
}

void note(mpDigit value)
{
    digest ^= value;
    digest *= 0x100000001B3U;
    digest ^= digest >> 29;
}

void note(const Number& value)
{
    for (const mpDigit digit : value)
    {
        note(digit);
    }
}

Number number(uint32_t n)
{
    const mpDigit kind = below(4);
    Number result(n);
    for (mpDigit& digit : result)
    {
        digit = kind == 0   ? next()
                : kind == 1 ? 0xFFFFFFFFU - below(2)
                : kind == 2 ? below(2) << 31
                            : next() >> below(32);
    }
    return result;
}

void run(uint32_t n)
{
    const Number u = number(n);
    Number v = number(n);
    Number w(n);
    Number q(n);
    Number wide(2 * size_t{n});
    note(mpAdd(w.data(), u.data(), v.data(), n));
    note(w);
    note(mpSubtract(w.data(), u.data(), v.data(), n));
    note(w);
    mpMultiply(wide.data(), u.data(), v.data(), n);
    note(wide);
    mpSquare(wide.data(), u.data(), n);
    note(wide);
    const uint32_t shift = below(32 * n);
    note(mpShiftLeft(w.data(), u.data(), shift, n));
    note(w);
    note(mpShiftRight(w.data(), u.data(), shift, n));
    note(w);
    note(mpShortMult(w.data(), u.data(), next(), n));
    note(w);
    note(mpShortDiv(w.data(), u.data(), next(), n));
    note(w);
    const uint32_t vdigits = 1 + below(n);
    note(mpDivide(q.data(), w.data(), u.data(), n, v.data(), vdigits) == 0 ? 0 : 1);
    note(q);
    note(w);
    note(v);
    Number high(2 * size_t{n});
    Number low(2 * size_t{n});
    mpDivide(high.data(), low.data(), wide.data(), 2 * n, v.data(), n);
    note(high);
    note(low);
    if (mpSizeof(v.data(), n) != 0)
    {
        Number e(n);
        e[0] = next() | 1;
        mpModExp(w.data(), u.data(), e.data(), v.data(), n);
        note(w);
        mpModMult(w.data(), u.data(), u.data(), v.data(), n);
        note(w);
    }
    if (n < 40)
    {
        note(mpModInv(w.data(), u.data(), v.data(), n) == 0 ? 0 : 1);
        note(w);
        mpGcd(w.data(), u.data(), v.data(), n);
        note(w);
        mpSqrt(w.data(), u.data(), n);
        note(w);
        std::vector<char> text(size_t{n} * 10 + 2);
        const uint32_t length = mpConvToDecimal(u.data(), n, text.data(), static_cast<uint32_t>(text.size()));
        note(length);
        for (const char ch : text)
        {
            note(static_cast<unsigned char>(ch));
        }
        note(mpConvFromDecimal(w.data(), n, text.data()));
        note(w);
        mpConvToHex(u.data(), n, text.data(), static_cast<uint32_t>(text.size()));
        note(mpConvFromHex(w.data(), n, text.data()));
        note(w);
    }
}

}  // namespace

int main()
{
    for (uint32_t n = 1; n <= 140; ++n)
    {
        for (uint32_t i = 0; i < (n < 40 ? 12U : 3U); ++i)
        {
            run(n);
        }
    }
    // The decimal reader's room falls short first at this length.
    const std::vector<char> nines = []
    {
        std::vector<char> text(1812, '9');
        text.back() = '\0';
        return text;
    }();
    Number a(200);
    note(mpConvFromDecimal(a.data(), 200, nines.data()));
    note(a);
    Number mersenne(5, 0xFFFFFFFFU);
    mpModPowerOf2(mersenne.data(), 5, 127);
    note(mpIsPrime(mersenne.data(), 5, 5) == 1 ? 1 : 0);
    printf("%08x%08x\n", static_cast<unsigned>(digest >> 32), static_cast<unsigned>(digest));
    return 0;
}
