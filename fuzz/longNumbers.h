// SPDX-License-Identifier: Apache-2.0
// Products, squares, quotients and powers of long numbers against GMP, at the lengths where faster ways of computing
// them begin and at any others.
#ifndef COUNTERSIGN_LONG_NUMBERS_H
#define COUNTERSIGN_LONG_NUMBERS_H

#include <algorithm>
#include <array>
#include <cstdint>

#include <gmp.h>

#include "bigdigits.h"
#include "fuzzInput.h"
#include "fuzzNumbers.h"

inline constexpr std::uint32_t mostDigits = 1200;
inline constexpr std::uint32_t mostSquareDigits = 2600;
inline constexpr std::uint32_t mostDigitsForPowers = 270;
inline constexpr std::uint32_t mostDigitsForRoots = 150;
inline constexpr mpDigit rubbish = 0xA5A5A5A5U;

// Where columns and limbs of each width begin in products, quotients, squares and powers, where the longest of these
// are cut into blocks, and where squares are halved and cut into parts.
inline constexpr std::array<std::uint32_t, 16> bounds = {4,  16, 20,  24,  40,  44,  48,   56,
                                                         72, 96, 192, 256, 273, 546, 1024, 2048};

inline std::uint32_t anyLength(FuzzInput& input, std::uint32_t most)
{
    const std::uint8_t kind = input.byte();
    const std::uint32_t length =
        kind < 160 ? bounds[kind % bounds.size()] + input.byte() % 8U - 3 : input.word() % most;
    return std::clamp(length, 1U, most);
}

inline void checkProduct(FuzzInput& input)
{
    // The shorter factor has zeros at the top.
    const std::uint32_t un = anyLength(input, mostDigits);
    const std::uint32_t vn = anyLength(input, mostDigits);
    const std::uint32_t n = std::max(un, vn);
    Digits first = fuzzDigits(input, un);
    Digits second = fuzzDigits(input, vn);
    first.resize(n);
    second.resize(n);
    first.shrink_to_fit();
    second.shrink_to_fit();
    Number u;
    Number v;
    Number expected;
    toNumber(u, first);
    toNumber(v, second);
    Digits product(2UL * n, rubbish);
    FUZZ_CHECK(mpMultiply(product.data(), first.data(), second.data(), n) == 0);
    mpz_mul(expected.get(), u.get(), v.get());
    FUZZ_CHECK(agree(product, expected));
    FUZZ_CHECK(agree(first, u) && agree(second, v));
}

inline void checkSquare(FuzzInput& input)
{
    const std::uint32_t n = anyLength(input, mostSquareDigits);
    const Digits digits = fuzzDigits(input, n);
    Number x;
    Number expected;
    toNumber(x, digits);
    Digits square(2UL * n, rubbish);
    FUZZ_CHECK(mpSquare(square.data(), digits.data(), n) == 0);
    mpz_mul(expected.get(), x.get(), x.get());
    FUZZ_CHECK(agree(square, expected));
    FUZZ_CHECK(agree(digits, x));
}

// Any two numbers, or a dividend that is a multiple of the divisor or next to one, where estimates go wrong.
inline void checkQuotient(FuzzInput& input)
{
    const std::uint32_t un = anyLength(input, mostDigits);
    const std::uint32_t vn = anyLength(input, mostDigits);
    const std::uint8_t kind = input.byte();
    Digits divisor = fuzzDigits(input, vn);
    Digits dividend = fuzzDigits(input, un);
    Number u;
    Number v;
    toNumber(v, divisor);
    toNumber(u, dividend);
    if (kind % 2 != 0)
    {
        mpz_mul(u.get(), u.get(), v.get());
        if (kind % 4 == 3 && mpz_sgn(u.get()) > 0)
        {
            mpz_sub_ui(u.get(), u.get(), 1);
        }
        dividend = toDigits(u, un + vn);
    }
    const auto n = static_cast<std::uint32_t>(std::max<std::size_t>(dividend.size(), mpSizeof(divisor.data(), vn)));
    dividend.resize(n);
    dividend.shrink_to_fit();
    Digits quotient(n, rubbish);
    Digits remainder(n, rubbish);
    const Digits divisorBefore = divisor;
    const int answer = mpDivide(quotient.data(), remainder.data(), dividend.data(), n, divisor.data(), vn);
    FUZZ_CHECK(answer == (mpz_sgn(v.get()) == 0 ? -1 : 0));
    Number q;
    Number r;
    if (answer == 0)
    {
        mpz_fdiv_qr(q.get(), r.get(), u.get(), v.get());
    }
    FUZZ_CHECK(agree(quotient, q) && agree(remainder, r));
    FUZZ_CHECK(agree(dividend, u) && divisor == divisorBefore);

    Digits modulo(vn, rubbish);
    FUZZ_CHECK(mpModulo(modulo.data(), dividend.data(), n, divisor.data(), vn) == 0);
    FUZZ_CHECK(agree(modulo, r) && divisor == divisorBefore);
}

inline void checkPower(FuzzInput& input)
{
    const std::uint32_t n = anyLength(input, mostDigitsForPowers);
    const Digits base = fuzzDigits(input, n);
    const Digits modulus = fuzzDigits(input, n);
    // Each bit is a square of n digits.
    Digits exponent(n);
    exponent[0] = input.word() >> input.byte() % 32U;
    Number x;
    Number e;
    Number m;
    Number expected;
    toNumber(x, base);
    toNumber(e, exponent);
    toNumber(m, modulus);
    Digits power(n, rubbish);
    FUZZ_CHECK(mpModExp(power.data(), base.data(), exponent.data(), modulus.data(), n) == 0);
    if (mpz_sgn(m.get()) != 0)
    {
        mpz_powm(expected.get(), x.get(), e.get(), m.get());
        // An exponent of one hands the base on.
        FUZZ_CHECK(agree(power, exponent[0] == 1 ? x : expected));
    }
    FUZZ_CHECK(agree(base, x) && agree(exponent, e) && agree(modulus, m));

    Digits product(n, rubbish);
    FUZZ_CHECK(mpModMult(product.data(), base.data(), power.data(), modulus.data(), n) == 0);
    Number y;
    toNumber(y, power);
    mpz_mul(expected.get(), x.get(), y.get());
    if (mpz_sgn(m.get()) != 0)
    {
        mpz_fdiv_r(expected.get(), expected.get(), m.get());
    }
    else
    {
        mpz_set_ui(expected.get(), 0);
    }
    FUZZ_CHECK(agree(product, expected));
}

inline void checkRoot(FuzzInput& input)
{
    const std::uint32_t n = anyLength(input, mostDigitsForRoots);
    const Digits digits = fuzzDigits(input, n);
    Number x;
    Number expected;
    toNumber(x, digits);
    Digits root(n, rubbish);
    FUZZ_CHECK(mpSqrt(root.data(), digits.data(), n) == 0);
    mpz_sqrt(expected.get(), x.get());
    FUZZ_CHECK(agree(root, expected) && agree(digits, x));
}

// Quotients of any length: the second number is shorter, or has a factor in common with the first.
inline void checkEuclid(FuzzInput& input)
{
    const std::uint32_t n = anyLength(input, mostDigitsForRoots);
    const std::uint32_t shorter = 1 + input.word() % n;
    const bool isCommon = input.byte() % 2 != 0;
    Digits first = fuzzDigits(input, n);
    Digits second = fuzzDigits(input, shorter);
    Number u;
    Number v;
    Number expected;
    toNumber(u, first);
    toNumber(v, second);
    if (isCommon)
    {
        mpz_mul(u.get(), u.get(), v.get());
        cutTo(u, n);
        first = toDigits(u, n);
    }
    second.resize(n);
    second.shrink_to_fit();
    Digits result(n, rubbish);
    FUZZ_CHECK(mpGcd(result.data(), first.data(), second.data(), n) == 0);
    mpz_gcd(expected.get(), u.get(), v.get());
    FUZZ_CHECK(agree(result, expected));
    // The inverse itself is defined for a modulus above one and what is prime to it.
    if (mpz_cmp_ui(v.get(), 1) > 0)
    {
        const bool exists = mpz_invert(expected.get(), u.get(), v.get()) != 0;
        FUZZ_CHECK(mpModInv(result.data(), first.data(), second.data(), n) == (exists ? 0 : 1));
        if (!exists)
        {
            mpz_set_ui(expected.get(), 0);
        }
        FUZZ_CHECK(agree(result, expected));
    }
    FUZZ_CHECK(agree(first, u) && agree(second, v));
}

// The first byte says what.
inline void checkLongNumbers(FuzzInput& input)
{
    switch (input.byte() % 6)
    {
    case 0:
        checkProduct(input);
        break;
    case 1:
        checkSquare(input);
        break;
    case 2:
        checkQuotient(input);
        break;
    case 3:
        checkPower(input);
        break;
    case 4:
        checkRoot(input);
        break;
    default:
        checkEuclid(input);
        break;
    }
}

#endif
