// SPDX-License-Identifier: Apache-2.0
// What a block of a cipher text opens to.
#include "tests/host/NewKey.h"

#include "host/signing/hoOpenedBlock.h"
#include "host/signing/hoTextEncryption.h"

#include <gtest/gtest.h>

#include <openssl/bn.h>

#include <algorithm>

namespace
{
using Number = std::unique_ptr<BIGNUM, decltype(&BN_free)>;

// Eight characters a digit, the lowest digit first: the other way round than numbers are written.
std::string turned(const std::string& digits)
{
    std::string result;
    for (std::size_t end = digits.size(); end >= 8; end -= 8)
    {
        result += digits.substr(end - 8, 8);
    }
    return result;
}

Number numberOf(const std::string& digits)
{
    BIGNUM* pNumber = nullptr;
    BN_hex2bn(&pNumber, turned(digits).c_str());
    return Number(pNumber, &BN_free);
}

// Empty for a number of more digits.
std::string digitsOf(const BIGNUM* pNumber, std::size_t length)
{
    char* const pText = BN_bn2hex(pNumber);
    std::string text = pText;
    OPENSSL_free(pText);
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return text.size() > length ? std::string() : turned(std::string(length - text.size(), '0') + text);
}
}  // namespace

// It has the same power as one below the modulus: one text would have many cipher texts.
TEST(OpenedBlock, IsNoneAboveTheModulus)
{
    const auto pKey = newKey(512);
    const crRSAEncryptionKey& half = pKey->publicKey();
    const std::string fixed = hoFixedWidthText(half.productDigits(), half.amountOfProductDigits()).asStdString();
    const Number modulus = numberOf(turned(fixed));
    EXPECT_FALSE(hoOpenedBlock(pKey->privateKey(), turned(fixed)).isOpen());
    EXPECT_TRUE(hoOpenedBlock(pKey->privateKey(), turned(fixed)).text().empty());
    bool isTried = false;
    for (int text = 0; text < 10000 && !isTried; ++text)
    {
        gtString cipher;
        ASSERT_TRUE(hoEncryptText(half, std::to_string(text), cipher).isOk());
        const std::string digits = cipher.asStdString().substr(8);
        EXPECT_TRUE(hoOpenedBlock(pKey->privateKey(), digits).hasMarker());
        const Number number = numberOf(digits);
        BN_add(number.get(), number.get(), modulus.get());
        const std::string above = digitsOf(number.get(), digits.size());
        if (!above.empty())
        {
            isTried = true;
            const hoOpenedBlock block(pKey->privateKey(), above);
            EXPECT_FALSE(block.isOpen());
            EXPECT_FALSE(block.hasMarker());
        }
    }
    EXPECT_TRUE(isTried);
}

TEST(OpenedBlock, HasAsManyCharactersAsTheKey)
{
    const auto pKey = newKey(512);
    for (const std::size_t length : {0U, 8U, 127U, 136U})
    {
        EXPECT_FALSE(hoOpenedBlock(pKey->privateKey(), std::string(length, '0')).isOpen()) << length;
    }
    const hoOpenedBlock zero(pKey->privateKey(), std::string(128, '0'));
    EXPECT_TRUE(zero.isOpen());
    EXPECT_FALSE(zero.hasMarker());
    EXPECT_EQ(zero.text(), std::string(63, '\0'));
}
