// SPDX-License-Identifier: Apache-2.0
#include "platform/baseTools/gtStartsWith.h"

#include <gtest/gtest.h>

TEST(StartsWith, IsTrueOfTheEmptyTextAndOfTheWhole)
{
    EXPECT_TRUE(gtStartsWith("", ""));
    EXPECT_TRUE(gtStartsWith("ab", ""));
    EXPECT_TRUE(gtStartsWith("ab", "ab"));
    EXPECT_FALSE(gtStartsWith("ab", "b"));
    EXPECT_FALSE(gtStartsWith("ab", "abc"));
    EXPECT_TRUE(gtEndsWith("", ""));
    EXPECT_TRUE(gtEndsWith("ab", "b"));
    EXPECT_TRUE(gtEndsWith("ab", "ab"));
    EXPECT_FALSE(gtEndsWith("ab", "a"));
    EXPECT_FALSE(gtEndsWith("b", "ab"));
}
