// SPDX-License-Identifier: Apache-2.0
// A machine with eight registers of digits. The input is its program: it loads numbers and combines them, and GMP does
// the same beside it. After every instruction the two must agree digit for digit, and what is only read must be as it
// was.
#include <array>
#include <vector>

#include <gmp.h>

#include "bigdigits.h"
#include "fuzzInput.h"
#include "fuzzNumbers.h"

namespace
{

constexpr std::size_t amountOfRegisters = 8;
// Enough for columns and the shortest limbs; bigdigitsLong takes longer numbers.
constexpr std::uint32_t mostDigits = 48;
constexpr int mostInstructions = 60;

class Machine
{
public:
    explicit Machine(FuzzInput& input) : _input(input)
    {
        _amountOfDigits = 1 + _input.byte() % mostDigits;
        for (Digits& digits : _registers)
        {
            digits.assign(_amountOfDigits, 0);
        }
    }

    void run()
    {
        for (int i = 0; i < mostInstructions && !_input.isEmpty(); ++i)
        {
            performOne();
        }
    }

private:
    Digits& anyRegister() { return _registers[_input.byte() % amountOfRegisters]; }

    // Digits that are of the kinds that carries and estimates stumble over.
    void load(Digits& digits)
    {
        const std::uint8_t kind = _input.byte();
        for (mpDigit& digit : digits)
        {
            switch (kind % 5)
            {
            case 0:
                digit = _input.word();
                break;
            case 1:
                digit = (_input.byte() & 1U) != 0 ? 0xFFFFFFFFU : 0;
                break;
            case 2:
                digit = 0x80000000U >> (_input.byte() % 32U);
                break;
            case 3:
                digit = 0;
                break;
            default:
                digit = 0xFFFFFFFFU;
                break;
            }
        }
        if (kind % 5 == 3)
        {
            digits[_input.byte() % digits.size()] = _input.word();
        }
    }

    void performOne();
    void performModular(std::uint8_t instruction, Digits& result, const Digits& first, const Digits& second,
                        const Digits& third);
    void divide(Digits& quotient, Digits& remainder, const Digits& dividend, const Digits& divisor);

    FuzzInput& _input;
    std::uint32_t _amountOfDigits = 0;
    std::array<Digits, amountOfRegisters> _registers;
};

void Machine::performOne()
{
    const std::uint8_t instruction = _input.byte() % 24;
    // Copies, so that the result may be any register, and that inputs can be looked at afterwards.
    const Digits first = anyRegister();
    const Digits second = anyRegister();
    Digits& result = anyRegister();
    const std::uint32_t n = _amountOfDigits;
    Number u;
    Number v;
    Number expected;
    toNumber(u, first);
    toNumber(v, second);
    switch (instruction)
    {
    case 0:
    case 1:
    case 2:
        load(result);
        return;
    case 3:
    {
        const mpDigit carry = mpAdd(result.data(), first.data(), second.data(), n);
        mpz_add(expected.get(), u.get(), v.get());
        FUZZ_CHECK(carry == static_cast<mpDigit>(mpz_tstbit(expected.get(), n * 32UL)));
        cutTo(expected, n);
        FUZZ_CHECK(agree(result, expected));
        break;
    }
    case 4:
    {
        const mpDigit borrow = mpSubtract(result.data(), first.data(), second.data(), n);
        mpz_sub(expected.get(), u.get(), v.get());
        FUZZ_CHECK(borrow == (mpz_sgn(expected.get()) < 0 ? 1U : 0U));
        cutTo(expected, n);
        FUZZ_CHECK(agree(result, expected));
        break;
    }
    case 5:
    case 6:
    {
        Digits product(2UL * n, 0xA5A5A5A5U);
        if (instruction == 5)
        {
            FUZZ_CHECK(mpMultiply(product.data(), first.data(), second.data(), n) == 0);
            mpz_mul(expected.get(), u.get(), v.get());
        }
        else
        {
            FUZZ_CHECK(mpSquare(product.data(), first.data(), n) == 0);
            mpz_mul(expected.get(), u.get(), u.get());
        }
        FUZZ_CHECK(agree(product, expected));
        // The lower or the upper half goes on.
        const long half = n;
        const long from = (_input.byte() & 1U) != 0 ? half : 0;
        result.assign(product.begin() + from, product.begin() + from + half);
        break;
    }
    case 7:
    {
        Digits remainder(n, 0xA5A5A5A5U);
        divide(result, remainder, first, second);
        anyRegister() = remainder;
        break;
    }
    case 8:
    {
        const std::uint32_t shift = _input.byte() % (n * 32 + 40);
        const mpDigit carry = mpShiftLeft(result.data(), first.data(), shift, n);
        mpz_mul_2exp(expected.get(), u.get(), shift);
        if (shift < 32)
        {
            Number pushedOut;
            mpz_fdiv_q_2exp(pushedOut.get(), expected.get(), n * 32UL);
            FUZZ_CHECK(mpz_cmp_ui(pushedOut.get(), carry) == 0);
        }
        cutTo(expected, n);
        FUZZ_CHECK(agree(result, expected));
        break;
    }
    case 9:
    {
        // Above that, digits are read that the number does not have.
        const std::uint32_t shift = _input.byte() % (n * 32 + 32);
        const mpDigit carry = mpShiftRight(result.data(), first.data(), shift, n);
        mpz_fdiv_q_2exp(expected.get(), u.get(), shift);
        FUZZ_CHECK(agree(result, expected));
        if (shift < 32)
        {
            Number pushedOut;
            mpz_fdiv_r_2exp(pushedOut.get(), u.get(), shift);
            mpz_mul_2exp(pushedOut.get(), pushedOut.get(), 32UL - shift);
            FUZZ_CHECK(mpz_cmp_ui(pushedOut.get(), carry) == 0);
        }
        break;
    }
    case 10:
    {
        const std::uint32_t bits = _input.byte() % (n * 32 + 40);
        result = first;
        mpModPowerOf2(result.data(), n, bits);
        mpz_fdiv_r_2exp(expected.get(), u.get(), bits);
        FUZZ_CHECK(agree(result, expected));
        break;
    }
    case 11:
        mpXorBits(result.data(), first.data(), second.data(), n);
        mpz_xor(expected.get(), u.get(), v.get());
        FUZZ_CHECK(agree(result, expected));
        break;
    case 12:
        mpOrBits(result.data(), first.data(), second.data(), n);
        mpz_ior(expected.get(), u.get(), v.get());
        FUZZ_CHECK(agree(result, expected));
        break;
    case 13:
        mpAndBits(result.data(), first.data(), second.data(), n);
        mpz_and(expected.get(), u.get(), v.get());
        FUZZ_CHECK(agree(result, expected));
        break;
    case 14:
    {
        const mpDigit digit = _input.word();
        const mpDigit carry = mpShortAdd(result.data(), first.data(), digit, n);
        mpz_add_ui(expected.get(), u.get(), digit);
        FUZZ_CHECK(carry == static_cast<mpDigit>(mpz_tstbit(expected.get(), n * 32UL)));
        cutTo(expected, n);
        FUZZ_CHECK(agree(result, expected));
        break;
    }
    case 15:
    {
        const mpDigit digit = _input.word();
        const mpDigit borrow = mpShortSub(result.data(), first.data(), digit, n);
        mpz_sub_ui(expected.get(), u.get(), digit);
        FUZZ_CHECK(borrow == (mpz_sgn(expected.get()) < 0 ? 1U : 0U));
        cutTo(expected, n);
        FUZZ_CHECK(agree(result, expected));
        break;
    }
    case 16:
    {
        const mpDigit digit = _input.word();
        const mpDigit overflow = mpShortMult(result.data(), first.data(), digit, n);
        mpz_mul_ui(expected.get(), u.get(), digit);
        Number pushedOut;
        mpz_fdiv_q_2exp(pushedOut.get(), expected.get(), n * 32UL);
        FUZZ_CHECK(mpz_cmp_ui(pushedOut.get(), overflow) == 0);
        cutTo(expected, n);
        FUZZ_CHECK(agree(result, expected));
        break;
    }
    case 17:
    {
        const mpDigit digit = _input.word();
        FUZZ_CHECK(mpShortMod(first.data(), digit, n) ==
                   (digit == 0 ? 0 : static_cast<mpDigit>(mpz_fdiv_ui(u.get(), digit))));
        const Digits before = result;
        const mpDigit remainder = mpShortDiv(result.data(), first.data(), digit, n);
        if (digit == 0)
        {
            FUZZ_CHECK(remainder == 0 && result == before);
        }
        else
        {
            FUZZ_CHECK(remainder == static_cast<mpDigit>(mpz_fdiv_q_ui(expected.get(), u.get(), digit)));
            FUZZ_CHECK(agree(result, expected));
        }
        break;
    }
    case 18:
    {
        const int compared = mpz_cmp(u.get(), v.get());
        FUZZ_CHECK(mpCompare(first.data(), second.data(), n) == (compared > 0 ? 1 : compared < 0 ? -1 : 0));
        FUZZ_CHECK(mpEqual(first.data(), second.data(), n) == (compared == 0 ? 1 : 0));
        FUZZ_CHECK(mpIsZero(first.data(), n) == (mpz_sgn(u.get()) == 0 ? 1 : 0));
        const std::uint32_t bits = mpz_sgn(u.get()) == 0 ? 0 : static_cast<std::uint32_t>(mpz_sizeinbase(u.get(), 2));
        FUZZ_CHECK(mpBitLength(first.data(), n) == bits);
        FUZZ_CHECK(mpSizeof(first.data(), n) == (bits + 31) / 32);
        const mpDigit digit = _input.word();
        const int comparedToDigit = mpz_cmp_ui(u.get(), digit);
        FUZZ_CHECK(mpShortCmp(first.data(), digit, n) == (comparedToDigit > 0 ? 1 : comparedToDigit < 0 ? -1 : 0));
        break;
    }
    default:
        performModular(instruction, result, first, second, Digits(anyRegister()));
        break;
    }
    // What is only read is as it was.
    FUZZ_CHECK(agree(first, u) && agree(second, v));
}

void Machine::divide(Digits& quotient, Digits& remainder, const Digits& dividend, const Digits& divisor)
{
    const std::uint32_t n = _amountOfDigits;
    Number u;
    Number v;
    Number q;
    Number r;
    toNumber(u, dividend);
    toNumber(v, divisor);
    Digits writableDivisor = divisor;
    const int answer = mpDivide(quotient.data(), remainder.data(), dividend.data(), n, writableDivisor.data(), n);
    FUZZ_CHECK(writableDivisor == divisor);
    FUZZ_CHECK(answer == (mpz_sgn(v.get()) == 0 ? -1 : 0));
    if (answer == 0)
    {
        mpz_fdiv_qr(q.get(), r.get(), u.get(), v.get());
    }
    FUZZ_CHECK(agree(quotient, q) && agree(remainder, r));
}

void Machine::performModular(std::uint8_t instruction, Digits& result, const Digits& first, const Digits& second,
                             const Digits& third)
{
    const std::uint32_t n = _amountOfDigits;
    Number u;
    Number v;
    Number m;
    Number expected;
    toNumber(u, first);
    toNumber(v, second);
    toNumber(m, third);
    const Digits& modulus = third;
    const bool hasModulus = mpz_sgn(m.get()) != 0;
    switch (instruction)
    {
    case 19:
        FUZZ_CHECK(mpModMult(result.data(), first.data(), second.data(), modulus.data(), n) == 0);
        if (hasModulus)
        {
            mpz_mul(expected.get(), u.get(), v.get());
            mpz_fdiv_r(expected.get(), expected.get(), m.get());
        }
        FUZZ_CHECK(agree(result, expected));
        break;
    case 20:
        FUZZ_CHECK(mpModExp(result.data(), first.data(), second.data(), modulus.data(), n) == 0);
        // An exponent of one hands the base on.
        if (hasModulus)
        {
            mpz_powm(expected.get(), u.get(), v.get(), m.get());
            FUZZ_CHECK(agree(result, mpz_cmp_ui(v.get(), 1) == 0 ? u : expected));
        }
        break;
    case 21:
        FUZZ_CHECK(mpGcd(result.data(), first.data(), second.data(), n) == 0);
        mpz_gcd(expected.get(), u.get(), v.get());
        FUZZ_CHECK(agree(result, expected));
        break;
    case 22:
        FUZZ_CHECK(mpSqrt(result.data(), first.data(), n) == 0);
        mpz_sqrt(expected.get(), u.get());
        FUZZ_CHECK(agree(result, expected));
        break;
    default:
        // The inverse itself is defined for a modulus above one and what is prime to it.
        if (mpz_cmp_ui(v.get(), 1) > 0)
        {
            const int answer = mpModInv(result.data(), first.data(), second.data(), n);
            const bool exists = mpz_invert(expected.get(), u.get(), v.get()) != 0;
            FUZZ_CHECK(answer == (exists ? 0 : 1));
            if (!exists)
            {
                mpz_set_ui(expected.get(), 0);
            }
            FUZZ_CHECK(agree(result, expected));
        }
        break;
    }
    Number modulusAfter;
    toNumber(modulusAfter, third);
    FUZZ_CHECK(mpz_cmp(modulusAfter.get(), m.get()) == 0);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t size)
{
    FuzzInput input(pBytes, size);
    Machine(input).run();
    return 0;
}
