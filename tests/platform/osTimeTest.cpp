// SPDX-License-Identifier: Apache-2.0
#include "platform/osWrappers/osTime.h"

#include <atomic>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/failingAllocation.h"

namespace
{
// Sets the process's time zone and puts the old one back.
class TimeZoneSet
{
public:
    explicit TimeZoneSet(const char* pTimeZone)
    {
        const char* const pBefore = std::getenv("TZ");
        _had = pBefore != nullptr;
        _before = _had ? pBefore : "";
        ::setenv("TZ", pTimeZone, 1);
        ::tzset();
    }
    TimeZoneSet(const TimeZoneSet&) = delete;
    TimeZoneSet& operator=(const TimeZoneSet&) = delete;
    ~TimeZoneSet()
    {
        if (_had)
        {
            ::setenv("TZ", _before.c_str(), 1);
        }
        else
        {
            ::unsetenv("TZ");
        }
        ::tzset();
    }

private:
    bool _had = false;
    std::string _before;
};

std::string textOf(long long seconds, osTime::TimeFormat format, osTime::TimeZone zone)
{
    gtString text("what was there before");
    osTime(seconds).timeAsString(text, format, zone);
    return std::string(text.asCharArray(), static_cast<std::size_t>(text.length()));
}

TEST(osTime, EnumeratorsHaveTheirValues)
{
    EXPECT_EQ(static_cast<int>(osTime::DATE_AND_TIME), 0);
    EXPECT_EQ(static_cast<int>(osTime::FOR_FILE_NAME), 3);
    EXPECT_EQ(static_cast<int>(osTime::UTC), 0);
    EXPECT_EQ(static_cast<int>(osTime::LOCAL), 1);
}

TEST(osTime, StartsAtTheBeginningOf1970)
{
    gtString text;
    osTime().timeAsString(text, osTime::DATE_AND_TIME, osTime::UTC);
    EXPECT_STREQ(text.asCharArray(), "1970-01-01 00:00:00");
    EXPECT_EQ(osTime().secondsSince1970(), 0);
}

TEST(osTime, KnownMoments)
{
    const struct
    {
        long long seconds;
        const char* pText;
    } moments[] = {
        {1, "1970-01-01 00:00:01"},
        {-1, "1969-12-31 23:59:59"},
        {951782400, "2000-02-29 00:00:00"},
        {951868799, "2000-02-29 23:59:59"},
        {1234567890, "2009-02-13 23:31:30"},
        {1700000000, "2023-11-14 22:13:20"},
        {2147483647, "2038-01-19 03:14:07"},
        {2147483648, "2038-01-19 03:14:08"},
        {4294967296, "2106-02-07 06:28:16"},
        {253402300799, "9999-12-31 23:59:59"},
        {-62167219200, "0000-01-01 00:00:00"},
    };
    for (const auto& moment : moments)
    {
        EXPECT_EQ(textOf(moment.seconds, osTime::DATE_AND_TIME, osTime::UTC), moment.pText);
        EXPECT_EQ(osTime(moment.seconds).secondsSince1970(), moment.seconds);
    }
}

TEST(osTime, Formats)
{
    EXPECT_EQ(textOf(1700000000, osTime::DATE_ONLY, osTime::UTC), "2023-11-14");
    EXPECT_EQ(textOf(1700000000, osTime::TIME_ONLY, osTime::UTC), "22:13:20");
    EXPECT_EQ(textOf(1700000000, osTime::FOR_FILE_NAME, osTime::UTC), "2023-11-14_22-13-20");
    EXPECT_EQ(textOf(981173106, osTime::DATE_ONLY, osTime::UTC), "2001-02-03");
    EXPECT_EQ(textOf(981173106, osTime::TIME_ONLY, osTime::UTC), "04:05:06");
    EXPECT_EQ(textOf(981173106, osTime::FOR_FILE_NAME, osTime::UTC), "2001-02-03_04-05-06");
}

TEST(osTime, EveryFormatIsInTheZone)
{
    // Half an hour, so that all but the seconds differ; the day does, too.
    const TimeZoneSet timeZone("AAA-5:30");
    EXPECT_EQ(textOf(1700000000, osTime::DATE_AND_TIME, osTime::LOCAL), "2023-11-15 03:43:20");
    EXPECT_EQ(textOf(1700000000, osTime::DATE_ONLY, osTime::LOCAL), "2023-11-15");
    EXPECT_EQ(textOf(1700000000, osTime::TIME_ONLY, osTime::LOCAL), "03:43:20");
    EXPECT_EQ(textOf(1700000000, osTime::FOR_FILE_NAME, osTime::LOCAL), "2023-11-15_03-43-20");
    EXPECT_EQ(textOf(1700000000, osTime::DATE_ONLY, osTime::UTC), "2023-11-14");
    EXPECT_EQ(textOf(1700000000, osTime::TIME_ONLY, osTime::UTC), "22:13:20");
    EXPECT_EQ(textOf(1700000000, osTime::FOR_FILE_NAME, osTime::UTC), "2023-11-14_22-13-20");
    EXPECT_EQ(textOf(1700000000, static_cast<osTime::TimeFormat>(99), osTime::LOCAL), "2023-11-15 03:43:20");
}

// Four digits, more where they are needed, and a minus before the year 0.
TEST(osTime, YearsHaveFourDigits)
{
    const TimeZoneSet timeZone("UTC0");
    const struct
    {
        long long seconds;
        std::string date;
    } years[] = {
        {-30641760000, "0999-01-01"},   {-59011459200, "0100-01-01"},      {-62135596800, "0001-01-01"},
        {-62135683200, "0000-12-31"},   {-62167305600, "-0001-12-31"},     {-62198755200, "-0001-01-01"},
        {-93724214400, "-1001-12-31"},  {-377705203200, "-10000-12-31"},   {253402300800, "10000-01-01"},
        {-377705116800, "-9999-01-01"}, {-3217862419200, "-100000-01-01"},
    };
    for (const auto& year : years)
    {
        for (const osTime::TimeZone zone : {osTime::UTC, osTime::LOCAL})
        {
            EXPECT_EQ(textOf(year.seconds, osTime::DATE_ONLY, zone), year.date);
            EXPECT_EQ(textOf(year.seconds, osTime::DATE_AND_TIME, zone), year.date + " 00:00:00");
            EXPECT_EQ(textOf(year.seconds + 86399, osTime::FOR_FILE_NAME, zone), year.date + "_23-59-59");
        }
    }
}

TEST(osTime, UnknownFormatsAndZonesCountAsTheFirst)
{
    const TimeZoneSet timeZone("AAA-5:30");
    EXPECT_EQ(textOf(0, static_cast<osTime::TimeFormat>(99), osTime::UTC), "1970-01-01 00:00:00");
    EXPECT_EQ(textOf(0, osTime::DATE_AND_TIME, static_cast<osTime::TimeZone>(99)), "1970-01-01 00:00:00");
}

TEST(osTime, LocalTimeFollowsTheTimeZone)
{
    {
        const TimeZoneSet timeZone("AAA-5:30");
        EXPECT_EQ(textOf(1700000000, osTime::DATE_AND_TIME, osTime::LOCAL), "2023-11-15 03:43:20");
        EXPECT_EQ(textOf(1700000000, osTime::DATE_AND_TIME, osTime::UTC), "2023-11-14 22:13:20");
    }
    {
        const TimeZoneSet timeZone("BBB+8");
        EXPECT_EQ(textOf(1700000000, osTime::DATE_AND_TIME, osTime::LOCAL), "2023-11-14 14:13:20");
    }
    {
        // Central Europe: an hour ahead, two in summer.
        const TimeZoneSet timeZone("CET-1CEST,M3.5.0,M10.5.0/3");
        EXPECT_EQ(textOf(1700000000, osTime::DATE_AND_TIME, osTime::LOCAL), "2023-11-14 23:13:20");
        EXPECT_EQ(textOf(1688212800, osTime::DATE_AND_TIME, osTime::LOCAL), "2023-07-01 14:00:00");
    }
}

TEST(osTime, MomentsBeyondTheCalendarAreEmpty)
{
    EXPECT_EQ(textOf(LLONG_MAX, osTime::DATE_AND_TIME, osTime::UTC), "");
    EXPECT_EQ(textOf(LLONG_MIN, osTime::DATE_AND_TIME, osTime::UTC), "");
    EXPECT_EQ(textOf(LLONG_MAX, osTime::DATE_AND_TIME, osTime::LOCAL), "");
    EXPECT_EQ(textOf(253402300800, osTime::DATE_AND_TIME, osTime::UTC), "10000-01-01 00:00:00");
    // The last year whose number the system's record can hold is above what an int can.
    EXPECT_EQ(textOf(67768036191676799, osTime::DATE_ONLY, osTime::UTC), "2147485547-12-31");
}

TEST(osTime, CurrentTimeIsTheSystems)
{
    const std::time_t before = std::time(nullptr);
    osTime now;
    EXPECT_EQ(&now.setFromCurrentTime(), &now);
    const std::time_t after = std::time(nullptr);
    EXPECT_LE(before, now.secondsSince1970());
    EXPECT_LE(now.secondsSince1970(), after);

    gtString text;
    now.timeAsString(text, osTime::DATE_AND_TIME, osTime::LOCAL);
    const std::time_t seconds = static_cast<std::time_t>(now.secondsSince1970());
    std::tm parts = {};
    ASSERT_NE(::localtime_r(&seconds, &parts), nullptr);
    char expected[64];
    ASSERT_GT(std::strftime(expected, sizeof expected, "%Y-%m-%d %H:%M:%S", &parts), 0U);
    EXPECT_STREQ(text.asCharArray(), expected);
}

TEST(osTime, AgreesWithTheSystemOverTheYears)
{
    const TimeZoneSet timeZone("CET-1CEST,M3.5.0,M10.5.0/3");
    for (std::time_t seconds = -5000000000; seconds < 20000000000; seconds += 7654321)
    {
        std::tm parts = {};
        char expected[64];
        ASSERT_NE(::localtime_r(&seconds, &parts), nullptr);
        ASSERT_EQ(std::strftime(expected, sizeof expected, "%Y-%m-%d %H:%M:%S", &parts), 19U);
        ASSERT_EQ(textOf(seconds, osTime::DATE_AND_TIME, osTime::LOCAL), expected);
        ASSERT_NE(::gmtime_r(&seconds, &parts), nullptr);
        ASSERT_EQ(std::strftime(expected, sizeof expected, "%Y-%m-%d_%H-%M-%S", &parts), 19U);
        ASSERT_EQ(textOf(seconds, osTime::FOR_FILE_NAME, osTime::UTC), expected);
    }
}

TEST(osTime, SeveralThreadsDoNotMixTheirMoments)
{
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            [i, &wrong]()
            {
                const long long moment = 1000000000LL + i * 98765432LL;
                const osTime::TimeZone zone = i % 2 == 0 ? osTime::LOCAL : osTime::UTC;
                const std::string expected = textOf(moment, osTime::DATE_AND_TIME, zone);
                for (int round = 0; round < 5000; ++round)
                {
                    wrong += (textOf(moment, osTime::DATE_AND_TIME, zone) == expected) ? 0 : 1;
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

TEST(osTime, LeavesTheTextAloneWithoutMemory)
{
    gtString text("kept");
    const osTime moment(1700000000);
    gtString other;
    const unsigned long long before = amountOfAllocations();
    moment.timeAsString(other, osTime::DATE_AND_TIME, osTime::UTC);
    if (amountOfAllocations() == before)
    {
        GTEST_SKIP() << "this C++ library keeps so short a text without memory of its own";
    }
    bool hasFailed = false;
    {
        const FailingAllocation failing(0);
        try
        {
            moment.timeAsString(text, osTime::DATE_AND_TIME, osTime::UTC);
        }
        catch (const std::bad_alloc&)
        {
            hasFailed = true;
        }
    }
    EXPECT_TRUE(hasFailed);
    EXPECT_STREQ(text.asCharArray(), "kept");
}
}  // namespace
