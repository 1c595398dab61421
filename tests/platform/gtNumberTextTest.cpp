// SPDX-License-Identifier: Apache-2.0
#include "platform/baseTools/gtNumberText.h"

#include <gtest/gtest.h>

#include <limits>

TEST(gtNumberTextTest, GroupsDigitsByThree)
{
    EXPECT_EQ(gtNumberText(0), gtString("0"));
    EXPECT_EQ(gtNumberText(7), gtString("7"));
    EXPECT_EQ(gtNumberText(999), gtString("999"));
    EXPECT_EQ(gtNumberText(1000), gtString("1,000"));
    EXPECT_EQ(gtNumberText(99999), gtString("99,999"));
    EXPECT_EQ(gtNumberText(100000), gtString("100,000"));
    EXPECT_EQ(gtNumberText(1000000), gtString("1,000,000"));
    EXPECT_EQ(gtNumberText(std::numeric_limits<std::uint64_t>::max()), gtString("18,446,744,073,709,551,615"));
}
