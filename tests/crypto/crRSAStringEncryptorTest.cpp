// SPDX-License-Identifier: Apache-2.0
#include "crypto/crRSAStringEncryptor.h"

#include <algorithm>
#include <climits>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "bigdigits.h"
#include "crypto/crRSAEncryptionKey.h"
#include "cryptoTestSupport.h"

namespace
{

struct LoadedPair
{
    explicit LoadedPair(const TestKeyPair& testPair) : pair(testPair)
    {
        pair.loadPublic(publicKey);
        pair.loadPrivate(privateKey);
    }

    const TestKeyPair& pair;
    crRSAEncryptionKey publicKey;
    crRSAEncryptionKey privateKey;
};

std::string encrypted(const crRSAEncryptionKey& key, const std::string& text)
{
    gtString output("left over");
    EXPECT_TRUE(crRSAStringEncryptor(key).encrypt(toText(text), output));
    return toBytes(output);
}

std::string decrypted(const crRSAEncryptionKey& key, const std::string& cipherText)
{
    gtString output("left over");
    EXPECT_TRUE(crRSAStringEncryptor(key).decrypt(toText(cipherText), output));
    return toBytes(output);
}

std::string asciiText(std::size_t length, unsigned int seed)
{
    std::string text = scrambledBytes(length, seed);
    for (char& character : text)
    {
        character = static_cast<char>(static_cast<unsigned char>(character) % 127U + 1U);
    }
    return text;
}

// What decrypting gives with a key that leaves blocks as they are, by the description: the buffer fills block by block,
// and from its byte 1 to the text's end or the first NUL it is appended each time. The text has no NULs.
std::string everyPrefix(const std::string& text, std::size_t bytesPerBlock)
{
    std::string buffer;
    for (const char character : text)
    {
        buffer += (buffer.size() % bytesPerBlock == 0) ? std::string(1, '\1') : std::string();
        buffer += character;
    }
    std::string result;
    for (std::size_t end = bytesPerBlock; end < buffer.size() + bytesPerBlock; end += bytesPerBlock)
    {
        result += buffer.substr(1, std::min(end - 1, text.size()));
    }
    return result;
}

// A key of 32 bits that is easy to follow: the block's number itself comes out.
void loadIdentity(crRSAEncryptionKey& key, int bits)
{
    ASSERT_TRUE(
        key.setKeyFromStringAndFermatPrime(bits, toText(std::string(static_cast<std::size_t>(bits) / 4, 'f')), 1));
}

}  // namespace

TEST(DigitsForText, AreWhatTheyHaveAlwaysBeen)
{
    const LoadedPair keys(keyFromOpenSSL(1024));
    const crRSAStringEncryptor encryptor(keys.publicKey);
    EXPECT_EQ(encryptor.amountOfDigitsForHoldingText(0), 0);
    EXPECT_EQ(encryptor.amountOfDigitsForHoldingText(1), 32);
    EXPECT_EQ(encryptor.amountOfDigitsForHoldingText(127), 32);
    EXPECT_EQ(encryptor.amountOfDigitsForHoldingText(128), 64);
    EXPECT_EQ(encryptor.amountOfDigitsForHoldingText(254), 64);
    EXPECT_EQ(encryptor.amountOfDigitsForHoldingText(255), 96);
}

TEST(DigitsForText, AgreeWithWholeNumbersWhereFloatsAreExact)
{
    for (const int digits : {1, 2, 3, 5, 16, 31, 32, 64, 128})
    {
        crRSAEncryptionKey key;
        loadIdentity(key, digits * 32);
        const crRSAStringEncryptor encryptor(key);
        for (int length = 0; length < 70000; length += (length < 2000) ? 1 : 97)
        {
            ASSERT_EQ(encryptor.amountOfDigitsForHoldingText(length), expectedDigits(length, digits))
                << digits << " digits, " << length << " bytes";
        }
    }
}

// Too small by one block from B * B bytes on.
TEST(DigitsForText, AllowForTooFewMarkers)
{
    crRSAEncryptionKey small;
    loadIdentity(small, 32);
    EXPECT_EQ(crRSAStringEncryptor(small).amountOfDigitsForHoldingText(15), 5);
    EXPECT_EQ(crRSAStringEncryptor(small).amountOfDigitsForHoldingText(16), 5);  // six markers make 22 bytes
    crRSAEncryptionKey large;
    loadIdentity(large, 1024);
    EXPECT_EQ(crRSAStringEncryptor(large).amountOfDigitsForHoldingText(16383), 129 * 32);
    EXPECT_EQ(crRSAStringEncryptor(large).amountOfDigitsForHoldingText(16384), 129 * 32);  // 130 blocks are needed
}

TEST(DigitsForText, RoundLikeSinglePrecision)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 32);
    const crRSAStringEncryptor encryptor(key);
    // 16777217 is no float: it counts as 16777216, which makes 4194304 digits and as many markers.
    EXPECT_EQ(encryptor.amountOfDigitsForHoldingText(16777217), 5242880);
    EXPECT_EQ(encryptor.amountOfDigitsForHoldingText(16777216), 5242880);
}

// Each of these comes out otherwise where one of the steps is computed with more precision.
TEST(DigitsForText, RoundInEveryStepLikeSinglePrecision)
{
    const struct
    {
        int digitsOfKey;
        int lengthOfText;
        int amountOfDigits;
    } rounded[] = {
        {1, 16777221, 5242881},  {1, 16777223, 5242883},  {2, 16777225, 4718594},   {2, 16777231, 4718598},
        {3, 16777309, 4543854},  {3, 16777219, 4543833},  {3, 100945003, 27339270}, {3, 101294058, 27433806},
        {3, 92926711, 25167651}, {3, 92936684, 25170351}, {32, 16777345, 4227104},  {32, 16777471, 4227168},
        {64, 16777473, 4210752}, {64, 16777727, 4210880}, {128, 16777729, 4202624}, {128, 16778239, 4202880},
    };
    for (const auto& one : rounded)
    {
        crRSAEncryptionKey key;
        loadIdentity(key, one.digitsOfKey * 32);
        EXPECT_EQ(crRSAStringEncryptor(key).amountOfDigitsForHoldingText(one.lengthOfText), one.amountOfDigits)
            << one.digitsOfKey << " digits, " << one.lengthOfText << " bytes";
    }
}

TEST(DigitsForText, AreDefinedForEveryLengthAndKey)
{
    for (const int bits : {0, 32, 64, 1024, 32768})
    {
        crRSAEncryptionKey key;
        loadIdentity(key, bits);
        const crRSAStringEncryptor encryptor(key);
        for (const int length : {INT_MIN, INT_MIN + 1, -1000, -5, -4, -3, -2, -1, INT_MAX, INT_MAX - 1, 2000000000})
        {
            const int digits = encryptor.amountOfDigitsForHoldingText(length);
            EXPECT_EQ(digits % (bits == 0 ? 1 : bits / 32), 0);
            EXPECT_TRUE(bits == 0 ? digits == 0 : length < 0 ? digits <= 0 : digits > 0) << bits << " " << length;
        }
    }
    crRSAEncryptionKey negative;
    EXPECT_FALSE(negative.setKeyFromStrings(-32, "", -32, ""));
    EXPECT_EQ(crRSAStringEncryptor(negative).amountOfDigitsForHoldingText(5), 0);
}

TEST(Encryptor, LaysTheTextOutBehindAMarker)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 512);
    EXPECT_EQ(
        encrypted(key, "abc"), "00000003"
                               "63626101" +
                                   []
                                   {
                                       std::string filler;
                                       for (int i = 0; i < 15; ++i)
                                       {
                                           filler += "64646464";
                                       }
                                       return filler;
                                   }());
}

TEST(Encryptor, WritesFillerInsteadOfAMarkerWhereNoTextFollows)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 64);
    // Fifteen bytes: two blocks hold fourteen, the third has one byte behind its marker.
    EXPECT_EQ(encrypted(key, "abcdefghijklmno"), "0000000f"
                                                 "63626101"
                                                 "67666564"
                                                 "6a696801"
                                                 "6e6d6c6b"
                                                 "64646f01"
                                                 "64646464");
    // Seven bytes fill one block.
    EXPECT_EQ(encrypted(key, "abcdefg"), "00000007"
                                         "63626101"
                                         "67666564");
}

TEST(Encryptor, FillsABlockThatIsAllowedForAndNotNeeded)
{
    // The format allows for ceil(L / B) markers; with B = 12 and 33 bytes it allows for three, so that 36 bytes make
    // three blocks and no more. Where text and markers end exactly with a block, nothing is filled.
    crRSAEncryptionKey key;
    loadIdentity(key, 96);
    const std::string cipher = encrypted(key, std::string(33, 'A'));
    EXPECT_EQ(cipher, "00000021"
                      "41414101"
                      "41414141"
                      "41414141"
                      "41414101"
                      "41414141"
                      "41414141"
                      "41414101"
                      "41414141"
                      "41414141");
}

TEST(Encryptor, EncryptsLikeLibcrypto)
{
    for (const int bits : {32, 64, 96, 128, 160, 256, 512})
    {
        const LoadedPair keys(keyOfPrimes(bits));
        const int block = keys.pair.blockBytes();
        for (int length = 0; length <= 3 * block; ++length)
        {
            const std::string text =
                scrambledBytes(static_cast<std::size_t>(length), static_cast<unsigned int>(length));
            ASSERT_EQ(encrypted(keys.publicKey, text),
                      expectedCipherText(text, keys.pair, keys.pair.publicExponent.get()))
                << bits << " bits, " << length << " bytes";
        }
    }
}

TEST(Encryptor, EncryptsLikeLibcryptoWithKeysOfOpenSSL)
{
    for (const int bits : {512, 1024, 2048})
    {
        const LoadedPair keys(keyFromOpenSSL(bits));
        const int block = keys.pair.blockBytes();
        for (const int length : {0, 1, 2, 3, 4, block - 2, block - 1, block, block + 1, 2 * block - 3, 2 * block - 2,
                                 2 * block - 1, 2 * block, 3 * block - 3, 3 * block - 2})
        {
            const std::string text =
                scrambledBytes(static_cast<std::size_t>(length), static_cast<unsigned int>(length));
            ASSERT_EQ(encrypted(keys.publicKey, text),
                      expectedCipherText(text, keys.pair, keys.pair.publicExponent.get()))
                << bits << " bits, " << length << " bytes";
        }
        for (const int length : {1, block - 1, block})
        {
            const std::string text = asciiText(static_cast<std::size_t>(length), 7);
            ASSERT_EQ(encrypted(keys.privateKey, text),
                      expectedCipherText(text, keys.pair, keys.pair.privateExponent.get()))
                << bits << " bits, " << length << " bytes";
        }
    }
}

TEST(Encryptor, TakesEveryByteValue)
{
    const LoadedPair keys(keyFromOpenSSL(512));
    for (unsigned int value = 0; value < 256; ++value)
    {
        const std::string text(5, static_cast<char>(value));
        ASSERT_EQ(encrypted(keys.publicKey, text), expectedCipherText(text, keys.pair, keys.pair.publicExponent.get()));
        if (value != 0)
        {
            ASSERT_EQ(decrypted(keys.privateKey, encrypted(keys.publicKey, text)), text) << value;
        }
    }
}

TEST(Encryptor, BringsBackWhatFitsOneBlock)
{
    const LoadedPair keys(keyFromOpenSSL(1024));
    for (int length = 0; length <= 127; ++length)
    {
        const std::string text = asciiText(static_cast<std::size_t>(length), static_cast<unsigned int>(length));
        const std::string cipher = encrypted(keys.publicKey, text);
        ASSERT_EQ(cipher.size(), length == 0 ? 8U : 264U);
        ASSERT_EQ(decrypted(keys.privateKey, cipher), text);
    }
    for (const int length : {1, 64, 127})
    {
        const std::string text = asciiText(static_cast<std::size_t>(length), 99);
        ASSERT_EQ(decrypted(keys.publicKey, encrypted(keys.privateKey, text)), text);
    }
}

TEST(Encryptor, BringsBackWhatFitsOneBlockOfOtherKeys)
{
    for (const int bits : {32, 64, 96, 512, 2048})
    {
        const LoadedPair keys(bits < 512 ? keyOfPrimes(bits) : keyFromOpenSSL(bits));
        const auto limit = static_cast<std::size_t>(keys.pair.blockBytes() - 1);
        for (const std::size_t length : {std::size_t(0), std::size_t(1), limit - 1, limit})
        {
            const std::string text = asciiText(length, 5);
            ASSERT_EQ(decrypted(keys.privateKey, encrypted(keys.publicKey, text)), text) << bits << " " << length;
        }
    }
}

TEST(Encryptor, DoesNotBringBackLongerTexts)
{
    const LoadedPair keys(keyFromOpenSSL(1024));
    const std::string text = asciiText(128, 1);
    const std::string cipher = encrypted(keys.publicKey, text);
    EXPECT_EQ(cipher.size(), 8U + 512U);
    // After the first block there are its 127 bytes, after the second there is the second's marker, too, and the text
    // ends where 128 bytes behind the first marker end.
    const std::string once = text.substr(0, 127);
    EXPECT_EQ(decrypted(keys.privateKey, cipher), once + once + "\1");
}

TEST(Encryptor, AppendsTheTextOnceABlock)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 64);
    const std::string cipher = encrypted(key, "abcdefghijklmno");
    EXPECT_EQ(decrypted(key, cipher), "abcdefg"
                                      "abcdefg\1hijklmn"
                                      "abcdefg\1hijklmn");
}

TEST(Encryptor, GivesEqualCipherTextsForEqualTexts)
{
    const LoadedPair keys(keyFromOpenSSL(512));
    EXPECT_EQ(encrypted(keys.publicKey, "the same"), encrypted(keys.publicKey, "the same"));
}

TEST(Encryptor, EncryptsTheEmptyTextAsItsLength)
{
    const LoadedPair keys(keyFromOpenSSL(512));
    EXPECT_EQ(encrypted(keys.publicKey, ""), "00000000");
    EXPECT_EQ(decrypted(keys.privateKey, "00000000"), "");
}

TEST(Encryptor, RefusesCipherTextsWithoutALength)
{
    const LoadedPair keys(keyFromOpenSSL(512));
    for (const char* pText : {"", "0", "0000000"})
    {
        gtString output("left over");
        EXPECT_FALSE(crRSAStringEncryptor(keys.publicKey).decrypt(pText, output));
        EXPECT_TRUE(output.isEmpty());
    }
}

TEST(Encryptor, MayWriteOverTheText)
{
    const LoadedPair keys(keyFromOpenSSL(512));
    gtString text("one and the same");
    ASSERT_TRUE(crRSAStringEncryptor(keys.publicKey).encrypt(text, text));
    EXPECT_EQ(decrypted(keys.privateKey, toBytes(text)), "one and the same");
}

// What does not fit the blocks is left out; nothing is written outside them, which the address sanitizer watches.
TEST(Encryptor, LeavesOutWhatTheBlocksDoNotHold)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 32);
    // Sixteen bytes want six markers; the five blocks hold fifteen bytes.
    const std::string text = "ABCDEFGHIJKLMNOP";
    EXPECT_EQ(encrypted(key, text), "00000010"
                                    "43424101"
                                    "46454401"
                                    "49484701"
                                    "4c4b4a01"
                                    "4f4e4d01");
    const TestKeyPair& pair = keyOfPrimes(32);
    crRSAEncryptionKey publicKey;
    pair.loadPublic(publicKey);
    for (std::size_t length = 14; length < 200; ++length)
    {
        const std::string longText = asciiText(length, static_cast<unsigned int>(length));
        ASSERT_EQ(encrypted(publicKey, longText), expectedCipherText(longText, pair, pair.publicExponent.get()));
    }
}

TEST(Encryptor, LeavesOutWhatTheBlocksOfLargerKeysDoNotHold)
{
    const LoadedPair keys(keyFromOpenSSL(1024));
    for (const std::size_t length : {std::size_t(16382), std::size_t(16383), std::size_t(16384), std::size_t(16500)})
    {
        const std::string text = asciiText(length, 3);
        ASSERT_EQ(encrypted(keys.publicKey, text), expectedCipherText(text, keys.pair, keys.pair.publicExponent.get()));
    }
}

TEST(Encryptor, StaysInsideItsBuffersWhereFloatsRound)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 32768);
    const std::string text(16777216 + 4097, 'x');
    const std::string cipher = encrypted(key, text);
    const int digits = crRSAStringEncryptor(key).amountOfDigitsForHoldingText(static_cast<int>(text.size()));
    ASSERT_EQ(cipher.size(), 8U + 8U * static_cast<std::size_t>(digits));
    EXPECT_EQ(cipher.substr(0, 16), "01001001"
                                    "78787801");
}

TEST(Encryptor, TakesLongTexts)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 32768);
    const crRSAStringEncryptor encryptor(key);
    constexpr int length = 70000000;
    gtString output;
    ASSERT_TRUE(encryptor.encrypt(toText(std::string(length, 'x')), output));
    const int digits = encryptor.amountOfDigitsForHoldingText(length);
    ASSERT_GT(digits * 4, length);
    ASSERT_EQ(output.length(), 8 + digits * 8);
    EXPECT_EQ(std::string(output.asCharArray(), 24), "042c1d80"
                                                     "78787801"
                                                     "78787878");
    // All of the text is there, "78" a letter; the length has an 8, too.
    EXPECT_EQ(std::count(output.asCharArray(), output.asCharArray() + output.length(), '8'), length + 1);
}

// The text's own limit: 268435454 digits make a cipher text of 2147483640 characters.
TEST(Encryptor, RefusesTextsWhoseCipherTextIsLongerThanATextMayBe)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 1024);
    const crRSAStringEncryptor encryptor(key);
    constexpr int length = 1066000000;
    ASSERT_GT(encryptor.amountOfDigitsForHoldingText(length), 268435454);
    ASSERT_LT(encryptor.amountOfDigitsForHoldingText(1065000000), 268435454);
    if (::sysconf(_SC_AVPHYS_PAGES) < 3L * length / ::sysconf(_SC_PAGESIZE))
    {
        GTEST_SKIP() << "takes more memory than there is";
    }
    gtString text;
    text.reserve(length);
    const gtString part = toText(std::string(1000000, 'x'));
    for (int i = 0; i < length / 1000000; ++i)
    {
        text.append(part);
    }
    gtString output("kept");
    EXPECT_FALSE(encryptor.encrypt(text, output));
    EXPECT_EQ(output, gtString("kept"));
}

// What came in full is decrypted, however long its output.
TEST(Decryptor, HasNoLimitForWhatCameInFull)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 1024);
    for (const std::size_t length : {std::size_t(1), std::size_t(16000), std::size_t(130500)})
    {
        std::string text = asciiText(length, 1);
        // Beyond B * B bytes, the end of the text is not in the blocks.
        const std::string cipher = encrypted(key, text);
        const std::string expected = everyPrefix(text, 128);
        EXPECT_EQ(expected.size() > 67108864U, length == 130500U);
        if (length > 16384)
        {
            const std::size_t blocks = (cipher.size() - 8) / 256;
            EXPECT_EQ(blocks, 1028U);
        }
        const std::string plain = decrypted(key, cipher);
        EXPECT_EQ(plain.size(), expected.size());
        EXPECT_TRUE(plain == expected) << length;
        // With a character less, the last group has not come in full, and the limit holds.
        EXPECT_EQ(decrypted(key, cipher.substr(0, cipher.size() - 1)).size(),
                  expected.size() > 67108864U ? 0U : expected.size());
    }
}

// Its buffer has a digit more, for the NUL byte.
TEST(Decryptor, TakesLengthsBelowTheLimit)
{
    EXPECT_EQ(crRSAStringEncryptor::maximalAmountOfClaimedBytes, 67108864);
    crRSAEncryptionKey key;
    loadIdentity(key, 1024);
    const crRSAStringEncryptor encryptor(key);
    ASSERT_EQ(encryptor.amountOfDigitsForHoldingText(66588514), 67108864 / 4 - 32);
    ASSERT_EQ(encryptor.amountOfDigitsForHoldingText(66588515), 67108864 / 4);
    // 66588514 and 66588515: each block appends the first one's letter.
    const std::string firstDigit = "00006101";
    EXPECT_TRUE(decrypted(key, hexOf(66588514, 8) + firstDigit) == std::string(67108864 / 128 - 1, 'a'));
    EXPECT_EQ(decrypted(key, hexOf(66588515, 8) + firstDigit).size(), 0U);
}

TEST(Decryptor, TakesOutputsUpToTheLimit)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 32);
    // Blocks of one digit. The text grows with each of the first 44, to 177 bytes in the end; what all blocks together
    // append is the limit.
    std::string cipher = "64646401";
    for (int block = 1; block < 44; ++block)
    {
        cipher += "64646464";
    }
    cipher += "00006464";
    const int blocks = 379168;
    ASSERT_EQ(44 * 3 + 4 * 44 * 43 / 2 + 177 * (blocks - 44), crRSAStringEncryptor::maximalAmountOfClaimedBytes);
    const auto lengthFor = [&key](int digits)
    {
        int length = 3 * digits;
        while (crRSAStringEncryptor(key).amountOfDigitsForHoldingText(length) < digits)
        {
            ++length;
        }
        return hexOf(static_cast<unsigned int>(length), 8);
    };
    EXPECT_EQ(decrypted(key, lengthFor(blocks) + cipher).size(), std::size_t(67108864));
    EXPECT_EQ(decrypted(key, lengthFor(blocks + 1) + cipher).size(), 0U);
}

TEST(Decryptor, TakesTheLengthThroughAnInt)
{
    const LoadedPair keys(keyFromOpenSSL(512));
    const std::string blocks(128, '1');
    for (const char* pLength : {"ffffffff", "80000000", "fffffff0", "FFFFFFFF", "80000001", "c0000000"})
    {
        EXPECT_EQ(decrypted(keys.privateKey, pLength + blocks), "") << pLength;
    }
    // What is no length is none.
    EXPECT_EQ(decrypted(keys.privateKey, "zzzzzzzz" + blocks), "");
}

TEST(Decryptor, ReadsTheLengthAsSscanfDoes)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 64);
    const std::string blocks = "6362610167666564";
    for (const char* pLength : {"00000003", "       3", "+0000003", "0x000003", "0X3     ", "3       ", "3zzzzzzz",
                                "      +3", "\t\n\v\f\r  3", " +0x3   ", "0000003 ", "-fffffd "})
    {
        // The last is -16777213, which is no length.
        EXPECT_EQ(decrypted(key, pLength + blocks), pLength[0] == '-' ? "" : "abc") << pLength;
    }
    // Below zero, and no number at all: nothing of the blocks behind it is drawn in.
    for (const char* pLength : {"-0000003", "      -3", "-3      ", "        ", "       -", "-      3", "+-000003",
                                "--000003", "x0000003", "#0000003", "\xa0\xa0 0003 "})
    {
        EXPECT_EQ(decrypted(key, pLength + blocks), "") << pLength;
    }
    const gtString withNul("3\0"
                           "00000063626101",
                           16);
    gtString output;
    EXPECT_TRUE(crRSAStringEncryptor(key).decrypt(withNul, output));
    EXPECT_EQ(output, gtString("abc"));
}

TEST(Decryptor, ReadsDigitsAsSscanfDoes)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 32);
    for (const char* pDigit : {"63626101", "+3626101", "0x626101", " 3626101", "\n\t 61   "})
    {
        const unsigned int value = pDigit[0] == '6'    ? 0x63626101U
                                   : pDigit[0] == '0'  ? 0x626101U
                                   : pDigit[0] == '\n' ? 0x61U
                                                       : 0x3626101U;
        std::string expected;
        for (unsigned int rest = value >> 8; rest != 0; rest >>= 8)
        {
            expected += static_cast<char>(rest & 0xFFU);
        }
        EXPECT_EQ(decrypted(key, std::string("00000003") + pDigit), expected) << pDigit;
    }
    EXPECT_EQ(decrypted(key, "00000003-0000001"), "\xff\xff\xff");
    EXPECT_EQ(decrypted(key, "00000003-ffffff "), std::string());  // 0xff000001
    EXPECT_EQ(decrypted(key, "00000003-"), std::string());
}

// Who knows how long the text must be is spared the rest.
TEST(Decryptor, StopsWhenThereIsEnough)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 64);
    const std::string cipher = encrypted(key, "abcdefghijklmno");
    const std::string all = everyPrefix("abcdefghijklmno", 8);
    ASSERT_EQ(all.size(), 7U + 15U + 15U);
    for (const int enough : {INT_MIN, -1, 0, 6, 7, 8, 21, 22, 23, 36, 37, INT_MAX})
    {
        gtString output("left over");
        bool isShortOfMemory = true;
        EXPECT_TRUE(crRSAStringEncryptor(key).decrypt(toText(cipher), output, isShortOfMemory, enough));
        EXPECT_FALSE(isShortOfMemory);
        EXPECT_EQ(toBytes(output), all.substr(0, enough < 7 ? 7 : enough < 22 ? 22 : 37)) << enough;
    }
}

TEST(Decryptor, IsNotImpressedByAWildLength)
{
    for (const int bits : {32, 512})
    {
        const LoadedPair keys(bits < 512 ? keyOfPrimes(bits) : keyFromOpenSSL(bits));
        for (const char* pText : {"7735940012345678", "7fffffff12345678", "40000000ffffffff", "0400000012345678"})
        {
            EXPECT_EQ(decrypted(keys.privateKey, pText), "") << pText;
        }
    }
}

// Below the limit, the digits that are not there are zero and cost no exponentiation: a sixth of a million blocks with
// a private exponent would take longer than this test may.
TEST(Decryptor, TakesDigitsThatAreNotThereForZero)
{
    const LoadedPair keys(keyFromOpenSSL(2048));
    const std::string text = "a text of one block";
    std::string cipher = encrypted(keys.publicKey, text);
    cipher.replace(0, 8, "02800000");
    const std::string plain = decrypted(keys.privateKey, cipher);
    // The block is appended once for each block of the claimed length, and stands before zeros.
    ASSERT_GT(plain.size(), 255U);
    EXPECT_EQ(plain.substr(0, text.size()), text);
    EXPECT_EQ(plain.substr(255, text.size()), text);
    EXPECT_EQ(plain.size() % 255, 0U);
}

TEST(Decryptor, GivesNothingWhereTheOutputWouldPassTheLimit)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 32);
    // Twelve million blocks, each of which would append nine bytes.
    EXPECT_EQ(decrypted(key, "02000000"
                             "64646401"
                             "64646464"
                             "64646464"),
              "");
    EXPECT_EQ(decrypted(key, "00000008"
                             "64646401"
                             "64646464"
                             "64646464"),
              "ddd"
              "ddddddd"
              "dddddddd");
}

TEST(Decryptor, IsNotShortOfMemoryAtItsLimits)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 32);
    const crRSAEncryptionKey unusable;
    for (const char* pText : {"", "7735940012345678", "ffffffff", "80000000", "c000000012345678",
                              "02000000646464016464646464646464", "0000000364646401"})
    {
        gtString output;
        bool isShortOfMemory = true;
        crRSAStringEncryptor(key).decrypt(pText, output, isShortOfMemory);
        EXPECT_FALSE(isShortOfMemory) << pText;
        isShortOfMemory = true;
        crRSAStringEncryptor(unusable).decrypt(pText, output, isShortOfMemory);
        EXPECT_FALSE(isShortOfMemory) << pText;
    }
}

TEST(Decryptor, ReadsNothingBehindTheCipherText)
{
    const LoadedPair keys(keyFromOpenSSL(512));
    const std::string cipher = encrypted(keys.publicKey, "cut off");
    for (std::size_t length = 8; length < cipher.size(); ++length)
    {
        gtString output;
        EXPECT_TRUE(crRSAStringEncryptor(keys.privateKey).decrypt(toText(cipher.substr(0, length)), output));
        EXPECT_NE(output, gtString("cut off"));
    }
    EXPECT_EQ(decrypted(keys.privateKey, cipher + "0123456789"), "cut off");
}

TEST(Decryptor, ReadsAPartialLastGroup)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 64);
    // 6362 is byte 0 and 1; of the rest there is nothing.
    EXPECT_EQ(decrypted(key, "00000006"
                             "6362"),
              "c");
    EXPECT_EQ(decrypted(key, "00000006"
                             "67666501"
                             "6"),
              "efg\6");
    // Groups that do not begin with a hexadecimal character are zero, and the next is read all the same.
    EXPECT_EQ(decrypted(key, "00000007"
                             "67666501"
                             "zz666564"),
              "efg");
    EXPECT_EQ(decrypted(key, "00000007"
                             "zz666564"
                             "67666501"),
              "");
    EXPECT_EQ(decrypted(key, "00000007"
                             "676665zz"
                             "67666501"),
              std::string("fg"));
}

TEST(Decryptor, EndsTheTextAtItsLength)
{
    crRSAEncryptionKey key;
    loadIdentity(key, 64);
    const std::string blocks = "63626101"
                               "67666564";
    EXPECT_EQ(decrypted(key, "00000001" + blocks), "a");
    EXPECT_EQ(decrypted(key, "00000003" + blocks), "abc");
    EXPECT_EQ(decrypted(key, "00000007" + blocks), "abcdefg");
    EXPECT_EQ(decrypted(key, "00000000" + blocks), "");
    // A length beyond the block: the second block is zero, and the text still ends.
    EXPECT_EQ(decrypted(key, "00000008" + blocks), "abcdefgabcdefg");
}

TEST(Decryptor, DoesNotTellAWrongKey)
{
    const LoadedPair right(keyFromOpenSSL(512));
    const LoadedPair other(keyOfPrimes(512));
    const std::string cipher = encrypted(right.publicKey, "for one only");
    gtString output;
    EXPECT_TRUE(crRSAStringEncryptor(other.privateKey).decrypt(toText(cipher), output));
    EXPECT_NE(output, gtString("for one only"));
    EXPECT_TRUE(crRSAStringEncryptor(right.publicKey).decrypt(toText(cipher), output));
    EXPECT_NE(output, gtString("for one only"));
}

TEST(Decryptor, SurvivesAnyText)
{
    const std::string characters = "0123456789abcdefABCDEFx zg-\377";
    const LoadedPair small(keyOfPrimes(32));
    const LoadedPair large(keyOfPrimes(128));
    for (unsigned int seed = 0; seed < 3000; ++seed)
    {
        std::string text = scrambledBytes(seed % 300, seed);
        for (char& character : text)
        {
            character = characters[static_cast<unsigned char>(character) % characters.size()];
        }
        // Mostly lengths that the text could have.
        if (text.size() > 8 && seed % 100 != 0)
        {
            text.replace(0, 5, "00000");
        }
        for (const crRSAEncryptionKey* pKey : {&small.privateKey, &small.publicKey, &large.publicKey})
        {
            gtString output;
            EXPECT_EQ(crRSAStringEncryptor(*pKey).decrypt(toText(text), output), text.size() >= 8);
        }
    }
}

TEST(Encryptor, ComputesNothingWithAKeyThatIsNotUsable)
{
    crRSAEncryptionKey empty;
    crRSAEncryptionKey refused;
    EXPECT_FALSE(refused.setKeyFromStrings(1000, "", 32, "00010001"));
    crRSAEncryptionKey negative;
    EXPECT_FALSE(negative.setKeyFromStrings(-64, "", -64, ""));
    crRSAEncryptionKey noModulus;
    EXPECT_FALSE(noModulus.setKeyFromStringAndFermatPrime(64, "", 3));
    crRSAEncryptionKey noExponent;
    EXPECT_TRUE(noExponent.setKeyFromStrings(64, "0000000f0000000f", 0, ""));
    crRSAEncryptionKey outgrown;
    EXPECT_TRUE(outgrown.setKeyFromStringAndFermatPrime(64, "0000000f0000000f", 3));
    EXPECT_FALSE(outgrown.setKeyFromStrings(6400 + 1, "", 32, "00010001"));
    for (const crRSAEncryptionKey* pKey : {&empty, &refused, &negative, &noModulus, &noExponent, &outgrown})
    {
        gtString output("kept");
        EXPECT_FALSE(crRSAStringEncryptor(*pKey).encrypt("text", output));
        EXPECT_EQ(output, gtString("kept"));
        EXPECT_TRUE(crRSAStringEncryptor(*pKey).decrypt("000000041234567812345678", output));
        EXPECT_TRUE(output.isEmpty());
    }
}

TEST(Encryptor, LeavesTheKeyAsItIs)
{
    const LoadedPair keys(keyOfPrimes(160));
    std::vector<unsigned int> before(keys.publicKey.productDigits(), keys.publicKey.productDigits() + 5);
    encrypted(keys.publicKey, "whatever");
    EXPECT_EQ(before, std::vector<unsigned int>(keys.publicKey.productDigits(), keys.publicKey.productDigits() + 5));
}

// With an exponent of 1 a block comes back as it is, though it is not below the modulus.
TEST(Encryptor, HandsBlocksOnWithAnExponentOfOne)
{
    crRSAEncryptionKey key;
    ASSERT_TRUE(key.setKeyFromStringAndFermatPrime(32, "00000003", 1));
    EXPECT_EQ(encrypted(key, "abc"), "00000003"
                                     "63626101");
    crRSAEncryptionKey square;
    ASSERT_TRUE(square.setKeyFromStringAndFermatPrime(32, "00000100", 2));
    EXPECT_EQ(encrypted(square, "abc"), "00000003"
                                        "00000001");
}
