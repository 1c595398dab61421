// SPDX-License-Identifier: Apache-2.0
#include "tests/host/NewKey.h"

#include "crypto/crRSAStringEncryptor.h"
#include "host/signing/hoShortTexts.h"

#include <gtest/gtest.h>

namespace
{
gtString text(const std::string& bytes)
{
    return gtString(bytes.data(), static_cast<int>(bytes.size()));
}

gtString encrypted(const hoKey& key, const std::string& bytes)
{
    gtString cipher;
    EXPECT_EQ(hoEncryptText(key.publicKey(), text(bytes), cipher)._problem, hoTextProblem::None);
    return cipher;
}
}  // namespace

TEST(ShortTexts, ComeBack)
{
    const auto pKey = newKey(512);
    for (const std::string& plain : {std::string("x"), std::string("gr\xc3\xbc\xc3\x9f\n\tdich"), std::string(63, 'z')})
    {
        gtString cipher = encrypted(*pKey, plain);
        cipher.append("\r\n");
        const hoReadableText found = hoDecryptForReading(pKey->privateKey(), text(" ").append(cipher));
        EXPECT_EQ(found._problem, hoTextProblem::None);
        EXPECT_TRUE(found._isText);
        EXPECT_EQ(found._bytes, text(plain));
    }
}

TEST(ShortTexts, ThatAreNoTextAreBytes)
{
    const auto pKey = newKey(512);
    const hoReadableText found = hoDecryptForReading(pKey->privateKey(), encrypted(*pKey, "a\xff\xfe"));
    EXPECT_EQ(found._problem, hoTextProblem::None);
    EXPECT_FALSE(found._isText);
    EXPECT_EQ(found._bytes, text("a\xff\xfe"));
}

TEST(ShortTexts, OfAnotherKeyAreBytes)
{
    const auto pKey = newKey(512);
    const auto pOther = newKey(512);
    gtString cipher = encrypted(*pKey, "for somebody else");
    const hoReadableText found = hoDecryptForReading(pOther->privateKey(), text("\n").append(cipher).append(" "));
    EXPECT_EQ(found._problem, hoTextProblem::DoesNotComeOut);
    EXPECT_FALSE(found._isText);
    // Seventeen bytes of any kind, which end at the first NUL among them.
    gtString asDecrypted;
    ASSERT_TRUE(crRSAStringEncryptor(pOther->privateKey()).decrypt(cipher, asDecrypted));
    EXPECT_EQ(found._bytes, asDecrypted);
    EXPECT_LE(found._bytes.length(), 17);
}

TEST(ShortTexts, ThatAreNoCipherTextsGiveNothing)
{
    const auto pKey = newKey(512);
    for (const char* cipher : {"", "  ", "hello", "0000000", "0000000100"})
    {
        const hoReadableText found = hoDecryptForReading(pKey->privateKey(), cipher);
        EXPECT_NE(found._problem, hoTextProblem::None) << cipher;
        EXPECT_FALSE(found._isText);
        EXPECT_TRUE(found._bytes.isEmpty());
    }
}

TEST(ShortTexts, AreReadableAsUtf8)
{
    for (const std::string& good :
         {std::string(), std::string("abc\x7f\x01"), std::string("\xc2\x80\xdf\xbf"), std::string("\xe0\xa0\x80"),
          std::string("\xed\x9f\xbf\xee\x80\x80"), std::string("\xf0\x90\x80\x80\xf4\x8f\xbf\xbf")})
    {
        EXPECT_TRUE(hoIsReadable(text(good))) << good;
    }
    for (const std::string& bad :
         {std::string("a\0b", 3), std::string("\x80"), std::string("\xc1\xbf"), std::string("\xc3"),
          std::string("\xc3("), std::string("\xe0\x9f\xbf"), std::string("\xe2\x82"), std::string("\xe2\x82("),
          std::string("\xed\xa0\x80"), std::string("\xf0\x8f\xbf\xbf"), std::string("\xf0\x9f\x94"),
          std::string("\xf0\x9f\x94("), std::string("\xf4\x90\x80\x80"), std::string("\xf5\x80\x80\x80"),
          std::string("ok\xff")})
    {
        EXPECT_FALSE(hoIsReadable(text(bad))) << bad;
    }
}

TEST(ShortTexts, AreDumped)
{
    EXPECT_EQ(hoHexDump(""), "");
    EXPECT_EQ(hoHexDump(text(std::string("\0~\x7f\xff ", 5))),
              "00000000  00 7e 7f ff 20                                    |.~.. |\n");
    EXPECT_EQ(hoHexDump("0123456789abcdefX"),
              "00000000  30 31 32 33 34 35 36 37  38 39 61 62 63 64 65 66  |0123456789abcdef|\n"
              "00000010  58                                                |X|\n");
}
