// SPDX-License-Identifier: Apache-2.0
#include "crypto/crRSAEncryptionKey.h"

#include <climits>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "cryptoTestSupport.h"

static_assert(!std::is_copy_constructible_v<crRSAEncryptionKey>);
static_assert(!std::is_copy_assignable_v<crRSAEncryptionKey>);
static_assert(!std::is_move_constructible_v<crRSAEncryptionKey>);
static_assert(!std::is_move_assignable_v<crRSAEncryptionKey>);
static_assert(!std::is_polymorphic_v<crRSAEncryptionKey>);
static_assert(std::is_default_constructible_v<crRSAEncryptionKey>);

namespace
{

std::vector<unsigned int> digitsOf(const unsigned int* pDigits, int amount)
{
    return std::vector<unsigned int>(pDigits, pDigits + amount);
}

// 00000001 00000002 and so on, so that every digit of the number is known.
std::string countingHex(int digits)
{
    std::string hex;
    hex.reserve(static_cast<std::size_t>(digits) * 8);
    for (int i = 1; i <= digits; ++i)
    {
        hex += hexOf(static_cast<unsigned int>(i), 8);
    }
    return hex;
}

std::vector<unsigned int> countingDigits(int digits)
{
    std::vector<unsigned int> result;
    for (int i = digits; i > 0; --i)
    {
        result.push_back(static_cast<unsigned int>(i));
    }
    return result;
}

std::vector<unsigned int> zeros(int digits)
{
    return std::vector<unsigned int>(static_cast<std::size_t>(digits));
}

}  // namespace

TEST(Key, IsEmptyAtFirst)
{
    const crRSAEncryptionKey key;
    EXPECT_EQ(key.productDigits(), nullptr);
    EXPECT_EQ(key.numberDigits(), nullptr);
    EXPECT_EQ(key.amountOfBitsPerDigit(), 32);
    EXPECT_EQ(key.amountOfProductDigits(), 0);
    EXPECT_EQ(key.amountOfNumberDigits(), 0);
    EXPECT_FALSE(key.isUsable());
}

TEST(Key, LoadsModulusAndShortExponent)
{
    crRSAEncryptionKey key;
    ASSERT_TRUE(key.setKeyFromStrings(1024, toText(countingHex(32)), 32, "00010001"));
    EXPECT_EQ(key.amountOfProductDigits(), 32);
    EXPECT_EQ(key.amountOfNumberDigits(), 1);
    EXPECT_EQ(digitsOf(key.productDigits(), 32), countingDigits(32));
    std::vector<unsigned int> exponent = zeros(32);
    exponent[0] = 65537;
    EXPECT_EQ(digitsOf(key.numberDigits(), 32), exponent);
    EXPECT_TRUE(key.isUsable());
}

TEST(Key, PutsTheFirstGroupOfTheExponentOnItsHighestDigit)
{
    crRSAEncryptionKey key;
    ASSERT_TRUE(key.setKeyFromStrings(128, toText(countingHex(4)), 64, "0000000700000009"));
    EXPECT_EQ(digitsOf(key.numberDigits(), 4), (std::vector<unsigned int>{9, 7, 0, 0}));
    EXPECT_EQ(key.amountOfNumberDigits(), 2);
}

TEST(Key, LoadsAnExponentOfTheModulussLength)
{
    crRSAEncryptionKey key;
    ASSERT_TRUE(key.setKeyFromStrings(96, toText(countingHex(3)), 96, "AbCdEf01ffffffffFFFFFFFE"));
    EXPECT_EQ(digitsOf(key.numberDigits(), 3), (std::vector<unsigned int>{0xFFFFFFFEU, 0xFFFFFFFFU, 0xABCDEF01U}));
}

TEST(Key, RefusesCountsThatAreNoMultiplesOf32)
{
    crRSAEncryptionKey first;
    EXPECT_FALSE(first.setKeyFromStrings(1000, toText(countingHex(31)), 32, "00010001"));
    EXPECT_EQ(first.productDigits(), nullptr);
    EXPECT_EQ(first.numberDigits(), nullptr);
    EXPECT_EQ(first.amountOfProductDigits(), 31);
    EXPECT_EQ(first.amountOfNumberDigits(), 1);
    EXPECT_FALSE(first.isUsable());

    crRSAEncryptionKey second;
    EXPECT_FALSE(second.setKeyFromStrings(64, toText(countingHex(2)), 33, "00010001"));
    EXPECT_EQ(second.productDigits(), nullptr);
    EXPECT_EQ(second.amountOfProductDigits(), 2);
    EXPECT_EQ(second.amountOfNumberDigits(), 1);

    crRSAEncryptionKey third;
    EXPECT_FALSE(third.setKeyFromStringAndFermatPrime(31, "", 3));
    EXPECT_EQ(third.numberDigits(), nullptr);
    EXPECT_EQ(third.amountOfProductDigits(), 0);
}

TEST(Key, OfAWrongModulusLengthStillHasItsExponent)
{
    for (const int characters : {0, 255, 257, 248, 264})
    {
        crRSAEncryptionKey key;
        EXPECT_FALSE(key.setKeyFromStrings(1024, toText(std::string(static_cast<std::size_t>(characters), '1')), 32,
                                           "00010001"));
        EXPECT_EQ(digitsOf(key.productDigits(), 32), zeros(32));
        EXPECT_EQ(key.numberDigits()[0], 65537U);
        EXPECT_FALSE(key.isUsable());
    }
}

TEST(Key, OfAWrongExponentLengthStillHasItsModulus)
{
    for (const char* pExponent : {"", "0001000", "000100010", "0000000000010001"})
    {
        crRSAEncryptionKey key;
        EXPECT_FALSE(key.setKeyFromStrings(64, toText(countingHex(2)), 32, pExponent));
        EXPECT_EQ(digitsOf(key.productDigits(), 2), countingDigits(2));
        EXPECT_EQ(digitsOf(key.numberDigits(), 2), zeros(2));
        EXPECT_FALSE(key.isUsable());
    }
}

TEST(Key, RefusesAnExponentLongerThanItsModulus)
{
    crRSAEncryptionKey key;
    EXPECT_FALSE(key.setKeyFromStrings(64, toText(countingHex(2)), 96, toText(countingHex(3))));
    EXPECT_EQ(key.productDigits(), nullptr);
    EXPECT_EQ(key.amountOfProductDigits(), 2);
    EXPECT_EQ(key.amountOfNumberDigits(), 3);
    crRSAEncryptionKey none;
    EXPECT_FALSE(none.setKeyFromStrings(0, "", 32, "00000003"));
    crRSAEncryptionKey below;
    EXPECT_FALSE(below.setKeyFromStrings(-64, "", 32, "00000003"));
}

TEST(Key, TakesCountsOfZeroAndBelowWithoutThrowing)
{
    crRSAEncryptionKey zero;
    EXPECT_TRUE(zero.setKeyFromStrings(0, "", 0, ""));
    EXPECT_EQ(zero.amountOfProductDigits(), 0);
    EXPECT_FALSE(zero.isUsable());

    crRSAEncryptionKey zeroWithText;
    EXPECT_FALSE(zeroWithText.setKeyFromStrings(0, "00000001", 0, ""));

    crRSAEncryptionKey noExponent;
    EXPECT_TRUE(noExponent.setKeyFromStrings(64, toText(countingHex(2)), 0, ""));
    EXPECT_EQ(digitsOf(noExponent.numberDigits(), 2), zeros(2));
    EXPECT_FALSE(noExponent.isUsable());

    for (const int bits : {-1, -31, -32, -64, -1024, -33, INT_MIN, INT_MIN + 1, INT_MIN + 32})
    {
        crRSAEncryptionKey both;
        EXPECT_FALSE(both.setKeyFromStrings(bits, "", bits, "")) << bits;
        EXPECT_EQ(both.amountOfProductDigits(), bits / 32);
        EXPECT_FALSE(both.isUsable());
        crRSAEncryptionKey exponent;
        EXPECT_FALSE(exponent.setKeyFromStrings(64, toText(countingHex(2)), bits, "")) << bits;
        EXPECT_EQ(exponent.amountOfNumberDigits(), bits / 32);
        crRSAEncryptionKey prime;
        EXPECT_FALSE(prime.setKeyFromStringAndFermatPrime(bits, "", 3)) << bits;
        EXPECT_EQ(prime.amountOfProductDigits(), bits / 32);
        EXPECT_EQ(prime.amountOfNumberDigits(), bits / 32);
    }

    crRSAEncryptionKey primeOnly;
    EXPECT_TRUE(primeOnly.setKeyFromStringAndFermatPrime(0, "", 65537));
    EXPECT_FALSE(primeOnly.isUsable());
}

TEST(Key, LoadsModulusAndFermatPrime)
{
    crRSAEncryptionKey key;
    ASSERT_TRUE(key.setKeyFromStringAndFermatPrime(512, toText(countingHex(16)), 65537));
    EXPECT_EQ(key.amountOfProductDigits(), 16);
    EXPECT_EQ(key.amountOfNumberDigits(), 16);
    EXPECT_EQ(digitsOf(key.productDigits(), 16), countingDigits(16));
    std::vector<unsigned int> exponent = zeros(16);
    exponent[0] = 65537;
    EXPECT_EQ(digitsOf(key.numberDigits(), 16), exponent);
    EXPECT_TRUE(key.isUsable());
}

TEST(Key, SetsTheFermatPrimeWhateverTheModulus)
{
    crRSAEncryptionKey key;
    EXPECT_FALSE(key.setKeyFromStringAndFermatPrime(64, "000000010000000", 17));
    EXPECT_EQ(digitsOf(key.productDigits(), 2), zeros(2));
    EXPECT_EQ(digitsOf(key.numberDigits(), 2), (std::vector<unsigned int>{17, 0}));
}

TEST(Key, ReadsDigitsHighestFirst)
{
    const crRSAEncryptionKey key;
    unsigned int digits[2] = {7, 7};
    EXPECT_TRUE(key.readDigitsFromHexString(digits, 2, "0000000100000002"));
    EXPECT_EQ(digits[1], 1U);
    EXPECT_EQ(digits[0], 2U);
}

TEST(Key, ReadsNothingFromATextOfAnotherLength)
{
    const crRSAEncryptionKey key;
    unsigned int digits[2] = {7, 8};
    for (const char* pText : {"", "000000010000000", "00000001000000020", "00000001"})
    {
        EXPECT_FALSE(key.readDigitsFromHexString(digits, 2, pText));
    }
    EXPECT_FALSE(key.readDigitsFromHexString(digits, 0, "0"));
    EXPECT_FALSE(key.readDigitsFromHexString(digits, -1, "00000001"));
    EXPECT_FALSE(key.readDigitsFromHexString(digits, -1, ""));
    // Eight times these comes to nothing in 32 bits.
    EXPECT_FALSE(key.readDigitsFromHexString(digits, INT_MIN, ""));
    EXPECT_FALSE(key.readDigitsFromHexString(digits, 0x20000000, ""));
    EXPECT_FALSE(key.readDigitsFromHexString(digits, 0x20000001, "00000001"));
    EXPECT_EQ(digits[0], 7U);
    EXPECT_EQ(digits[1], 8U);
    EXPECT_TRUE(key.readDigitsFromHexString(digits, 0, ""));
    EXPECT_TRUE(key.readDigitsFromHexString(nullptr, 0, ""));
    EXPECT_EQ(digits[0], 7U);
}

TEST(Key, ReadsEachGroupByItself)
{
    const crRSAEncryptionKey key;
    unsigned int digits[4] = {1, 2, 3, 4};
    // A digit keeps its value where its group starts with anything else than a digit of base 16, even where blanks or a
    // sign might be skipped or where the next group could be drawn in.
    ASSERT_TRUE(key.readDigitsFromHexString(digits, 4,
                                            "xyz12345"
                                            "    1234"
                                            "-0000001"
                                            "0000000f"));
    EXPECT_EQ(digitsOf(digits, 4), (std::vector<unsigned int>{15, 2, 3, 4}));
    ASSERT_TRUE(key.readDigitsFromHexString(digits, 4,
                                            "        "
                                            "12345678"
                                            "12 45678"
                                            "12345g78"));
    EXPECT_EQ(digitsOf(digits, 4), (std::vector<unsigned int>{0x12345, 0x12, 0x12345678, 4}));
    // What begins with one is a number, if only 0.
    ASSERT_TRUE(key.readDigitsFromHexString(digits, 4,
                                            "0xyz1234"
                                            "0x0000aF"
                                            "0zzzzzzz"
                                            "+0000001"));
    EXPECT_EQ(digitsOf(digits, 4), (std::vector<unsigned int>{0x12345, 0, 0xaf, 0}));
    const gtString withNul("1\0"
                           "3456780000000b",
                           16);
    ASSERT_TRUE(key.readDigitsFromHexString(digits, 2, withNul));
    EXPECT_EQ(digits[1], 1U);
    EXPECT_EQ(digits[0], 0xbU);
}

// The set operations read into zeros.
TEST(Key, HasZerosWhereAGroupIsNoNumber)
{
    crRSAEncryptionKey key;
    ASSERT_TRUE(key.setKeyFromStrings(64, "zzzzzzzz00000005", 64, "       3-0000003"));
    EXPECT_EQ(digitsOf(key.productDigits(), 2), (std::vector<unsigned int>{5, 0}));
    EXPECT_EQ(digitsOf(key.numberDigits(), 2), zeros(2));
    EXPECT_FALSE(key.isUsable());
}

// Whatever became of the load.
TEST(Key, KeepsTheBitCountsAsTheyWereGiven)
{
    const crRSAEncryptionKey empty;
    EXPECT_EQ(empty.amountOfProductBits(), 0);
    EXPECT_EQ(empty.amountOfNumberBits(), 0);
    for (const int bits : {1000, 31, 33, -1, -31, -32, -33, INT_MAX, INT_MIN, INT_MIN + 1})
    {
        // A key for each load: what a load leaves is not given back by the next one.
        crRSAEncryptionKey product;
        EXPECT_FALSE(product.setKeyFromStrings(bits, "", 32, ""));
        EXPECT_EQ(product.amountOfProductBits(), bits);
        EXPECT_EQ(product.amountOfProductDigits(), bits / 32);
        EXPECT_EQ(product.amountOfNumberBits(), 32);
        EXPECT_EQ(product.amountOfNumberDigits(), 1);
        crRSAEncryptionKey number;
        EXPECT_FALSE(number.setKeyFromStrings(64, "", bits, ""));
        EXPECT_EQ(number.amountOfProductBits(), 64);
        EXPECT_EQ(number.amountOfNumberBits(), bits);
        EXPECT_EQ(number.amountOfNumberDigits(), bits / 32);
        crRSAEncryptionKey fermat;
        EXPECT_FALSE(fermat.setKeyFromStringAndFermatPrime(bits, "", 3));
        EXPECT_EQ(fermat.amountOfProductBits(), bits);
        EXPECT_EQ(fermat.amountOfNumberBits(), bits);
        EXPECT_EQ(fermat.amountOfProductDigits(), bits / 32);
        EXPECT_EQ(fermat.amountOfNumberDigits(), bits / 32);
    }
    crRSAEncryptionKey loaded;
    ASSERT_TRUE(loaded.setKeyFromStrings(128, toText(countingHex(4)), 64, toText(countingHex(2))));
    EXPECT_EQ(loaded.amountOfProductBits(), 128);
    EXPECT_EQ(loaded.amountOfNumberBits(), 64);
    crRSAEncryptionKey fermat;
    ASSERT_TRUE(fermat.setKeyFromStringAndFermatPrime(512, toText(countingHex(16)), 65537));
    EXPECT_EQ(fermat.amountOfProductBits(), 512);
    EXPECT_EQ(fermat.amountOfNumberBits(), 512);
}

TEST(Key, OfNoBitsTakesNoText)
{
    crRSAEncryptionKey both;
    EXPECT_TRUE(both.setKeyFromStrings(0, "", 0, ""));
    for (const char* pText : {"0", "00000000", "00000001", " "})
    {
        crRSAEncryptionKey product;
        EXPECT_FALSE(product.setKeyFromStrings(0, pText, 0, "")) << pText;
        EXPECT_FALSE(product.isUsable());
        crRSAEncryptionKey number;
        EXPECT_FALSE(number.setKeyFromStrings(0, "", 0, pText)) << pText;
        crRSAEncryptionKey numberOfKey;
        EXPECT_FALSE(numberOfKey.setKeyFromStrings(64, toText(countingHex(2)), 0, pText)) << pText;
        EXPECT_EQ(digitsOf(numberOfKey.productDigits(), 2), countingDigits(2));
        EXPECT_EQ(digitsOf(numberOfKey.numberDigits(), 2), zeros(2));
        crRSAEncryptionKey prime;
        EXPECT_FALSE(prime.setKeyFromStringAndFermatPrime(0, pText, 3)) << pText;
    }
}

// 0 is set like any other, and the key cannot be computed with.
TEST(Key, TakesAFermatPrimeOfZero)
{
    crRSAEncryptionKey key;
    EXPECT_TRUE(key.setKeyFromStringAndFermatPrime(64, toText(countingHex(2)), 0));
    EXPECT_EQ(digitsOf(key.productDigits(), 2), countingDigits(2));
    EXPECT_EQ(digitsOf(key.numberDigits(), 2), zeros(2));
    EXPECT_FALSE(key.isUsable());
    crRSAEncryptionKey largest;
    EXPECT_TRUE(largest.setKeyFromStringAndFermatPrime(64, toText(countingHex(2)), 0xFFFFFFFFU));
    EXPECT_EQ(digitsOf(largest.numberDigits(), 2), (std::vector<unsigned int>{0xFFFFFFFFU, 0}));
    EXPECT_TRUE(largest.isUsable());
}

// Twelve million characters: quadratic time would take hours, so the test's own time limit finds it.
TEST(Key, ReadsLongTextsInProportionToTheirLength)
{
    constexpr int digits = 1500000;
    const gtString hex = toText(countingHex(digits));
    std::vector<unsigned int> target(digits);
    const crRSAEncryptionKey key;
    ASSERT_TRUE(key.readDigitsFromHexString(target.data(), digits, hex));
    EXPECT_EQ(target.front(), static_cast<unsigned int>(digits));
    EXPECT_EQ(target.back(), 1U);
}

// A second load leaves the first arrays to whoever has pointers to them.
TEST(Key, LeavesTheArraysOfAnEarlierLoadAlone)
{
    crRSAEncryptionKey key;
    ASSERT_TRUE(key.setKeyFromStrings(64, toText(countingHex(2)), 64, "0000000300000004"));
    const unsigned int* pProduct = key.productDigits();
    const unsigned int* pNumber = key.numberDigits();
    ASSERT_TRUE(key.setKeyFromStrings(96, toText(countingHex(3)), 96, toText(countingHex(3))));
    EXPECT_NE(key.productDigits(), pProduct);
    EXPECT_EQ(digitsOf(pProduct, 2), countingDigits(2));
    EXPECT_EQ(digitsOf(pNumber, 2), (std::vector<unsigned int>{4, 3}));
    delete[] pProduct;
    delete[] pNumber;
}

TEST(Key, KeepsTheArraysOfAnEarlierLoadWhenACountIsRefused)
{
    crRSAEncryptionKey key;
    ASSERT_TRUE(key.setKeyFromStrings(64, toText(countingHex(2)), 64, "0000000300000004"));
    EXPECT_FALSE(key.setKeyFromStrings(1000, toText(countingHex(31)), 32, "00010001"));
    EXPECT_EQ(digitsOf(key.productDigits(), 2), countingDigits(2));
    EXPECT_EQ(key.amountOfProductDigits(), 31);
    // The arrays are shorter than the counts say.
    EXPECT_FALSE(key.isUsable());
    EXPECT_FALSE(key.setKeyFromStringAndFermatPrime(70, "", 3));
    EXPECT_EQ(digitsOf(key.numberDigits(), 2), (std::vector<unsigned int>{4, 3}));
    EXPECT_TRUE(key.isUsable());
}

TEST(Key, LoadsWhatOpenSSLMakes)
{
    for (const int bits : {512, 1024, 2048})
    {
        const TestKeyPair& pair = keyFromOpenSSL(bits);
        crRSAEncryptionKey key;
        pair.loadPrivate(key);
        EXPECT_EQ(key.amountOfProductDigits(), bits / 32);
        EXPECT_TRUE(key.isUsable());
        BigNumber product(BN_lebin2bn(reinterpret_cast<const unsigned char*>(key.productDigits()), bits / 8, nullptr),
                          BN_free);
        BigNumber number(BN_lebin2bn(reinterpret_cast<const unsigned char*>(key.numberDigits()), bits / 8, nullptr),
                         BN_free);
        EXPECT_EQ(BN_cmp(product.get(), pair.modulus.get()), 0);
        EXPECT_EQ(BN_cmp(number.get(), pair.privateExponent.get()), 0);
    }
}
