// SPDX-License-Identifier: Apache-2.0
// Numbers to octets and texts and back, compared with GMP, into buffers of every size: short ones digit for digit from
// the input, and ones so long that decimal text is made and read by halving.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <gmp.h>

#include "bigdigits.h"
#include "fuzzInput.h"
#include "fuzzNumbers.h"

namespace
{

// Of those that the input gives digit for digit.
constexpr std::uint32_t mostDigits = 40;
// Decimal text is halved from 3969 characters on, which takes 413 digits.
constexpr std::uint32_t fewestHalvedCharacters = 3969;
constexpr std::uint32_t fewestHalvedDigits = 413;

std::string textOf(const mpz_t number, int base)
{
    std::vector<char> text(mpz_sizeinbase(number, base) + 2);
    mpz_get_str(text.data(), base, number);
    return text.data();
}

// The buffer is as long as is said, so that the address sanitizer sees a step outside.
void checkText(const Digits& digits, std::uint32_t room, int base, const std::string& expected)
{
    const auto n = static_cast<std::uint32_t>(digits.size());
    const auto convert = base == 10 ? mpConvToDecimal : mpConvToHex;
    FUZZ_CHECK(convert(digits.data(), n, nullptr, 0) == expected.size());
    // Zero writes its two characters even where there is room for one.
    std::vector<char> buffer((room == 1 && expected == "0") ? 2 : room, '#');
    FUZZ_CHECK(convert(digits.data(), n, buffer.data(), room) == expected.size());
    if (room > 1)
    {
        FUZZ_CHECK(buffer[room - 1] == '\0' && expected.substr(0, room - 1) == buffer.data());
    }
}

// What the digits of the text make, less what has no room in the octets set aside and in the array.
void checkReading(const std::string& text, std::uint32_t n, int base)
{
    const char* const accepted = base == 10 ? "0123456789" : "0123456789abcdefABCDEF";
    std::string characters = "0";
    std::copy_if(text.begin(), text.end(), std::back_inserter(characters),
                 [accepted](char character) { return std::strchr(accepted, character) != nullptr; });
    const std::uint32_t octets = ceilToUnsigned(static_cast<double>(text.size()) * (base == 10 ? 0.41524 : 0.5));
    Number expected;
    FUZZ_CHECK(mpz_set_str(expected.get(), characters.c_str(), base) == 0);
    mpz_fdiv_r_2exp(expected.get(), expected.get(), octets * 8UL);
    cutTo(expected, n);

    std::vector<char> exact(text.begin(), text.end());
    exact.push_back('\0');
    exact.shrink_to_fit();
    Digits digits(n, 0xA5A5A5A5U);
    const auto convert = base == 10 ? mpConvFromDecimal : mpConvFromHex;
    FUZZ_CHECK(convert(digits.data(), n, exact.data()) == std::min(n, (octets + 3) / 4));
    FUZZ_CHECK(agree(digits, expected));
}

void checkNumber(FuzzInput& input)
{
    const std::uint32_t n = input.byte() % mostDigits;
    Digits digits(n);
    for (mpDigit& digit : digits)
    {
        digit = input.word();
    }
    Number number;
    toNumber(number, digits);

    const std::uint32_t octetsRoom = input.byte();
    std::vector<unsigned char> octets(octetsRoom + 1U, 0x5A);
    const auto needed =
        static_cast<std::uint32_t>(mpz_sgn(number.get()) == 0 ? 0 : (mpz_sizeinbase(number.get(), 2) + 7) / 8);
    FUZZ_CHECK(mpConvToOctets(digits.data(), n, octets.data(), octetsRoom) == needed);
    FUZZ_CHECK(octets[octetsRoom] == 0x5A);
    Number back;
    mpz_import(back.get(), octetsRoom, 1, 1, 0, 0, octets.data());
    mpz_fdiv_r_2exp(number.get(), number.get(), octetsRoom * 8UL);
    FUZZ_CHECK(mpz_cmp(back.get(), number.get()) == 0);

    Digits again(n, 0xA5A5A5A5U);
    const std::uint32_t count = mpConvFromOctets(again.data(), n, octets.data(), octetsRoom);
    FUZZ_CHECK(count == std::min(n, (octetsRoom + 3) / 4));
    cutTo(number, n);
    FUZZ_CHECK(agree(again, number));

    toNumber(number, digits);
    const std::uint32_t textRoom = input.byte();
    checkText(digits, textRoom, 10, n == 0 ? "" : textOf(number.get(), 10));
    checkText(digits, textRoom, 16, n == 0 ? "" : textOf(number.get(), 16));
    FUZZ_CHECK(conv_to_base(digits.data(), n, nullptr, 0, 2 + input.byte() % 8U) == 0);
}

void checkTextToNumber(FuzzInput& input)
{
    const std::uint32_t n = input.byte() % mostDigits;
    std::string text = input.rest();
    std::replace(text.begin(), text.end(), '\0', ' ');
    checkReading(text, n, 10);
    checkReading(text, n, 16);
}

// Mostly little more than is halved at all, so that there are many; else up to some 60,000 characters, whose powers of
// five are squared by parts.
std::uint32_t above(FuzzInput& input, std::uint32_t fewest)
{
    const std::uint8_t kind = input.byte() % 8;
    const std::uint32_t spans[] = {fewest / 50, fewest / 4, fewest * 3, fewest * 14};
    return fewest - fewest / 100 + input.word() % spans[kind < 4 ? 0 : kind < 6 ? 1 : kind - 4];
}

// Room for as much as is needed, a little more or less, or any.
std::uint32_t roomFor(FuzzInput& input, std::uint32_t needed)
{
    const std::uint8_t kind = input.byte();
    return kind < 192 ? std::max(needed, 3U) + kind % 8U - 3 : input.word() % (2 * needed);
}

void checkLongNumber(FuzzInput& input)
{
    const bool isNearPowerOfTen = input.byte() % 2 != 0;
    const std::uint32_t n = above(input, fewestHalvedDigits);
    Digits digits;
    Number number;
    if (isNearPowerOfTen)
    {
        // All leaves but one are zeros or nines.
        const std::uint32_t exponent = n * 9;
        mpz_ui_pow_ui(number.get(), 10, exponent);
        const std::uint32_t lower = input.word() % exponent;
        Number other;
        mpz_ui_pow_ui(other.get(), 10, lower);
        mpz_mul_ui(other.get(), other.get(), input.byte() % 10U);
        mpz_sub(number.get(), number.get(), other.get());
        digits = toDigits(number, n);
    }
    else
    {
        digits = fuzzDigits(input, n);
        toNumber(number, digits);
    }
    const std::string text = textOf(number.get(), 10);
    checkText(digits, roomFor(input, static_cast<std::uint32_t>(text.size() + 1)), 10, text);
    FUZZ_CHECK(agree(digits, number));
    checkReading(text, roomFor(input, n), 10);
}

// Digits, some runs of which are equal, and among them what is skipped.
void checkLongText(FuzzInput& input)
{
    const std::uint32_t size = above(input, fewestHalvedCharacters);
    const std::string odd = input.bytes(1 + input.byte() % 4U);
    const std::uint8_t kind = input.byte();
    std::mt19937 random(input.word());
    std::string text;
    while (text.size() < size)
    {
        const auto character = static_cast<char>('0' + random() % 10);
        text.append(kind % 4 == 0 ? random() % 600 : 1, kind % 8 == 4 && character > '4' ? '9' : character);
        // Seldom, often, or never.
        if (kind >= 64 && !odd.empty() && random() % (kind >= 128 ? 500 : 5) == 0)
        {
            const char skipped = odd[random() % odd.size()];
            text += skipped == '\0' ? '.' : skipped;
        }
    }
    text.resize(size);
    for (std::uint8_t changes = input.byte() % 8; changes > 0; --changes)
    {
        const auto character = static_cast<char>(input.byte());
        text[input.word() % size] = character == '\0' ? '0' : character;
    }
    checkReading(text, roomFor(input, size * 10 / 96), 10);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t size)
{
    FuzzInput input(pBytes, size);
    switch (input.byte() % 4)
    {
    case 0:
        checkNumber(input);
        break;
    case 1:
        checkTextToNumber(input);
        break;
    case 2:
        checkLongNumber(input);
        break;
    default:
        checkLongText(input);
        break;
    }
    return 0;
}
