// SPDX-License-Identifier: Apache-2.0
// The cipher is marked as deprecated in libcrypto 3; here it is wanted.
#define OPENSSL_SUPPRESS_DEPRECATED

#include "crypto/crBlowfishEncryptionKey.h"

#include <cstring>
#include <type_traits>

#include <gtest/gtest.h>
#include <openssl/blowfish.h>

static_assert(!std::is_copy_constructible_v<crBlowfishEncryptionKey>);
static_assert(!std::is_copy_assignable_v<crBlowfishEncryptionKey>);
static_assert(!std::is_move_constructible_v<crBlowfishEncryptionKey>);
static_assert(!std::is_move_assignable_v<crBlowfishEncryptionKey>);
static_assert(!std::is_polymorphic_v<crBlowfishEncryptionKey>);

namespace
{

// Two keys of the cipher's published vectors.
const unsigned char firstKey[16] = {0xF0, 0xE1, 0xD2, 0xC3, 0xB4, 0xA5, 0x96, 0x87,
                                    0x78, 0x69, 0x5A, 0x4B, 0x3C, 0x2D, 0x1E, 0x0F};
const unsigned char secondKey[16] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF,
                                     0xF0, 0xE1, 0xD2, 0xC3, 0xB4, 0xA5, 0x96, 0x87};

bool haveEqualRecords(const crBlowfishEncryptionKey& first, const crBlowfishEncryptionKey& second)
{
    return std::memcmp(first.keyRecord(), second.keyRecord(), sizeof(BF_KEY)) == 0;
}

}  // namespace

TEST(BlowfishKey, HoldsTheRecordOfLibcrypto)
{
    unsigned char bytes[16];
    for (unsigned int round = 0; round < 50; ++round)
    {
        for (unsigned int i = 0; i < 16; ++i)
        {
            bytes[i] = static_cast<unsigned char>(round * 37U + i * i * 11U);
        }
        const crBlowfishEncryptionKey key(bytes);
        ASSERT_NE(key.keyRecord(), nullptr);
        BF_KEY expected;
        BF_set_key(&expected, 16, bytes);
        EXPECT_EQ(std::memcmp(key.keyRecord(), &expected, sizeof(expected)), 0);
    }
}

TEST(BlowfishKey, EncryptsThePublishedBlock)
{
    const crBlowfishEncryptionKey key(firstKey);
    BF_LONG block[2] = {0xFEDCBA98U, 0x76543210U};
    BF_encrypt(block, key.keyRecord());
    EXPECT_EQ(block[0], 0x93142887U);
    EXPECT_EQ(block[1], 0xEE3BE15CU);
    BF_decrypt(block, key.keyRecord());
    EXPECT_EQ(block[0], 0xFEDCBA98U);
    EXPECT_EQ(block[1], 0x76543210U);
}

TEST(BlowfishKey, EncryptsThePublishedChain)
{
    const crBlowfishEncryptionKey key(secondKey);
    const unsigned char plain[29] = "7654321 Now is the time for ";
    unsigned char start[8] = {0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10};
    const unsigned char expected[32] = {0x6B, 0x77, 0xB4, 0xD6, 0x30, 0x06, 0xDE, 0xE6, 0x05, 0xB1, 0x56,
                                        0xE2, 0x74, 0x03, 0x97, 0x93, 0x58, 0xDE, 0xB9, 0xE7, 0x15, 0x46,
                                        0x16, 0xD9, 0x59, 0xF1, 0x65, 0x2B, 0xD5, 0xFF, 0x92, 0xCC};
    unsigned char cipher[32];
    BF_cbc_encrypt(plain, cipher, sizeof(plain), key.keyRecord(), start, BF_ENCRYPT);
    EXPECT_EQ(std::memcmp(cipher, expected, sizeof(expected)), 0);
}

TEST(BlowfishKey, OfTheSameBytesIsTheSame)
{
    const crBlowfishEncryptionKey first(firstKey);
    const crBlowfishEncryptionKey second(firstKey);
    EXPECT_TRUE(haveEqualRecords(first, second));
}

TEST(BlowfishKey, ChangesWithEveryByte)
{
    const crBlowfishEncryptionKey original(firstKey);
    for (unsigned int i = 0; i < 16; ++i)
    {
        unsigned char bytes[16];
        std::memcpy(bytes, firstKey, sizeof(bytes));
        bytes[i] ^= 1;
        const crBlowfishEncryptionKey changed(bytes);
        EXPECT_NE(changed.keyRecord()->P[0], original.keyRecord()->P[0]) << i;
    }
}

TEST(BlowfishKey, OfZerosIsAKey)
{
    const unsigned char zeros[16] = {};
    const crBlowfishEncryptionKey key(zeros);
    // The first word of pi's fraction is where the schedule starts from.
    EXPECT_NE(key.keyRecord()->P[0], 0x243F6A88U);
    BF_KEY expected;
    BF_set_key(&expected, 16, zeros);
    EXPECT_EQ(std::memcmp(key.keyRecord(), &expected, sizeof(expected)), 0);
}

TEST(BlowfishKey, TakesSixteenBytesAndNoMore)
{
    unsigned char bytes[20];
    std::memset(bytes, 0xAA, sizeof(bytes));
    std::memcpy(bytes, secondKey, 16);
    const crBlowfishEncryptionKey first(bytes);
    bytes[16] = 0x55;
    const crBlowfishEncryptionKey second(bytes);
    EXPECT_TRUE(haveEqualRecords(first, second));
}
