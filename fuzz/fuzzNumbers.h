// SPDX-License-Identifier: Apache-2.0
// What the fuzzers of the arithmetic share: numbers of GMP, and long numbers from few octets of the input.
#ifndef COUNTERSIGN_FUZZ_NUMBERS_H
#define COUNTERSIGN_FUZZ_NUMBERS_H

#include <cstdint>
#include <random>
#include <vector>

#include <gmp.h>

#include "bigdigits.h"
#include "fuzzInput.h"

// A number of the stranger.
class Number
{
public:
    Number() { mpz_init(_number); }
    ~Number() { mpz_clear(_number); }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;
    mpz_ptr get() { return _number; }
    mpz_srcptr get() const { return _number; }

private:
    mpz_t _number;
};

// As long as it says: the address sanitizer sees a step outside.
using Digits = std::vector<mpDigit>;

inline void toNumber(Number& number, const Digits& digits)
{
    mpz_import(number.get(), digits.size(), -1, sizeof(mpDigit), 0, 0, digits.data());
}

// Modulo 2^(32n), as the module has it.
inline void cutTo(Number& number, std::size_t amountOfDigits)
{
    mpz_fdiv_r_2exp(number.get(), number.get(), amountOfDigits * 32UL);
}

// What of the number has room in so many digits.
inline Digits toDigits(const Number& number, std::size_t amountOfDigits)
{
    Number low;
    mpz_fdiv_r_2exp(low.get(), number.get(), amountOfDigits * 32UL);
    Digits result(amountOfDigits);
    mpz_export(result.data(), nullptr, -1, sizeof(mpDigit), 0, 0, low.get());
    return result;
}

inline bool agree(const Digits& digits, const Number& number)
{
    Number other;
    toNumber(other, digits);
    return mpz_cmp(other.get(), number.get()) == 0;
}

// So many digits: random ones, the same ones again and again, or runs of zeros and ones; and a few that the input
// chooses.
inline Digits fuzzDigits(FuzzInput& input, std::size_t amount)
{
    Digits result(amount);
    if (amount == 0)
    {
        return result;
    }
    const std::uint8_t kind = input.byte() % 5;
    std::mt19937 random(kind < 2 ? input.word() : 0);
    const mpDigit repeated[] = {kind == 2 ? input.word() : kind == 3 ? 0xFFFFFFFFU : 0, kind == 2 ? input.word() : 0};
    bool isOnes = false;
    for (std::size_t i = 0; i < amount; ++i)
    {
        switch (kind)
        {
        case 0:
            result[i] = static_cast<mpDigit>(random());
            break;
        case 1:
            isOnes = isOnes != (random() % 16 == 0);
            result[i] = isOnes ? 0xFFFFFFFFU : 0;
            break;
        case 2:
            result[i] = repeated[i % 2];
            break;
        default:
            result[i] = repeated[0];
            break;
        }
    }
    for (std::uint8_t changes = input.byte() % 8; changes > 0; --changes)
    {
        const std::size_t place = input.word() % amount;
        result[place] = input.word();
    }
    return result;
}

#endif
