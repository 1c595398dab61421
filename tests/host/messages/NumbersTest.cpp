// SPDX-License-Identifier: Apache-2.0
#include "host/messages/hoNumbers.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>

TEST(SizeText, HasThreeFigures)
{
    EXPECT_EQ(hoSizeText(0), "0 bytes");
    EXPECT_EQ(hoSizeText(1), "1 byte");
    EXPECT_EQ(hoSizeText(999), "999 bytes");
    EXPECT_EQ(hoSizeText(1000), "1.00 kB");
    EXPECT_EQ(hoSizeText(1234), "1.23 kB");
    EXPECT_EQ(hoSizeText(9994), "9.99 kB");
    EXPECT_EQ(hoSizeText(9996), "10.0 kB");
    EXPECT_EQ(hoSizeText(99960), "100 kB");
    EXPECT_EQ(hoSizeText(999499), "999 kB");
    EXPECT_EQ(hoSizeText(999500), "1.00 MB");
    EXPECT_EQ(hoSizeText(123456789012), "123 GB");
    EXPECT_EQ(hoSizeText(std::numeric_limits<std::uint64_t>::max()), "18.4 EB");
}

TEST(SizeText, GroupsItsDigits)
{
    EXPECT_EQ(hoExactSizeText(1), "1 byte");
    EXPECT_EQ(hoExactSizeText(999), "999 bytes");
    EXPECT_EQ(hoExactSizeText(1000), "1,000 bytes");
    EXPECT_EQ(hoExactSizeText(12345678), "12,345,678 bytes");
}

TEST(Numbers, CountThings)
{
    EXPECT_EQ(hoAmountText(0, "file", "files"), "0 files");
    EXPECT_EQ(hoAmountText(1, "file", "files"), "1 file");
    EXPECT_EQ(hoAmountText(2000, "file", "files"), "2,000 files");
}
