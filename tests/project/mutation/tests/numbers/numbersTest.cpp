#include "numbers/numbers.h"
#include "numbers/ready.h"

#include <gtest/gtest.h>

TEST(Numbers, AreHours)
{
    EXPECT_TRUE(isMorning(11));
    EXPECT_FALSE(isMorning(12));
}

TEST(Numbers, AreDisposedOf)
{
    dispose(new int(3));
}

TEST(Numbers, AreSeasons)
{
    EXPECT_EQ(lastSeason(), Season::Summer);
}

TEST(Numbers, AreDifferent)
{
    EXPECT_EQ(differenceOf(5, 0), 5);
    EXPECT_TRUE(areDifferent(5, 3));
    EXPECT_TRUE(areDifferent(5, 4));
    EXPECT_FALSE(areDifferent(5, 5));
}

TEST(Numbers, AreCounted)
{
    int number = 0;
    addTwice(number);
    EXPECT_EQ(number, 2);
    addUnseen(number);
    clear(number);
    EXPECT_EQ(number, 0);
}

TEST(Numbers, AreReady)
{
    EXPECT_TRUE(isReady());
}
