// SPDX-License-Identifier: Apache-2.0
#include "assertionReporting/arAssertionReport.h"
#include "assertionReporting/arAssertionReportText.h"

#include <gmock/gmock.h>

#include <ctime>
#include <thread>

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

const unsigned int mainThread = 7;

std::string reportedAs(const std::string& text)
{
    arAssertionReport report;
    report.record("f", "a.cpp", 1, text.c_str(), mainThread, 0);
    return report.rows().at(0)._message.asStdString();
}
}  // namespace

TEST(AssertionReport, IsEmptyAtFirst)
{
    arAssertionReport report;
    EXPECT_THAT(report.rows(), IsEmpty());
    EXPECT_EQ(report.amountOfFailures(), 0U);
    report.decide("a.cpp", 1, arAssertionDecision::Open);
    EXPECT_THAT(report.rows(), IsEmpty());
}

TEST(AssertionReport, HasARowForEachPlace)
{
    arAssertionReport report;
    report.record("f", "/b.cpp", 2, "first", 5, 100);
    report.record("f", "/b.cpp", 3, "another line", 5, 101);
    report.record("f", "/a/b.cpp", 2, "another file", 5, 102);
    report.record("g", "/b.cpp", 2, "second", 5, 90);
    const std::vector<arAssertionRow> rows = report.rows();
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0]._file, "/b.cpp");
    EXPECT_EQ(rows[0]._line, 2);
    EXPECT_EQ(rows[0]._count, 2U);
    EXPECT_EQ(rows[0]._firstSeconds, 100);
    EXPECT_EQ(rows[0]._lastSeconds, 90);  // as it came: clocks are set back
    EXPECT_EQ(rows[0]._function, "g");
    EXPECT_EQ(rows[0]._message, "second");
    EXPECT_EQ(rows[0]._threadId, 5U);
    EXPECT_FALSE(rows[0]._isOfSeveralThreads);
    EXPECT_EQ(rows[0]._decision, arAssertionDecision::None);
    EXPECT_EQ(rows[1]._line, 3);
    EXPECT_EQ(rows[1]._count, 1U);
    EXPECT_EQ(rows[2]._file, "/a/b.cpp");
    EXPECT_EQ(report.amountOfFailures(), 4U);
    EXPECT_EQ(report.amountWithoutRow(), 0U);
}

TEST(AssertionReport, KeepsTheLastDecision)
{
    arAssertionReport report;
    report.record("f", "a.cpp", 1, "m", 5, 0);
    report.record("f", "a.cpp", 2, "m", 5, 0);
    report.decide("a.cpp", 2, arAssertionDecision::Ignore);
    report.decide("a.cpp", 2, arAssertionDecision::IgnoreAll);
    report.decide("b.cpp", 2, arAssertionDecision::Exit);
    report.record("f", "a.cpp", 2, "m", 5, 0);
    EXPECT_EQ(report.rows()[0]._decision, arAssertionDecision::None);
    EXPECT_EQ(report.rows()[1]._decision, arAssertionDecision::IgnoreAll);
}

TEST(AssertionReport, TellsOfSeveralThreads)
{
    arAssertionReport report;
    report.record("f", "a.cpp", 1, "m", 5, 0);
    report.record("f", "a.cpp", 1, "m", 6, 0);
    report.record("f", "a.cpp", 1, "m", 6, 0);
    EXPECT_TRUE(report.rows()[0]._isOfSeveralThreads);
    EXPECT_EQ(report.rows()[0]._threadId, 6U);
}

TEST(AssertionReport, TakesNullForEmpty)
{
    arAssertionReport report;
    report.record(nullptr, nullptr, -3, nullptr, 5, 0);
    report.record("", "", -3, "", 5, 0);
    report.decide(nullptr, -3, arAssertionDecision::Closed);
    ASSERT_EQ(report.rows().size(), 1U);
    EXPECT_EQ(report.rows()[0]._count, 2U);
    EXPECT_EQ(report.rows()[0]._decision, arAssertionDecision::Closed);
}

TEST(AssertionReport, CutsLongTextsBetweenCharacters)
{
    const std::size_t most = arAssertionReport::mostTextBytes;
    EXPECT_EQ(reportedAs(std::string(most, 'x')), std::string(most, 'x'));
    EXPECT_EQ(reportedAs(std::string(most + 1, 'x')), std::string(most, 'x'));
    // The character of four bytes begins before the cut and ends behind it.
    for (std::size_t before = most - 3; before < most; ++before)
    {
        EXPECT_EQ(reportedAs(std::string(before, 'x') + "\xf0\x9f\x94\x91\x79"), std::string(before, 'x')) << before;
    }
    EXPECT_EQ(reportedAs(std::string(most - 4, 'x') + "\xf0\x9f\x94\x91\x79"),
              std::string(most - 4, 'x') + "\xf0\x9f\x94\x91");
    // No text at all: something stays all the same.
    EXPECT_EQ(reportedAs(std::string(most + 9, '\x80')).size(), most - 3);
}

TEST(AssertionReport, CountsWhatHasNoRow)
{
    arAssertionReport report;
    const int most = static_cast<int>(arAssertionReport::mostRows);
    for (int line = 0; line < most + 3; ++line)
    {
        report.record("f", "a.cpp", line, "m", 5, line);
    }
    report.record("f", "a.cpp", 0, "m", 5, 0);
    EXPECT_EQ(report.rows().size(), arAssertionReport::mostRows);
    EXPECT_EQ(report.rows().back()._line, most - 1);
    EXPECT_EQ(report.rows().front()._count, 2U);
    EXPECT_EQ(report.amountWithoutRow(), 3U);
    EXPECT_EQ(report.amountOfFailures(), arAssertionReport::mostRows + 4);
}

TEST(AssertionReport, TellsOnceAReading)
{
    arAssertionReport report;
    int told = 0;
    report.record("f", "a.cpp", 1, "m", 5, 0);
    report.setListener([&] { ++told; });
    EXPECT_EQ(told, 0);
    report.record("f", "a.cpp", 1, "m", 5, 0);
    report.record("f", "a.cpp", 2, "m", 5, 0);
    EXPECT_EQ(told, 1);
    report.rows();
    EXPECT_EQ(told, 1);
    report.decide("a.cpp", 1, arAssertionDecision::Ignore);
    report.decide("a.cpp", 1, arAssertionDecision::Ignore);
    EXPECT_EQ(told, 2);
    report.rows();
    report.setListener(nullptr);
    report.record("f", "a.cpp", 1, "m", 5, 0);
    EXPECT_EQ(told, 2);
}

TEST(AssertionReport, IsFedByManyThreadsAtATime)
{
    arAssertionReport report;
    int told = 0;
    report.setListener([&] { ++told; });
    std::vector<std::thread> threads;
    const int amount = 4;
    const int each = 2000;
    for (int number = 0; number < amount; ++number)
    {
        threads.emplace_back(
            [&report, number]
            {
                for (int i = 0; i < each; ++i)
                {
                    report.record("f", "a.cpp", i % 10, "m", static_cast<unsigned int>(number), i);
                    report.decide("a.cpp", i % 10, arAssertionDecision::Ignore);
                    if (i % 100 == 0)
                    {
                        report.rows();
                    }
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    std::uint64_t count = 0;
    for (const arAssertionRow& row : report.rows())
    {
        count += row._count;
    }
    EXPECT_EQ(count, static_cast<std::uint64_t>(amount * each));
    EXPECT_EQ(report.amountOfFailures(), count);
    EXPECT_GE(told, 1);
}

TEST(AssertionReportText, HasALineForEachRow)
{
    const char* pZone = std::getenv("TZ");
    const std::string zone = pZone == nullptr ? "" : pZone;
    setenv("TZ", "UTC-2", 1);
    tzset();
    arAssertionReport report;
    report.record("main", "/a.cpp", 12, "x\n\t\x7f!", mainThread, 0);
    report.record("main", "/a.cpp", 12, "x\n\t\x7f!", mainThread, 86399);
    report.decide("/a.cpp", 12, arAssertionDecision::IgnoreAll);
    report.record("g", "/b\tc\xff.cpp", -1, "\xc3\xa9", mainThread, 0);
    report.record("g", "/b\tc\xff.cpp", -1, "\xc3\xa9", 9, 0);
    EXPECT_THAT(
        arAssertionReportLines(report.rows(), mainThread),
        ElementsAre("File\tLine\tCount\tFirst\tLast\tThread\tDecision\tFunction\tReason\tStack",
                    "/a.cpp\t12\t2\t1970-01-01 02:00:00\t1970-01-02 01:59:59\tmain (7)\tignore all\tmain\tx   !\t",
                    "/b c\xff.cpp\t-1\t2\t1970-01-01 02:00:00\t1970-01-01 02:00:00\t9, others\tnone\tg\t\xc3\xa9\t"));
    EXPECT_EQ(arAssertionReportLines({}, mainThread).size(), 1U);
    if (pZone == nullptr)
    {
        unsetenv("TZ");
    }
    else
    {
        setenv("TZ", zone.c_str(), 1);
    }
    tzset();
}

TEST(AssertionReportText, HasAWordForEachDecision)
{
    EXPECT_STREQ(arDecisionWord(arAssertionDecision::None), "none");
    EXPECT_STREQ(arDecisionWord(arAssertionDecision::Closed), "closed");
    EXPECT_STREQ(arDecisionWord(arAssertionDecision::Ignore), "ignore");
    EXPECT_STREQ(arDecisionWord(arAssertionDecision::IgnoreAll), "ignore all");
    EXPECT_STREQ(arDecisionWord(arAssertionDecision::Open), "open");
    EXPECT_STREQ(arDecisionWord(arAssertionDecision::Debug), "debug");
    EXPECT_STREQ(arDecisionWord(arAssertionDecision::Exit), "exit");
}
