// SPDX-License-Identifier: Apache-2.0
// Every allocation that goes through operator new fails in turn, and what is given back is looked at for secrets.
// (Memory of the arithmetic comes from calloc, and running out of it ends the process.)

// The cipher is marked as deprecated in libcrypto 3; here it is wanted.
#define OPENSSL_SUPPRESS_DEPRECATED

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <new>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>
#include <openssl/blowfish.h>

#include "crypto/crBlowfishEncryptionKey.h"
#include "crypto/crDigits.h"
#include "crypto/crRSADigitalSigner.h"
#include "crypto/crRSAEncryptionKey.h"
#include "crypto/crRSAStringEncryptor.h"
#include "cryptoTestSupport.h"
#include "platform/baseTools/gtWipe.h"
#include "tests/support/failingAllocation.h"
#include "tests/support/tsSystemFault.h"

namespace
{

// What is looked for in all memory that is given back.
unsigned char secretBytes[64];
std::size_t secretLength = 0;
int secretsGivenBack = 0;

void look(const void* pMemory, std::size_t size)
{
    if (secretLength > 0 && memmem(pMemory, size, secretBytes, secretLength) != nullptr)
    {
        ++secretsGivenBack;
    }
}

// Calls the operation, which is told of the failure, with the first allocation failing, then the second, until it runs
// through without a failure. Returns how many times it was made to fail.
template <class Operation>
int failEachAllocation(Operation operation)
{
    int failures = 0;
    for (;; ++failures)
    {
        const OneFailingAllocation failure(failures);
        operation(failure);
        if (!failure.hasFailed())
        {
            return failures;
        }
    }
}

class CryptoFaults : public ::testing::Test
{
protected:
    CryptoFaults() : _pair(keyFromOpenSSL(512))
    {
        _pair.loadPublic(_publicKey);
        _pair.loadPrivate(_privateKey);
        _longText = toText(std::string(600, 'x'));
        _file = _folder.write("a file with a name that does not fit into a short string", scrambledBytes(1000, 1));
        secretsGivenBack = 0;
        watchWhatIsGivenBack(look);
    }
    ~CryptoFaults() override
    {
        watchWhatIsGivenBack(nullptr);
        secretLength = 0;
    }

    // Looks for these bytes in all memory that is given back from now on.
    static void watchFor(const void* pBytes, std::size_t length)
    {
        secretsGivenBack = 0;
        std::memcpy(secretBytes, pBytes, length);
        secretLength = length;
    }

    const TestKeyPair& _pair;
    crRSAEncryptionKey _publicKey;
    crRSAEncryptionKey _privateKey;
    TemporaryFolder _folder;
    gtString _longText;
    osFilePath _file;
};

}  // namespace

TEST_F(CryptoFaults, KeysAreRefused)
{
    const gtString modulus = toText(fixedWidthHex(_pair.modulus.get(), 16));
    const long live = amountOfLiveAllocations();
    const int failures = failEachAllocation(
        [&](const OneFailingAllocation& failure)
        {
            // What the last one had is given back, also where there was memory for one array alone.
            EXPECT_EQ(amountOfLiveAllocations(), live);
            crRSAEncryptionKey key;
            const bool loaded = key.setKeyFromStrings(512, modulus, 512, modulus);
            EXPECT_EQ(loaded, !failure.hasFailed());
            EXPECT_EQ(key.isUsable(), !failure.hasFailed());
            EXPECT_EQ(key.amountOfProductDigits(), 16);
        });
    EXPECT_EQ(failures, 2);
    EXPECT_EQ(failEachAllocation(
                  [&](const OneFailingAllocation& failure)
                  {
                      crRSAEncryptionKey key;
                      const bool loaded = key.setKeyFromStringAndFermatPrime(512, modulus, 3);
                      EXPECT_EQ(loaded, !failure.hasFailed());
                      EXPECT_EQ(key.isUsable(), !failure.hasFailed());
                  }),
              2);
}

TEST_F(CryptoFaults, EncryptingFailsWithItsOutputAlone)
{
    const int failures = failEachAllocation(
        [&](const OneFailingAllocation& failure)
        {
            gtString output("kept");
            const bool isEncrypted = crRSAStringEncryptor(_publicKey).encrypt(_longText, output);
            EXPECT_EQ(isEncrypted, !failure.hasFailed());
            EXPECT_EQ(output == gtString("kept"), failure.hasFailed());
        });
    EXPECT_EQ(failures, 3);
}

TEST_F(CryptoFaults, DecryptingIsTrueAndEmpty)
{
    gtString cipher;
    ASSERT_TRUE(crRSAStringEncryptor(_publicKey).encrypt(_longText, cipher));
    const int failures = failEachAllocation(
        [&](const OneFailingAllocation& failure)
        {
            gtString output("left over");
            bool isShortOfMemory = false;
            EXPECT_TRUE(crRSAStringEncryptor(_privateKey).decrypt(cipher, output, isShortOfMemory));
            EXPECT_EQ(output.isEmpty(), failure.hasFailed());
            EXPECT_EQ(isShortOfMemory, failure.hasFailed());
        });
    EXPECT_GT(failures, 2);
}

TEST_F(CryptoFaults, SigningFailsOrSignsRight)
{
    gtString expected;
    ASSERT_TRUE(crRSADigitalSigner(_privateKey).getSignature(_file, expected));
    const int failures = failEachAllocation(
        [&](const OneFailingAllocation& failure)
        {
            crRSADigitalSigner signer(_privateKey);
            gtString signature("kept");
            if (signer.getSignature(_file, signature))
            {
                EXPECT_EQ(signature, expected);
            }
            else
            {
                EXPECT_TRUE(failure.hasFailed());
                EXPECT_EQ(signature, gtString("kept"));
            }
            EXPECT_EQ(signer.amountOfDigestBytes(), 0);
        });
    EXPECT_GT(failures, 4);
}

TEST_F(CryptoFaults, TestingIsNeverWronglyGood)
{
    gtString signature;
    ASSERT_TRUE(crRSADigitalSigner(_privateKey).getSignature(_file, signature));
    const osFilePath other = _folder.write("another file with a name that does not fit into a short string", "x");
    const int failures = failEachAllocation(
        [&](const OneFailingAllocation& failure)
        {
            crRSADigitalSigner tester(_publicKey);
            const bool isGood = tester.testSignature(_file, signature);
            EXPECT_TRUE(isGood || failure.hasFailed());
        });
    EXPECT_GT(failures, 4);
    failEachAllocation(
        [&](const OneFailingAllocation&)
        {
            crRSADigitalSigner tester(_publicKey);
            EXPECT_FALSE(tester.testSignature(other, signature));
        });
}

TEST_F(CryptoFaults, BlowfishKeysAreNull)
{
    const unsigned char bytes[16] = {1, 2, 3};
    EXPECT_EQ(failEachAllocation(
                  [&](const OneFailingAllocation& failure)
                  {
                      const crBlowfishEncryptionKey key(bytes);
                      EXPECT_EQ(key.keyRecord() == nullptr, failure.hasFailed());
                  }),
              1);
}

TEST_F(CryptoFaults, EverythingIsGivenBack)
{
    const gtString modulus = toText(fixedWidthHex(_pair.modulus.get(), 16));
    const long live = amountOfLiveAllocations();
    {
        crRSAEncryptionKey key;
        ASSERT_TRUE(key.setKeyFromStrings(512, modulus, 512, modulus));
        crRSADigitalSigner signer(key);
        ASSERT_TRUE(signer.createMessageDigestDigits());
        EXPECT_EQ(amountOfLiveAllocations(), live + 3);
        signer.deleteMessageDigestDigits();
        EXPECT_EQ(amountOfLiveAllocations(), live + 2);
        ASSERT_TRUE(signer.createMessageDigestDigits());
    }
    EXPECT_EQ(amountOfLiveAllocations(), live);
}

TEST_F(CryptoFaults, KeysLeaveNoDigitsBehind)
{
    const gtString modulus = toText(fixedWidthHex(_pair.modulus.get(), 16));
    const gtString exponent = toText(fixedWidthHex(_pair.privateExponent.get(), 16));
    const std::string secret(reinterpret_cast<const char*>(_privateKey.numberDigits()), 64);
    auto* pKey = new crRSAEncryptionKey;
    ASSERT_TRUE(pKey->setKeyFromStrings(512, modulus, 512, exponent));
    watchFor(secret.data() + 8, 16);
    delete pKey;
    EXPECT_EQ(secretsGivenBack, 0);
    // Nor of the product.
    const std::string product(reinterpret_cast<const char*>(_privateKey.productDigits()), 64);
    pKey = new crRSAEncryptionKey;
    ASSERT_TRUE(pKey->setKeyFromStrings(512, modulus, 512, exponent));
    watchFor(product.data() + 8, 16);
    delete pKey;
    EXPECT_EQ(secretsGivenBack, 0);
    // The watch works:
    watchFor(secret.data() + 8, 16);
    delete new std::string(secret);
    EXPECT_EQ(secretsGivenBack, 1);
}

TEST_F(CryptoFaults, KeysLeaveNoDigitsBehindAfterARefusedLoad)
{
    const gtString modulus = toText(fixedWidthHex(_pair.modulus.get(), 16));
    const gtString exponent = toText(fixedWidthHex(_pair.privateExponent.get(), 16));
    const std::string secret(reinterpret_cast<const char*>(_privateKey.numberDigits()), 64);
    auto* pKey = new crRSAEncryptionKey;
    ASSERT_TRUE(pKey->setKeyFromStrings(512, modulus, 512, exponent));
    ASSERT_FALSE(pKey->setKeyFromStrings(-1, modulus, 512, exponent));
    watchFor(secret.data() + 8, 16);
    delete pKey;
    EXPECT_EQ(secretsGivenBack, 0);
}

TEST_F(CryptoFaults, EncryptorsLeaveNoPlainTextBehind)
{
    const std::string text = "a text that is a secret between two";
    gtString cipher;
    watchFor(text.data() + 4, 12);
    ASSERT_TRUE(crRSAStringEncryptor(_publicKey).encrypt(text.c_str(), cipher));
    // The one that the test itself made of the text.
    EXPECT_EQ(secretsGivenBack, 1);
    secretsGivenBack = 0;
    {
        gtString plain;
        plain.reserve(500);
        ASSERT_TRUE(crRSAStringEncryptor(_privateKey).decrypt(cipher, plain));
        ASSERT_EQ(plain, toText(text));
        secretsGivenBack = 0;
        ASSERT_TRUE(crRSAStringEncryptor(_privateKey).decrypt(cipher, plain));
        EXPECT_EQ(secretsGivenBack, 0);
    }
}

// The output grows with each block, and each time leaves its memory behind.
TEST_F(CryptoFaults, GrowingOutputsLeaveNoPlainTextBehind)
{
    const std::string text = scrambledBytes(1000, 3);
    std::string letters;
    for (const char character : text)
    {
        letters += static_cast<char>('a' + static_cast<unsigned char>(character) % 26);
    }
    gtString cipher;
    ASSERT_TRUE(crRSAStringEncryptor(_publicKey).encrypt(toText(letters), cipher));
    gtString plain;
    ASSERT_TRUE(crRSAStringEncryptor(_privateKey).decrypt(cipher, plain));
    ASSERT_GT(plain.length(), 4000);
    watchFor(letters.data() + 20, 16);
    {
        // Also what was there before, which is long enough to have memory of its own.
        gtString output = toText(letters.substr(0, 60));
        ASSERT_TRUE(crRSAStringEncryptor(_privateKey).decrypt(cipher, output));
        EXPECT_EQ(output, plain);
        EXPECT_EQ(secretsGivenBack, 1) << "the copy that the test made";
        secretsGivenBack = 0;
        // And what is given up.
        crRSAEncryptionKey key;
        ASSERT_TRUE(key.setKeyFromStringAndFermatPrime(32, "ffffffff", 1));
        ASSERT_TRUE(crRSAStringEncryptor(key).decrypt("00000000", output));
        EXPECT_TRUE(output.isEmpty());
    }
    EXPECT_EQ(secretsGivenBack, 0);
    // Wherever memory runs out.
    failEachAllocation(
        [&](const OneFailingAllocation& failure)
        {
            gtString output;
            secretsGivenBack = 0;
            EXPECT_TRUE(crRSAStringEncryptor(_privateKey).decrypt(cipher, output));
            EXPECT_EQ(secretsGivenBack, 0);
            EXPECT_EQ(output.isEmpty(), failure.hasFailed());
            gtWipe(output);
        });
}

TEST_F(CryptoFaults, SigningAndTestingLeaveNoDigestBehind)
{
    gtString signature;
    gtString digest;
    ASSERT_TRUE(crRSADigitalSigner(_privateKey).getSignature(_file, signature));
    ASSERT_TRUE(crRSAStringEncryptor(_publicKey).decrypt(signature, digest));
    ASSERT_EQ(digest.length(), 7 * 8);
    // As text, as it goes into the encryptor, and as digits, the first of which the text begins with.
    watchFor(digest.asCharArray() + 8, 24);
    EXPECT_TRUE(crRSADigitalSigner(_privateKey).getSignature(_file, signature));
    EXPECT_TRUE(crRSADigitalSigner(_publicKey).testSignature(_file, signature));
    EXPECT_EQ(secretsGivenBack, 0);
    unsigned int digits[4] = {};
    for (int i = 0; i < 4; ++i)
    {
        digits[i] = static_cast<unsigned int>(
            std::stoul(std::string(digest.asCharArray() + static_cast<std::ptrdiff_t>(i) * 8, 8), nullptr, 16));
    }
    watchFor(digits, sizeof(digits));
    EXPECT_TRUE(crRSADigitalSigner(_privateKey).getSignature(_file, signature));
    EXPECT_TRUE(crRSADigitalSigner(_publicKey).testSignature(_file, signature));
    EXPECT_EQ(secretsGivenBack, 0);
}

TEST_F(CryptoFaults, BlowfishKeysLeaveNoScheduleBehind)
{
    const unsigned char bytes[16] = {9, 8, 7};
    const crBlowfishEncryptionKey same(bytes);
    const long live = amountOfLiveAllocations();
    auto* pKey = new crBlowfishEncryptionKey(bytes);
    watchFor(same.keyRecord(), 16);
    delete pKey;
    EXPECT_EQ(secretsGivenBack, 0);
    EXPECT_EQ(amountOfLiveAllocations(), live);
}

// To its last byte: the fourth S box, too.
TEST_F(CryptoFaults, BlowfishRecordsAreWipedWhole)
{
    static const void* pRecord;
    static std::size_t amountOfZeros;
    const unsigned char bytes[16] = {9, 8, 7};
    auto* pKey = new crBlowfishEncryptionKey(bytes);
    pRecord = pKey->keyRecord();
    amountOfZeros = 0;
    watchWhatIsGivenBack(
        [](const void* pMemory, std::size_t)
        {
            const auto* pBytes = static_cast<const unsigned char*>(pMemory);
            while (pMemory == pRecord && amountOfZeros < sizeof(BF_KEY) && pBytes[amountOfZeros] == 0)
            {
                ++amountOfZeros;
            }
        });
    delete pKey;
    watchWhatIsGivenBack(nullptr);
    EXPECT_EQ(sizeof(BF_KEY), 1042U * 4U);
    EXPECT_EQ(amountOfZeros, sizeof(BF_KEY));
}

// The part that could be read is the file.
TEST_F(CryptoFaults, ReadErrorsCountAsTheEndOfTheFile)
{
    const std::string contents = scrambledBytes(1000, 1);
    for (const std::size_t amount : {std::size_t(0), std::size_t(300), std::size_t(999)})
    {
        const osFilePath part = _folder.write("part", contents.substr(0, amount));
        gtString expected;
        ASSERT_TRUE(crRSADigitalSigner(_privateKey).getSignature(part, expected));
        for (const bool isTested : {false, true})
        {
            tsFault readError{"read", {-EIO}};
            if (amount > 0)
            {
                readError._answers.insert(readError._answers.begin(), static_cast<long>(amount));
            }
            readError._isForGood = true;
            const tsSystemFault broken(readError);
            gtString signature("kept");
            crRSADigitalSigner signer(isTested ? _publicKey : _privateKey);
            if (isTested)
            {
                EXPECT_TRUE(signer.testSignature(_file, expected)) << amount;
            }
            else
            {
                EXPECT_TRUE(signer.getSignature(_file, signature)) << amount;
                EXPECT_EQ(signature, expected) << amount;
            }
            EXPECT_GT(broken.amountOfCalls(), amount == 0 ? 0 : 1) << amount;
        }
    }
    // A file that cannot be read from its start on.
    gtString signature;
    gtString expected;
    ASSERT_TRUE(crRSADigitalSigner(_privateKey).getSignature(_folder.write("empty", ""), expected));
    EXPECT_TRUE(crRSADigitalSigner(_privateKey).getSignature(osFilePath("/proc/self/mem"), signature));
    EXPECT_EQ(signature, expected);
}

TEST_F(CryptoFaults, SignersLeaveNothingOfTheFileBehind)
{
    const std::string contents = scrambledBytes(1000, 1);
    watchFor(contents.data() + 100, 16);
    gtString signature;
    ASSERT_TRUE(crRSADigitalSigner(_privateKey).getSignature(_file, signature));
    EXPECT_EQ(secretsGivenBack, 0);
    ASSERT_TRUE(crRSADigitalSigner(_publicKey).testSignature(_file, signature));
    EXPECT_EQ(secretsGivenBack, 0);
}

TEST_F(CryptoFaults, SignersLeaveNoDigestBehind)
{
    crRSADigitalSigner signer(_privateKey);
    ASSERT_TRUE(signer.createMessageDigestDigits());
    ASSERT_TRUE(signer.createFileMessageDigest(_file));
    // The fold of the file, which is what the digits hold: 28 bytes with a key of 512 bits.
    const std::string contents = scrambledBytes(1000, 1);
    std::string digest(28, '\0');
    for (std::size_t i = 0; i < contents.size(); ++i)
    {
        digest[i % 28] = static_cast<char>(digest[i % 28] ^ contents[i]);
    }
    // What follows the first digits, which the allocator may write over.
    watchFor(digest.data() + 16, 12);
    signer.deleteMessageDigestDigits();
    EXPECT_EQ(secretsGivenBack, 0);
    // So does the end of the signer.
    {
        crRSADigitalSigner other(_privateKey);
        ASSERT_TRUE(other.createMessageDigestDigits());
        ASSERT_TRUE(other.createFileMessageDigest(_file));
        secretsGivenBack = 0;
    }
    EXPECT_EQ(secretsGivenBack, 0);
}

// Whatever the operation, nothing is thrown but where the header says so.
TEST_F(CryptoFaults, SignersThrowNothingButForTheirText)
{
    crRSADigitalSigner signer(_privateKey);
    ASSERT_TRUE(signer.createMessageDigestDigits());
    std::vector<bool> results;
    EXPECT_NO_THROW(failEachAllocation([&](const OneFailingAllocation&)
                                       { results.push_back(signer.createFileMessageDigest(_file)); }));
    // The signer's own memory, then the file's, which does without.
    EXPECT_EQ(results, (std::vector<bool>{false, true, true}));
    gtString text;
    const unsigned long long before = amountOfAllocations();
    signer.messageDigestToString(text);
    if (amountOfAllocations() == before)
    {
        GTEST_SKIP() << "this C++ library keeps so short a text without memory of its own";
    }
    // Without memory of its own, which some C++ libraries use again.
    gtString output("left over");
    bool hasThrown = false;
    {
        const OneFailingAllocation failure(0);
        try
        {
            signer.messageDigestToString(output);
        }
        catch (const std::bad_alloc&)
        {
            hasThrown = true;
        }
    }
    EXPECT_TRUE(hasThrown);
    EXPECT_TRUE(output.isEmpty());
}

// In a process of its own, since the first array is lost, which is what is tested.
TEST_F(CryptoFaults, SecondDigestLeavesTheFirst)
{
    EXPECT_EXIT(
        {
            crRSADigitalSigner signer(_privateKey);
            const bool isFirst = signer.createMessageDigestDigits();
            const long live = amountOfLiveAllocations();
            const bool isSecond = signer.createMessageDigestDigits();
            const bool isLeft = amountOfLiveAllocations() == live + 1;
            std::_Exit((isFirst && isSecond && isLeft) ? 7 : 8);
        },
        testing::ExitedWithCode(7), "");
}

TEST_F(CryptoFaults, DigitsGrowIntoRoomThatIsThere)
{
    unsigned int digits[100];
    for (unsigned int i = 0; i < 100; ++i)
    {
        digits[i] = 0x01234567U + i * 0x01010101U;
    }
    gtString text("a text that has memory of its own");
    const gtString before(text);
    bool hasThrown = false;
    {
        const OneFailingAllocation failure(0);
        try
        {
            crAppendDigits(text, digits, 100);
        }
        catch (const std::bad_alloc&)
        {
            hasThrown = true;
        }
    }
    EXPECT_TRUE(hasThrown);
    EXPECT_EQ(text, before);
    watchFor("0123456702244668", 16);
    crAppendDigits(text, digits, 100);
    EXPECT_EQ(secretsGivenBack, 0);
    EXPECT_EQ(text.length(), before.length() + 800);
}

TEST_F(CryptoFaults, DigitsAreWipedDownToTheLastOne)
{
    for (const int amount : {1, 2, 5})
    {
        const long live = amountOfLiveAllocations();
        unsigned int* pDigits = crAllocateDigits(amount);
        ASSERT_NE(pDigits, nullptr);
        for (int i = 0; i < amount; ++i)
        {
            pDigits[i] = 0xA55A1234U;
        }
        watchFor(pDigits, 4);
        crReleaseDigits(pDigits, amount);
        EXPECT_EQ(secretsGivenBack, 0) << amount;
        EXPECT_EQ(amountOfLiveAllocations(), live);
        {
            crTemporaryDigits digits(amount);
            ASSERT_NE(digits.digits(), nullptr);
            EXPECT_EQ(amountOfLiveAllocations(), live + 1);
        }
        EXPECT_EQ(amountOfLiveAllocations(), live);
    }
}
