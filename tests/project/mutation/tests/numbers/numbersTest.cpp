#include "numbers/numbers.h"

#include <vector>

#include <gtest/gtest.h>

TEST(Numbers, HaveDivisors)
{
    EXPECT_EQ(greatestCommonDivisor(12, 18), 6);
    EXPECT_EQ(greatestCommonDivisor(18, 12), 6);
    EXPECT_EQ(greatestCommonDivisor(7, 0), 7);
}

// Neither 12 nor 13 is asked for: what is changed there survives.
TEST(Numbers, AreHours)
{
    EXPECT_TRUE(isMorning(11));
    EXPECT_FALSE(isMorning(14));
}

// What reads one number too many shows only to the address sanitizer.
TEST(Numbers, AreFound)
{
    const std::vector<int> numbers = {2, 3, 5, 7};
    EXPECT_TRUE(contains(numbers.data(), 4, 2));
    EXPECT_TRUE(contains(numbers.data(), 4, 7));
    EXPECT_FALSE(contains(numbers.data(), 4, 123456789));
}
