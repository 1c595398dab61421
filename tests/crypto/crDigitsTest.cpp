// SPDX-License-Identifier: Apache-2.0
#include "crypto/crDigits.h"

#include <cctype>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cryptoTestSupport.h"

namespace
{

// sscanf on a copy of the group; a group that does not begin with a hexadecimal character is zero.
unsigned int digitAsSscanfReadsIt(const std::string& group)
{
    if (group.empty() || std::isxdigit(static_cast<unsigned char>(group[0])) == 0)
    {
        return 0;
    }
    unsigned int digit = 0;
    // What it is that this looks at is how sscanf converts. NOLINTNEXTLINE(cert-err34-c)
    return std::sscanf(group.c_str(), "%8x", &digit) == 1 ? digit : 0;
}

}  // namespace

TEST(Digits, AreReadAsSscanfReadsThem)
{
    const char* groups[] = {"00000000", "ffffffff", "FFFFFFFF", "00010001", "1",        "12g45678", "0x123456", "0X12",
                            "0x",       "0xg12345", "00x12345", "x1234567", " 1234567", "-1234567", "+1234567", "\t12",
                            "",         "1 234567", "deadbeef", "DeAdBeEf", "0x0x1234", "1234567",  "@0000000", "`1",
                            "/1",       ":1",       "G1",       "g1",       "9",        "a",        "A",        "f",
                            "F",        "12:45678", "12/45678", "12@45678", "12G45678", "12`45678"};
    for (const char* pGroup : groups)
    {
        EXPECT_EQ(crReadDigit(pGroup), digitAsSscanfReadsIt(pGroup)) << pGroup;
    }
}

TEST(Digits, OfAnyBytesAreReadAsSscanfReadsThem)
{
    const std::string characters = "0123456789abcdefABCDEFxX -+g\377";
    for (unsigned int seed = 0; seed < 20000; ++seed)
    {
        std::string group = scrambledBytes(8, seed);
        for (char& character : group)
        {
            character = characters[static_cast<unsigned char>(character) % characters.size()];
        }
        EXPECT_EQ(crReadDigit(group.c_str()), digitAsSscanfReadsIt(group)) << group;
    }
}

TEST(Digits, AreScannedAsSscanfScansThem)
{
    const char* groups[] = {
        "00000003",  "       3",  "-0000003", "+0000003", " -3",       "- 3",      "-",   "+",   "",    "        ",
        "        3", "-ffffffff", "-0x1",     "0x",       "-0x",       "0xg",      "+-3", "-+3", "--3", "\t\n\v\f\r 3",
        "\0163",     "\0103",     "\2403",    "\2053",    "       -3", "      -3", "x3",  "g",   "!3",  "#3"};
    for (const char* pGroup : groups)
    {
        const std::string group = std::string(pGroup).substr(0, 8);
        unsigned int expected = 0;
        // NOLINTNEXTLINE(cert-err34-c): how sscanf converts is what this looks at
        if (std::sscanf(group.c_str(), "%8x", &expected) != 1)
        {
            expected = 0;
        }
        EXPECT_EQ(crScanDigit(pGroup), expected) << pGroup;
    }
    const std::string characters = "0123456789abcdefABCDEFxX   --++\t\ng\377";
    for (unsigned int seed = 0; seed < 30000; ++seed)
    {
        std::string group = scrambledBytes(8, seed);
        for (char& character : group)
        {
            character = characters[static_cast<unsigned char>(character) % characters.size()];
        }
        unsigned int expected = 0;
        // NOLINTNEXTLINE(cert-err34-c)
        if (std::sscanf(group.c_str(), "%8x", &expected) != 1)
        {
            expected = 0;
        }
        // Not what follows the eight characters.
        ASSERT_EQ(crScanDigit((group + "1").c_str()), expected) << group;
        ASSERT_EQ(crBeginsWithDigit(group.c_str()), std::isxdigit(static_cast<unsigned char>(group[0])) != 0);
    }
    // Nor is it looked at, which the address sanitizer watches.
    for (const char* pGroup : {"        ", "       -", "       +", "      -1", "12345678"})
    {
        const std::vector<char> eight(pGroup, pGroup + 8);
        crScanDigit(eight.data());
    }
}

TEST(Digits, EndWithWhatIsAvailable)
{
    EXPECT_EQ(crReadDigit("123"), 0x123U);
    EXPECT_EQ(crReadDigit(""), 0U);
    EXPECT_EQ(crReadDigit("123456789"), 0x12345678U);
    EXPECT_EQ(crReadDigit("12\0"
                          "45678"),
              0x12U);
    EXPECT_EQ(crReadDigit("0x"), 0U);
    EXPECT_EQ(crReadDigit("0x1"), 1U);
    EXPECT_EQ(crReadDigit("0x12345678"), 0x123456U);
    EXPECT_EQ(crReadDigit("0X12345678"), 0x123456U);
    // Neither more than eight characters nor what follows the NUL is looked at, which the address sanitizer watches.
    const std::vector<char> eight = {'1', '2', '3', '4', '5', '6', '7', '8'};
    EXPECT_EQ(crReadDigit(eight.data()), 0x12345678U);
    const std::vector<char> one = {'\0'};
    EXPECT_EQ(crReadDigit(one.data()), 0U);
}

TEST(Digits, AreWrittenWithEightCharacters)
{
    std::vector<unsigned int> digits;
    std::string expected = "kept";
    gtString text("kept");
    for (unsigned int i = 0; i < 200; ++i)
    {
        digits.push_back(i * 0x01020304U);
        expected += hexOf(digits.back(), 8);
    }
    crAppendDigits(text, digits.data(), 200);
    EXPECT_EQ(toBytes(text), expected);
    crAppendDigits(text, digits.data(), 0);
    crAppendDigits(text, nullptr, -1);
    crAppendDigits(text, nullptr, INT_MIN);
    EXPECT_EQ(toBytes(text), expected);
}

TEST(Digits, OfANegativeAmountAreNull)
{
    EXPECT_EQ(crAllocateDigits(-1), nullptr);
    EXPECT_EQ(crAllocateDigits(-2147483647 - 1), nullptr);
    unsigned int* pNone = crAllocateDigits(0);
    EXPECT_NE(pNone, nullptr);
    crReleaseDigits(pNone, 0);
    crReleaseDigits(nullptr, 5);
}

TEST(Digits, AreZeroAtFirst)
{
    crTemporaryDigits digits(1000);
    ASSERT_NE(digits.digits(), nullptr);
    for (int i = 0; i < 1000; ++i)
    {
        ASSERT_EQ(digits.digits()[i], 0U);
    }
}
