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

TEST(Numbers, AreWholeParts)
{
    EXPECT_EQ(daysOf(47), 1);
    EXPECT_EQ(daysOf(48), 2);
    EXPECT_EQ(hoursOf(119), 1);
    EXPECT_EQ(hoursOf(120), 2);
}

TEST(Numbers, AreAfternoons)
{
    EXPECT_FALSE(isAfternoon(12));
    EXPECT_TRUE(isAfternoon(13));
}

// What reads one number too many shows only to the address sanitizer.
TEST(Numbers, AreFound)
{
    const std::vector<int> numbers = {2, 3, 5, 7};
    EXPECT_TRUE(contains(numbers.data(), 4, 2));
    EXPECT_TRUE(contains(numbers.data(), 4, 7));
    EXPECT_FALSE(contains(numbers.data(), 4, 123456789));
}
