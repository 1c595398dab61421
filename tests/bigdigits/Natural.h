// SPDX-License-Identifier: Apache-2.0
// Natural numbers of the oracle, GMP, with just the operators that the tests need.
#ifndef COUNTERSIGN_TESTS_NATURAL_H
#define COUNTERSIGN_TESTS_NATURAL_H

#include "bigdigits.h"

#include <gmp.h>

#include <cstdlib>
#include <ostream>
#include <string>
#include <vector>

class Natural
{
public:
    Natural() { mpz_init(_value); }
    Natural(unsigned long value) { mpz_init_set_ui(_value, value); }
    Natural(const mpDigit digits[], size_t n)
    {
        mpz_init(_value);
        mpz_import(_value, n, -1, sizeof(mpDigit), 0, 0, digits);
    }
    explicit Natural(const std::vector<mpDigit>& digits) : Natural(digits.data(), digits.size()) {}
    explicit Natural(const char* text, int base = 10) { mpz_init_set_str(_value, text, base); }
    Natural(const Natural& other) { mpz_init_set(_value, other._value); }
    Natural(Natural&& other) noexcept
    {
        mpz_init(_value);
        mpz_swap(_value, other._value);
    }
    ~Natural() { mpz_clear(_value); }

    Natural& operator=(const Natural& other)
    {
        if (this != &other)
        {
            mpz_set(_value, other._value);
        }
        return *this;
    }
    Natural& operator=(Natural&& other) noexcept
    {
        mpz_swap(_value, other._value);
        return *this;
    }

    static Natural powerOfTwo(size_t exponent)
    {
        Natural result;
        mpz_setbit(result._value, exponent);
        return result;
    }
    static Natural factorial(unsigned long n)
    {
        Natural result;
        mpz_fac_ui(result._value, n);
        return result;
    }
    static Natural fibonacci(unsigned long n)
    {
        Natural result;
        Natural next(1);
        for (; n > 0; --n)
        {
            mpz_add(result._value, result._value, next._value);
            mpz_swap(result._value, next._value);
        }
        return result;
    }
    static Natural power(unsigned long base, unsigned long exponent)
    {
        Natural result;
        mpz_ui_pow_ui(result._value, base, exponent);
        return result;
    }

    // The low n digits.
    std::vector<mpDigit> digits(size_t n) const
    {
        Natural low;
        mpz_fdiv_r_2exp(low._value, _value, 32 * n);
        std::vector<mpDigit> result(n);
        if (n != 0)
        {
            mpz_export(result.data(), nullptr, -1, sizeof(mpDigit), 0, 0, low._value);
        }
        return result;
    }
    mpDigit low() const { return digits(1)[0]; }
    std::string text(int base = 10) const
    {
        std::string result(mpz_sizeinbase(_value, base) + 2, '\0');
        mpz_get_str(result.data(), base, _value);
        result.resize(result.find('\0'));
        return result;
    }
    size_t bits() const { return isZero() ? 0 : mpz_sizeinbase(_value, 2); }
    bool isZero() const { return mpz_sgn(_value) == 0; }
    bool isPrime() const { return mpz_probab_prime_p(_value, 30) != 0; }

    Natural lowBits(size_t count) const
    {
        Natural result;
        mpz_fdiv_r_2exp(result._value, _value, count);
        return result;
    }
    Natural squareRoot() const
    {
        Natural result;
        mpz_sqrt(result._value, _value);
        return result;
    }
    Natural gcd(const Natural& other) const
    {
        Natural result;
        mpz_gcd(result._value, _value, other._value);
        return result;
    }
    Natural powerModulo(const Natural& exponent, const Natural& modulus) const
    {
        Natural result;
        mpz_powm(result._value, _value, exponent._value, modulus._value);
        return result;
    }
    bool inverseModulo(const Natural& modulus, Natural& inverse) const
    {
        return mpz_invert(inverse._value, _value, modulus._value) != 0;
    }

    friend Natural operator+(const Natural& a, const Natural& b) { return with(mpz_add, a, b); }
    // May go below zero; lowBits() then gives the value modulo the power of two.
    friend Natural operator-(const Natural& a, const Natural& b) { return with(mpz_sub, a, b); }
    friend Natural operator*(const Natural& a, const Natural& b) { return with(mpz_mul, a, b); }
    friend Natural operator/(const Natural& a, const Natural& b) { return with(mpz_fdiv_q, a, b); }
    friend Natural operator%(const Natural& a, const Natural& b) { return with(mpz_fdiv_r, a, b); }
    friend Natural operator^(const Natural& a, const Natural& b) { return with(mpz_xor, a, b); }
    friend Natural operator|(const Natural& a, const Natural& b) { return with(mpz_ior, a, b); }
    friend Natural operator&(const Natural& a, const Natural& b) { return with(mpz_and, a, b); }
    friend Natural operator<<(const Natural& a, size_t bits) { return with(mpz_mul_2exp, a, bits); }
    friend Natural operator>>(const Natural& a, size_t bits) { return with(mpz_fdiv_q_2exp, a, bits); }
    friend bool operator==(const Natural& a, const Natural& b) { return mpz_cmp(a._value, b._value) == 0; }
    friend bool operator!=(const Natural& a, const Natural& b) { return mpz_cmp(a._value, b._value) != 0; }
    friend bool operator<(const Natural& a, const Natural& b) { return mpz_cmp(a._value, b._value) < 0; }
    friend bool operator>(const Natural& a, const Natural& b) { return mpz_cmp(a._value, b._value) > 0; }
    friend bool operator<=(const Natural& a, const Natural& b) { return mpz_cmp(a._value, b._value) <= 0; }
    friend std::ostream& operator<<(std::ostream& stream, const Natural& a) { return stream << "0x" << a.text(16); }

private:
    static Natural with(void (*operation)(mpz_ptr, mpz_srcptr, mpz_srcptr), const Natural& a, const Natural& b)
    {
        Natural result;
        operation(result._value, a._value, b._value);
        return result;
    }
    static Natural with(void (*operation)(mpz_ptr, mpz_srcptr, mp_bitcnt_t), const Natural& a, size_t bits)
    {
        Natural result;
        operation(result._value, a._value, bits);
        return result;
    }

    mpz_t _value;
};

#endif
