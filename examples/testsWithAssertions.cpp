// SPDX-License-Identifier: Apache-2.0
// Two tests, of which one fails although it expects nothing: the code that it calls fails an assertion.
#include <gtest/gtest.h>

#include "assertionListener.h"
#include "platform/baseTools/gtAssert.h"

namespace
{

int half(int number)
{
    GT_ASSERT_EX(number % 2 == 0, "half of an odd number");
    return number / 2;
}

}  // namespace

TEST(Half, OfAnEvenNumber)
{
    EXPECT_EQ(half(4), 2);
}

TEST(Half, OfAnOddNumber)
{
    EXPECT_EQ(half(5), 2);
}

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new AssertionListener);
    return RUN_ALL_TESTS();
}
