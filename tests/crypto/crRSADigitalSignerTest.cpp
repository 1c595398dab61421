// SPDX-License-Identifier: Apache-2.0
#include "crypto/crRSADigitalSigner.h"

#include <cstring>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <type_traits>

#include <gtest/gtest.h>

#include "crypto/crRSAEncryptionKey.h"
#include "crypto/crRSAStringEncryptor.h"
#include "cryptoTestSupport.h"

static_assert(!std::is_copy_constructible_v<crRSADigitalSigner>);
static_assert(!std::is_copy_assignable_v<crRSADigitalSigner>);
static_assert(!std::is_move_constructible_v<crRSADigitalSigner>);
static_assert(!std::is_move_assignable_v<crRSADigitalSigner>);
static_assert(!std::is_polymorphic_v<crRSADigitalSigner>);

namespace
{

class Signer : public ::testing::Test
{
protected:
    Signer() : _pair(keyFromOpenSSL(1024))
    {
        _pair.loadPublic(_publicKey);
        _pair.loadPrivate(_privateKey);
    }

    std::string signatureOf(const osFilePath& file) const
    {
        crRSADigitalSigner signer(_privateKey);
        gtString signature("left over");
        EXPECT_TRUE(signer.getSignature(file, signature));
        return toBytes(signature);
    }

    bool isGood(const osFilePath& file, const std::string& signature) const
    {
        crRSADigitalSigner signer(_publicKey);
        return signer.testSignature(file, toText(signature));
    }

    const TestKeyPair& _pair;
    crRSAEncryptionKey _publicKey;
    crRSAEncryptionKey _privateKey;
    TemporaryFolder _folder;
};

// Byte by byte, and each digit's bytes turned round for its text.
std::string expectedDigestText(const std::string& contents, int digitsOfKey)
{
    const int digits = digitsOfKey / 2 - 1;
    std::string digest(static_cast<std::size_t>(digits) * 4, '\0');
    for (std::size_t i = 0; i < contents.size() && !digest.empty(); ++i)
    {
        char& byte = digest[i % digest.size()];
        byte = static_cast<char>(byte ^ contents[i]);
    }
    std::string text;
    for (std::size_t digit = 0; digit < digest.size(); digit += 4)
    {
        for (std::size_t i = 4; i > 0; --i)
        {
            text += hexOf(static_cast<unsigned char>(digest[digit + i - 1]), 2);
        }
    }
    return text;
}

}  // namespace

TEST_F(Signer, SignsTheEmptyFile)
{
    const osFilePath file = _folder.write("empty", "");
    crRSADigitalSigner signer(_privateKey);
    ASSERT_TRUE(signer.createMessageDigestDigits());
    ASSERT_TRUE(signer.createFileMessageDigest(file));
    gtString text;
    signer.messageDigestToString(text);
    EXPECT_EQ(toBytes(text), std::string(120, '0'));
    signer.deleteMessageDigestDigits();

    const std::string signature = signatureOf(file);
    EXPECT_EQ(signature.size(), 264U);
    EXPECT_EQ(signature.substr(0, 8), "00000078");
    EXPECT_TRUE(isGood(file, signature));
}

TEST_F(Signer, SignsLikeLibcryptoFilesOfEverySizeAroundARun)
{
    for (std::size_t size = 0; size <= 4 * 60 + 1; ++size)
    {
        const std::string contents = scrambledBytes(size, static_cast<unsigned int>(size));
        const osFilePath file = _folder.write("file", contents);
        const std::string signature = signatureOf(file);
        ASSERT_EQ(signature, expectedCipherText(expectedDigestText(contents, 32), _pair, _pair.privateExponent.get()))
            << size;
        ASSERT_TRUE(isGood(file, signature)) << size;
    }
}

// Around the sizes at which files are read in pieces.
TEST_F(Signer, FoldsLargeFiles)
{
    for (const std::size_t size : {std::size_t(4096), std::size_t(65535), std::size_t(65536), std::size_t(262143),
                                   std::size_t(262144), std::size_t(262145), std::size_t(3000017)})
    {
        const std::string contents = scrambledBytes(size, 5);
        const osFilePath file = _folder.write("file", contents);
        crRSADigitalSigner signer(_publicKey);
        ASSERT_TRUE(signer.createMessageDigestDigits());
        ASSERT_TRUE(signer.createFileMessageDigest(file));
        gtString text;
        signer.messageDigestToString(text);
        ASSERT_EQ(toBytes(text), expectedDigestText(contents, 32)) << size;
    }
}

// Around the sizes from which runs are folded side by side, with runs of many lengths.
TEST_F(Signer, FoldsManyRunsSideBySide)
{
    const std::string contents = scrambledBytes(300000, 7);
    for (const int bits : {128, 160, 192, 256, 512, 1024})
    {
        crRSAEncryptionKey key;
        keyOfPrimes(bits).loadPublic(key);
        crRSADigitalSigner signer(key);
        ASSERT_TRUE(signer.createMessageDigestDigits());
        for (const std::size_t size : {std::size_t(8159), std::size_t(8160), std::size_t(8161), std::size_t(8192),
                                       std::size_t(16321), std::size_t(20000), std::size_t(245760), contents.size()})
        {
            signer.deleteMessageDigestDigits();
            ASSERT_TRUE(signer.createMessageDigestDigits());
            signer.addToMessageDigest(contents.data(), size);
            gtString text;
            signer.messageDigestToString(text);
            ASSERT_EQ(toBytes(text), expectedDigestText(contents.substr(0, size), bits / 32)) << bits << ", " << size;

            signer.deleteMessageDigestDigits();
            ASSERT_TRUE(signer.createMessageDigestDigits());
            ASSERT_TRUE(signer.createFileMessageDigest(_folder.write("file", contents.substr(0, size))));
            signer.messageDigestToString(text);
            ASSERT_EQ(toBytes(text), expectedDigestText(contents.substr(0, size), bits / 32)) << bits << ", " << size;
        }
    }
}

TEST_F(Signer, FoldsWithKeysOfManySizes)
{
    const std::string contents = scrambledBytes(1000, 11);
    const osFilePath file = _folder.write("file", contents);
    for (const int bits : {128, 160, 192, 256, 512})
    {
        const TestKeyPair& pair = keyOfPrimes(bits);
        crRSAEncryptionKey publicKey;
        crRSAEncryptionKey privateKey;
        pair.loadPublic(publicKey);
        pair.loadPrivate(privateKey);
        crRSADigitalSigner signer(privateKey);
        gtString signature;
        ASSERT_TRUE(signer.getSignature(file, signature));
        EXPECT_EQ(toBytes(signature),
                  expectedCipherText(expectedDigestText(contents, pair.digits()), pair, pair.privateExponent.get()))
            << bits;
        EXPECT_TRUE(crRSADigitalSigner(publicKey).testSignature(file, signature)) << bits;
        EXPECT_FALSE(crRSADigitalSigner(publicKey).testSignature(_folder.write("other", contents + "x"), signature))
            << bits;
    }
}

// Digests that are longer than what is folded side by side, than a page, and than a piece of a file.
TEST_F(Signer, FoldsWithHugeKeys)
{
    const std::string contents = scrambledBytes(700001, 3);
    const osFilePath file = _folder.write("file", contents);
    for (const int digits : {1024, 1026, 1028, 4224, 131076})
    {
        crRSAEncryptionKey key;
        ASSERT_TRUE(key.setKeyFromStringAndFermatPrime(
            digits * 32, toText(std::string(static_cast<std::size_t>(digits) * 8, 'f')), 3));
        crRSADigitalSigner signer(key);
        ASSERT_TRUE(signer.createMessageDigestDigits());
        ASSERT_TRUE(signer.createFileMessageDigest(file));
        gtString text;
        signer.messageDigestToString(text);
        ASSERT_EQ(toBytes(text), expectedDigestText(contents, digits)) << digits;
    }
}

TEST_F(Signer, FoldsIntoWhatTheDigestHolds)
{
    const std::string contents = scrambledBytes(100, 1);
    const osFilePath file = _folder.write("file", contents);
    crRSADigitalSigner signer(_publicKey);
    ASSERT_TRUE(signer.createMessageDigestDigits());
    gtString text;
    ASSERT_TRUE(signer.createFileMessageDigest(file));
    signer.messageDigestToString(text);
    EXPECT_EQ(toBytes(text), expectedDigestText(contents, 32));
    // The same once more takes it all out again.
    ASSERT_TRUE(signer.createFileMessageDigest(file));
    signer.messageDigestToString(text);
    EXPECT_EQ(toBytes(text), std::string(120, '0'));
}

TEST_F(Signer, FoldsBytesLikeAFile)
{
    const std::string contents = scrambledBytes(60 * 7 + 13, 2);
    crRSADigitalSigner signer(_publicKey);
    signer.addToMessageDigest(contents.data(), contents.size());  // without a digest nothing happens
    EXPECT_EQ(signer.amountOfDigestBytes(), 0);
    ASSERT_TRUE(signer.createMessageDigestDigits());
    EXPECT_EQ(signer.amountOfDigestBytes(), 60);
    signer.addToMessageDigest(contents.data(), 120);
    signer.addToMessageDigest(contents.data() + 120, 0);
    signer.addToMessageDigest(contents.data() + 120, contents.size() - 120);
    gtString text;
    signer.messageDigestToString(text);
    EXPECT_EQ(toBytes(text), expectedDigestText(contents, 32));
    signer.deleteMessageDigestDigits();
    EXPECT_EQ(signer.amountOfDigestBytes(), 0);
    signer.deleteMessageDigestDigits();
    signer.messageDigestToString(text);
    EXPECT_TRUE(text.isEmpty());
}

TEST_F(Signer, FoldsNothingWithoutADigest)
{
    crRSADigitalSigner signer(_publicKey);
    EXPECT_TRUE(signer.createFileMessageDigest(_folder.write("file", "contents")));
    EXPECT_FALSE(signer.createFileMessageDigest(osFilePath("/nowhere")));
    gtString text("left over");
    signer.messageDigestToString(text);
    EXPECT_TRUE(text.isEmpty());
    // Nor with one that is gone.
    ASSERT_TRUE(signer.createMessageDigestDigits());
    signer.deleteMessageDigestDigits();
    EXPECT_TRUE(signer.createFileMessageDigest(_folder.write("file", "contents")));
}

TEST_F(Signer, LeavesNothingOnTheStack)
{
    crRSADigitalSigner signer(_publicKey);
    ASSERT_TRUE(signer.createMessageDigestDigits());
    const std::string secret = scrambledBytes(60, 9);
    // Everything but the first run is zero: what is folded side by side is the first run.
    const std::string contents = secret + std::string(16320 - 60, '\0');
    const std::string left = stackLeftBy([&] { signer.addToMessageDigest(contents.data(), contents.size()); });
    EXPECT_EQ(left.find(secret.substr(0, 16)), std::string::npos);
    gtString text;
    text.reserve(1000);
    const std::string leftByText = stackLeftBy([&] { signer.messageDigestToString(text); });
    EXPECT_EQ(toBytes(text), expectedDigestText(contents, 32));
    for (std::size_t i = 0; i < 120; i += 8)
    {
        EXPECT_EQ(leftByText.find(toBytes(text).substr(i, 8)), std::string::npos) << i;
    }
    // The search finds what is there.
    const std::string leftByCopy = stackLeftBy(
        [&secret]
        {
            char copy[16];
            std::memcpy(copy, secret.data(), sizeof(copy));
            __asm__ __volatile__("" : : "r"(copy) : "memory");
        });
    EXPECT_NE(leftByCopy.find(secret.substr(0, 16)), std::string::npos);
}

TEST_F(Signer, IsBlindToSwappedRuns)
{
    const std::string first = scrambledBytes(60, 1);
    const std::string second = scrambledBytes(60, 2);
    const std::string third = scrambledBytes(17, 3);
    const std::string signature = signatureOf(_folder.write("a", first + second + third));
    EXPECT_EQ(signature, signatureOf(_folder.write("b", second + first + third)));
    EXPECT_TRUE(isGood(_folder.write("b", second + first + third), signature));
    EXPECT_FALSE(isGood(_folder.write("b", first + third + second), signature));
}

TEST_F(Signer, FindsEveryChangedByte)
{
    const std::string contents = scrambledBytes(150, 1);
    const std::string signature = signatureOf(_folder.write("file", contents));
    for (std::size_t i = 0; i < contents.size(); ++i)
    {
        std::string changed = contents;
        changed[i] = static_cast<char>(changed[i] ^ (1 << (i % 8)));
        ASSERT_FALSE(isGood(_folder.write("file", changed), signature)) << i;
    }
    EXPECT_FALSE(isGood(_folder.write("file", contents + "x"), signature));
    EXPECT_TRUE(isGood(_folder.write("file", contents), signature));
    // A byte of zero at the end is invisible to the fold.
    EXPECT_TRUE(isGood(_folder.write("file", contents + std::string(3, '\0')), signature));
}

TEST_F(Signer, RefusesWrongKeys)
{
    const osFilePath file = _folder.write("file", "contents");
    const std::string signature = signatureOf(file);
    EXPECT_FALSE(crRSADigitalSigner(_privateKey).testSignature(file, toText(signature)));
    crRSAEncryptionKey other;
    keyOfPrimes(1024).loadPublic(other);
    EXPECT_FALSE(crRSADigitalSigner(other).testSignature(file, toText(signature)));
    crRSAEncryptionKey larger;
    keyFromOpenSSL(2048).loadPublic(larger);
    EXPECT_FALSE(crRSADigitalSigner(larger).testSignature(file, toText(signature)));
    crRSAEncryptionKey smaller;
    keyFromOpenSSL(512).loadPublic(smaller);
    EXPECT_FALSE(crRSADigitalSigner(smaller).testSignature(file, toText(signature)));
}

TEST_F(Signer, RefusesMalformedSignatures)
{
    const osFilePath file = _folder.write("file", "contents");
    const std::string signature = signatureOf(file);
    for (std::size_t length = 0; length < signature.size(); ++length)
    {
        ASSERT_FALSE(isGood(file, signature.substr(0, length))) << length;
    }
    for (std::size_t i = 0; i < signature.size(); ++i)
    {
        std::string changed = signature;
        changed[i] = changed[i] == '0' ? '1' : '0';
        ASSERT_FALSE(isGood(file, changed)) << i;
        changed[i] = 'g';
        // A g stands for the end of its group.
        ASSERT_EQ(isGood(file, changed), false) << i;
    }
    EXPECT_FALSE(isGood(file, " " + signature));
    EXPECT_FALSE(isGood(file, "no signature at all"));
    EXPECT_FALSE(isGood(file, "77359400" + signature.substr(8)));
    EXPECT_FALSE(isGood(file, "ffffffff" + signature.substr(8)));
    EXPECT_TRUE(isGood(file, signature));
    EXPECT_TRUE(isGood(file, signature + "\n"));
}

// 4096 blocks that ask for a gigabyte of output: nothing of them is needed once the text is longer than the digest's.
TEST_F(Signer, RefusesLongSignaturesEarly)
{
    const osFilePath file = _folder.write("file", "contents");
    crRSAEncryptionKey key;
    ASSERT_TRUE(key.setKeyFromStringAndFermatPrime(1024, toText(std::string(256, 'f')), 1));
    const std::string text(520000, 'x');
    gtString signature;
    ASSERT_TRUE(crRSAStringEncryptor(key).encrypt(toText(text), signature));
    ASSERT_GT(signature.length(), 1000000);
    struct rusage before = {};
    struct rusage after = {};
    ASSERT_EQ(getrusage(RUSAGE_SELF, &before), 0);
    EXPECT_FALSE(crRSADigitalSigner(key).testSignature(file, signature));
    ASSERT_EQ(getrusage(RUSAGE_SELF, &after), 0);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 100 * 1024);
    // A text as long as the digest's that goes on is not the digest's either.
    const osFilePath empty = _folder.write("empty", "");
    ASSERT_TRUE(crRSAStringEncryptor(key).encrypt(toText(std::string(120, '0')), signature));
    EXPECT_TRUE(crRSADigitalSigner(key).testSignature(empty, signature));
    ASSERT_TRUE(crRSAStringEncryptor(key).encrypt(toText(std::string(121, '0')), signature));
    EXPECT_FALSE(crRSADigitalSigner(key).testSignature(empty, signature));
}

TEST_F(Signer, FailsWithoutAFileAndLeavesTheOutputAlone)
{
    ASSERT_EQ(mkdir((_folder / "folder").c_str(), 0700), 0);
    ASSERT_EQ(mkfifo((_folder / "pipe").c_str(), 0600), 0);
    const std::string good = signatureOf(_folder.write("file", "contents"));
    for (const char* pName : {"missing", "folder", "pipe", "file/below"})
    {
        const osFilePath file(toText(_folder / pName));
        crRSADigitalSigner signer(_privateKey);
        gtString signature("untouched");
        EXPECT_FALSE(signer.getSignature(file, signature)) << pName;
        EXPECT_EQ(signature, gtString("untouched"));
        EXPECT_EQ(signer.amountOfDigestBytes(), 0) << "the digest is released on every road";
        EXPECT_FALSE(signer.testSignature(file, toText(good)));
        EXPECT_EQ(signer.amountOfDigestBytes(), 0);
        ASSERT_TRUE(signer.createMessageDigestDigits());
        EXPECT_FALSE(signer.createFileMessageDigest(file));
    }
    crRSADigitalSigner signer(_privateKey);
    gtString signature;
    EXPECT_FALSE(signer.getSignature(osFilePath(), signature));
}

TEST_F(Signer, MayBeUsedAgain)
{
    crRSADigitalSigner signer(_privateKey);
    const osFilePath first = _folder.write("first", "one");
    const osFilePath second = _folder.write("second", "two");
    gtString signature;
    EXPECT_TRUE(signer.getSignature(first, signature));
    EXPECT_FALSE(signer.getSignature(osFilePath("/nowhere"), signature));
    EXPECT_TRUE(signer.getSignature(second, signature));
    EXPECT_EQ(toBytes(signature), signatureOf(second));
    EXPECT_EQ(signer.amountOfDigestBytes(), 0);
}

TEST_F(Signer, HasNoDigestWithAKeyOfOneDigit)
{
    const osFilePath file = _folder.write("file", "contents");
    crRSAEncryptionKey key;
    keyOfPrimes(32).loadPrivate(key);
    crRSADigitalSigner signer(key);
    gtString signature("untouched");
    EXPECT_FALSE(signer.createMessageDigestDigits());
    EXPECT_FALSE(signer.createFileMessageDigest(file));
    signer.messageDigestToString(signature);
    EXPECT_TRUE(signature.isEmpty());
    signature = "untouched";
    EXPECT_FALSE(signer.getSignature(file, signature));
    EXPECT_EQ(signature, gtString("untouched"));
    EXPECT_FALSE(signer.testSignature(file, "00000000"));
    const crRSAEncryptionKey empty;
    EXPECT_FALSE(crRSADigitalSigner(empty).getSignature(file, signature));
    EXPECT_EQ(signature, gtString("untouched"));
}

TEST_F(Signer, HasAnEmptyDigestWithAKeyOfTwoOrThreeDigits)
{
    const osFilePath file = _folder.write("file", scrambledBytes(1000, 1));
    for (const int bits : {64, 96})
    {
        crRSAEncryptionKey key;
        keyOfPrimes(bits).loadPrivate(key);
        crRSADigitalSigner signer(key);
        ASSERT_TRUE(signer.createMessageDigestDigits());
        EXPECT_EQ(signer.amountOfDigestBytes(), 0);
        EXPECT_TRUE(signer.createFileMessageDigest(file));
        signer.addToMessageDigest("abc", 3);
        signer.deleteMessageDigestDigits();
        gtString signature;
        EXPECT_TRUE(signer.getSignature(file, signature));
        EXPECT_EQ(toBytes(signature), "00000000");
        EXPECT_TRUE(signer.testSignature(file, signature));
        EXPECT_FALSE(signer.testSignature(file, "0000000"));
        gtString other;
        ASSERT_TRUE(crRSAStringEncryptor(key).encrypt("x", other));
        crRSAEncryptionKey partner;
        keyOfPrimes(bits).loadPublic(partner);
        EXPECT_FALSE(crRSADigitalSigner(partner).testSignature(file, other)) << "a text is not the empty one";
        EXPECT_FALSE(signer.getSignature(osFilePath("/nowhere"), signature));
    }
}

TEST_F(Signer, FailsWithAKeyThatIsNotUsable)
{
    const osFilePath file = _folder.write("file", "contents");
    crRSAEncryptionKey key;
    EXPECT_FALSE(key.setKeyFromStringAndFermatPrime(1024, "", 3));
    crRSADigitalSigner signer(key);
    gtString signature("untouched");
    EXPECT_FALSE(signer.getSignature(file, signature));
    EXPECT_EQ(signature, gtString("untouched"));
    EXPECT_EQ(signer.amountOfDigestBytes(), 0);
    EXPECT_FALSE(signer.testSignature(file, "00000000"));
}
