// SPDX-License-Identifier: Apache-2.0
// The judge of long runs, by runs that are made up.
#include "skJudgement.h"

#include <gtest/gtest.h>

#include <random>

namespace
{
constexpr double megabyte = 1024 * 1024;

// Of one run in which the resource goes as the function says, over 10,000 operations.
template <class Course>
bool isGrown(skResource resource, Course course)
{
    std::vector<skMoment> moments;
    for (int operations = 0; operations <= 10000; operations += 50)
    {
        skMoment moment;
        moment._operations = operations;
        moment._sample.at(static_cast<std::size_t>(resource)) = course(operations);
        moments.push_back(moment);
    }
    const std::vector<skFinding> findings = skJudge(moments);
    EXPECT_EQ(findings.size(), skAmountOfResources);
    for (const skFinding& finding : findings)
    {
        EXPECT_TRUE(finding._resource == resource || !finding._isGrown) << skNameOf(finding._resource);
    }
    return findings.at(static_cast<std::size_t>(resource))._isGrown;
}
}  // namespace

TEST(Judgement, TheLineGoesThroughMostOfThePoints)
{
    EXPECT_EQ(skSlope({}, {}), 0);
    EXPECT_EQ(skSlope({1}, {5}), 0);
    EXPECT_EQ(skSlope({1, 1}, {5, 6}), 0);
    EXPECT_EQ(skSlope({0, 1, 2, 3, 4}, {10, 12, 14, 16, 18}), 2);
    EXPECT_EQ(skSlope({0, 1, 2, 3, 4}, {10, 12, 1000, 16, 18}), 2);
}

TEST(Judgement, FindsASmallLeak)
{
    // 200 bytes an operation, under the noise of a heap.
    std::mt19937 random(1);
    std::uniform_real_distribution<double> noise(0, 50000);
    for (const skResource memory : {skResource::Heap, skResource::Memory, skResource::Server})
    {
        EXPECT_TRUE(isGrown(memory, [&](int operations) { return 5 * megabyte + operations * 200.0 + noise(random); }));
        EXPECT_FALSE(isGrown(memory, [&](int operations) { return 5 * megabyte + operations * 20.0 + noise(random); }));
        EXPECT_FALSE(isGrown(memory, [&](int) { return 5 * megabyte + noise(random); }));
        EXPECT_FALSE(isGrown(memory, [&](int operations) { return 5 * megabyte - operations * 100.0; }));
    }
}

TEST(Judgement, ABufferThatIsEnlargedOnceIsNoLeak)
{
    EXPECT_FALSE(isGrown(skResource::Heap, [](int operations) { return (operations < 3000 ? 5 : 8) * megabyte; }));
    EXPECT_FALSE(isGrown(skResource::Memory, [](int operations) { return (operations == 5000 ? 80 : 8) * megabyte; }));
}

TEST(Judgement, OneHandleThatIsLostIsOneTooMany)
{
    for (const skResource handles : {skResource::Descriptors, skResource::Threads, skResource::Children,
                                     skResource::Windows, skResource::XWindows})
    {
        EXPECT_TRUE(isGrown(handles, [](int operations) { return operations < 9000 ? 10 : 11; }));
        EXPECT_FALSE(isGrown(handles, [](int) { return 10; }));
        EXPECT_FALSE(isGrown(handles, [](int operations) { return operations == 5000 ? 12 : 10; }));
        EXPECT_FALSE(isGrown(handles, [](int operations) { return operations < 9000 ? 10 : 9; }));
    }
}

TEST(Judgement, ShowsWhatItFound)
{
    std::vector<skFinding> findings(2);
    findings[0] = {skResource::Heap, megabyte, 2 * megabyte, 100.0 * 1024, skMostGrowth, true};
    findings[1] = {skResource::Descriptors, 9, 9, 0, 0, false};
    const std::string table = skTableOf(findings);
    EXPECT_NE(table.find("HAS GROWN"), std::string::npos) << table;
    EXPECT_EQ(table.find("LOST"), std::string::npos) << table;
    EXPECT_NE(table.find("2048 KiB"), std::string::npos) << table;
}
