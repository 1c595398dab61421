// SPDX-License-Identifier: Apache-2.0
// Numbers to octets and texts and back, compared with GMP, into buffers of every size.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <gmp.h>

#include "bigdigits.h"
#include "fuzzInput.h"

namespace
{

constexpr std::uint32_t mostDigits = 40;
using Digits = std::vector<mpDigit>;

std::string withoutLeadingZeros(const std::string& text)
{
    const std::size_t first = text.find_first_not_of('0');
    return first == std::string::npos ? "" : text.substr(first);
}

std::string textOf(const mpz_t number, int base)
{
    std::vector<char> text(mpz_sizeinbase(number, base) + 2);
    mpz_get_str(text.data(), base, number);
    return text.data();
}

// Whatever stands in the buffer behind its end must still stand there.
void checkText(const Digits& digits, std::uint32_t room, int base, const std::string& expected)
{
    const auto n = static_cast<std::uint32_t>(digits.size());
    const auto convert = base == 10 ? mpConvToDecimal : mpConvToHex;
    FUZZ_CHECK(convert(digits.data(), n, nullptr, 0) == expected.size());
    std::vector<char> buffer(room + 8U, '#');
    FUZZ_CHECK(convert(digits.data(), n, buffer.data(), room) == expected.size());
    // Zero writes its two characters even where there is room for one.
    const std::uint32_t written = (room == 1 && expected == "0") ? 2 : room;
    for (std::size_t i = written; i < buffer.size(); ++i)
    {
        FUZZ_CHECK(buffer[i] == '#');
    }
    if (room > 1)
    {
        FUZZ_CHECK(expected.substr(0, room - 1) == buffer.data());
    }
}

void checkNumber(FuzzInput& input)
{
    const std::uint32_t n = input.byte() % mostDigits;
    Digits digits(n);
    for (mpDigit& digit : digits)
    {
        digit = input.word();
    }
    mpz_t number;
    mpz_init(number);
    mpz_import(number, n, -1, sizeof(mpDigit), 0, 0, digits.data());

    const std::uint32_t octetsRoom = input.byte();
    std::vector<unsigned char> octets(octetsRoom + 1U, 0x5A);
    const auto needed = static_cast<std::uint32_t>(mpz_sgn(number) == 0 ? 0 : (mpz_sizeinbase(number, 2) + 7) / 8);
    FUZZ_CHECK(mpConvToOctets(digits.data(), n, octets.data(), octetsRoom) == needed);
    FUZZ_CHECK(octets[octetsRoom] == 0x5A);
    mpz_t back;
    mpz_init(back);
    mpz_import(back, octetsRoom, 1, 1, 0, 0, octets.data());
    mpz_fdiv_r_2exp(number, number, octetsRoom * 8UL);
    FUZZ_CHECK(mpz_cmp(back, number) == 0);

    Digits again(n, 0xA5A5A5A5U);
    const std::uint32_t count = mpConvFromOctets(again.data(), n, octets.data(), octetsRoom);
    FUZZ_CHECK(count == std::min(n, (octetsRoom + 3) / 4));
    mpz_fdiv_r_2exp(number, number, n * 32UL);
    mpz_import(back, n, -1, sizeof(mpDigit), 0, 0, again.data());
    FUZZ_CHECK(mpz_cmp(back, number) == 0);

    mpz_import(number, n, -1, sizeof(mpDigit), 0, 0, digits.data());
    const std::uint32_t textRoom = input.byte();
    checkText(digits, textRoom, 10, n == 0 ? "" : textOf(number, 10));
    checkText(digits, textRoom, 16, n == 0 ? "" : textOf(number, 16));
    FUZZ_CHECK(conv_to_base(digits.data(), n, nullptr, 0, 2 + input.byte() % 8U) == 0);
    mpz_clear(back);
    mpz_clear(number);
}

// Only so many decimal digits always find room, which is said in the header.
constexpr std::size_t mostDecimalDigits = 1700;

void checkTextToNumber(FuzzInput& input)
{
    const std::uint32_t n = input.byte() % mostDigits;
    std::string text = input.rest();
    std::replace(text.begin(), text.end(), '\0', ' ');
    std::string decimal;
    std::string hexadecimal;
    for (const char character : text)
    {
        if (character >= '0' && character <= '9')
        {
            decimal += character;
        }
        if (std::strchr("0123456789abcdefABCDEF", character) != nullptr)
        {
            hexadecimal += character;
        }
    }
    for (const int base : {10, 16})
    {
        if (base == 10 && decimal.size() > mostDecimalDigits)
        {
            continue;
        }
        Digits digits(n, 0xA5A5A5A5U);
        const auto convert = base == 10 ? mpConvFromDecimal : mpConvFromHex;
        const std::uint32_t count = convert(digits.data(), n, text.c_str());
        FUZZ_CHECK(count <= n);
        mpz_t number;
        mpz_init_set_ui(number, 0);
        const std::string significant = withoutLeadingZeros(base == 10 ? decimal : hexadecimal);
        if (!significant.empty())
        {
            FUZZ_CHECK(mpz_set_str(number, significant.c_str(), base) == 0);
        }
        mpz_fdiv_r_2exp(number, number, n * 32UL);
        mpz_t read;
        mpz_init(read);
        mpz_import(read, n, -1, sizeof(mpDigit), 0, 0, digits.data());
        FUZZ_CHECK(mpz_cmp(read, number) == 0);
        FUZZ_CHECK(mpSizeof(digits.data(), n) <= count);
        mpz_clear(read);
        mpz_clear(number);
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t size)
{
    FuzzInput input(pBytes, size);
    if (input.byte() % 2 == 0)
    {
        checkNumber(input);
    }
    else
    {
        checkTextToNumber(input);
    }
    return 0;
}
