// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoTextEncryption.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "cliTestSupport.h"
#include "crypto/crRSAEncryptionKey.h"
#include "host/keys/hoKeyFile.h"

namespace
{

class TextEncryption : public ::testing::Test
{
protected:
    void SetUp() override
    {
        makeKeys(_folder, 512);
        _pKey = load("private.pem");
        ASSERT_NE(_pKey, nullptr);
        runOpenSSL(_folder, {"genrsa", "-out", "other.pem", "512"});
        _pOther = load("other.pem");
        ASSERT_NE(_pOther, nullptr);
    }

    std::unique_ptr<const hoKey> load(const std::string& name) const
    {
        hoKeyFileFacts facts;
        return hoLoadKeyFile(gtString((_folder / name).c_str()), nullptr, facts);
    }

    std::string encrypted(const std::string& text) const
    {
        gtString cipher;
        EXPECT_EQ(hoEncryptText(_pKey->publicKey(), gtString(text), cipher)._problem, hoTextProblem::None)
            << text.size();
        return cipher.asStdString();
    }

    hoTextResult decrypt(const std::string& cipher, gtString& text) const
    {
        return hoDecryptText(_pKey->privateKey(), gtString(cipher), text);
    }

    TemporaryFolder _folder;
    std::unique_ptr<const hoKey> _pKey;
    std::unique_ptr<const hoKey> _pOther;
};

}  // namespace

TEST_F(TextEncryption, BringsBackEveryLengthUpToTheLimit)
{
    EXPECT_EQ(hoLongestText(_pKey->publicKey()), 63);
    EXPECT_EQ(hoLengthOfCipherText(_pKey->publicKey()), 136);
    for (std::size_t length = 0; length <= 63; ++length)
    {
        // Fillers at the end of a text are the text's own.
        const std::string text = std::string(length / 2, 'x') + std::string(length - length / 2, 'd');
        const std::string cipher = encrypted(text);
        EXPECT_EQ(cipher.size(), length == 0 ? 8U : 136U);
        gtString back("left over");
        EXPECT_EQ(decrypt(cipher, back)._problem, hoTextProblem::None);
        EXPECT_EQ(back.asStdString(), text);
    }
}

TEST_F(TextEncryption, RefusesWhatWouldNotComeBack)
{
    gtString cipher("kept");
    EXPECT_EQ(hoEncryptText(_pKey->publicKey(), gtString(std::string(64, 'x')), cipher)._problem,
              hoTextProblem::TooLong);
    EXPECT_EQ(hoEncryptText(_pKey->publicKey(), gtString("a\0b", 3), cipher)._problem, hoTextProblem::HoldsNul);
    EXPECT_EQ(hoEncryptText(_pKey->publicKey(), gtString(std::string(62, 'x') + "\xff"), cipher)._problem,
              hoTextProblem::TooLargeForKey);
    EXPECT_EQ(cipher, gtString("kept"));
    // One byte less, and the filler is on top.
    gtString back;
    EXPECT_EQ(decrypt(encrypted(std::string(61, 'x') + "\xff"), back)._problem, hoTextProblem::None);
    EXPECT_EQ(back.asStdString(), std::string(61, 'x') + "\xff");
}

TEST_F(TextEncryption, DecryptsWhatWasCopiedWithBlanks)
{
    gtString back;
    EXPECT_EQ(decrypt(" \n" + encrypted("copied") + "\r\n ", back)._problem, hoTextProblem::None);
    EXPECT_EQ(back, gtString("copied"));
    std::string upperCase = encrypted("copied");
    for (char& character : upperCase)
    {
        character = static_cast<char>(toupper(character));
    }
    EXPECT_EQ(decrypt(upperCase, back)._problem, hoTextProblem::None);
    EXPECT_EQ(back, gtString("copied"));
}

TEST_F(TextEncryption, RefusesWhatIsNoCipherText)
{
    gtString back("kept");
    const std::string cipher = encrypted("text");
    for (const std::string& text : {std::string(), std::string("0000000"), std::string("no cipher text"),
                                    cipher.substr(0, 40) + " " + cipher.substr(40), "0x" + cipher.substr(2)})
    {
        EXPECT_EQ(decrypt(text, back)._problem, hoTextProblem::NotACipherText) << text;
    }
    for (const std::string& text :
         {cipher.substr(0, 135), cipher + "0", "00000000" + cipher.substr(8), "00000040" + cipher.substr(8),
          "ffffffff" + cipher.substr(8), std::string("00000004"), std::string("000000001")})
    {
        EXPECT_EQ(decrypt(text, back)._problem, hoTextProblem::OtherSize) << text;
    }
    EXPECT_EQ(back, gtString("kept"));
}

// There is no filler behind a text of the greatest length, and the marker alone tells.
TEST_F(TextEncryption, FindsWrongKeysByTheMarker)
{
    int missed = 0;
    for (int number = 0; number < 300; ++number)
    {
        const std::string digits = std::to_string(number);
        gtString back;
        const std::string cipher = encrypted(digits + std::string(63 - digits.size(), 'x'));
        EXPECT_EQ(decrypt(cipher, back)._problem, hoTextProblem::None);
        missed += hoDecryptText(_pOther->privateKey(), gtString(cipher), back).isOk() ? 1 : 0;
    }
    // By chance once in 256 times; twenty are less likely than a failing machine.
    EXPECT_LT(missed, 20);
}

TEST_F(TextEncryption, FindsWrongKeysAndDamage)
{
    gtString back("kept");
    for (std::size_t length = 1; length < 60; ++length)
    {
        const std::string cipher = encrypted(std::string(length, 'x'));
        EXPECT_EQ(hoDecryptText(_pOther->privateKey(), gtString(cipher), back)._problem, hoTextProblem::DoesNotComeOut);
        EXPECT_EQ(hoDecryptText(_pKey->publicKey(), gtString(cipher), back)._problem, hoTextProblem::DoesNotComeOut);
        std::string damaged = cipher;
        damaged[8 + length] = damaged[8 + length] == '0' ? '1' : '0';
        EXPECT_EQ(decrypt(damaged, back)._problem, hoTextProblem::DoesNotComeOut);
    }
    // A length that is too long takes fillers for text; one that is too short finds text among them.
    EXPECT_EQ(decrypt("00000003" + encrypted("four").substr(8), back)._problem, hoTextProblem::DoesNotComeOut);
    EXPECT_EQ(back, gtString("kept"));
}
