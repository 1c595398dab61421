// SPDX-License-Identifier: Apache-2.0
// Where no dialog can be shown, the kit writes its line and the program goes on.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/tsProcess.h"

namespace
{

std::size_t occurrences(const std::string& text, const std::string& part)
{
    std::size_t amount = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    {
        ++amount;
    }
    return amount;
}

tsOutcome run(const char* pWay)
{
    tsOutcome outcome = tsRun({PROGRAM_OUTSIDE_WINDOWS, pWay});
    EXPECT_EQ(outcome._exitStatus, 0) << outcome._signal << outcome._errors;
    return outcome;
}

const char reportOfThree[] = "2 times, last Assertion failure (1 + 1 == 3): on a thread\n"
                             "1 times, last Assertion failure (1 + 1 == 3): of the toolkit\n"
                             "went on\n";

}  // namespace

TEST(OutsideWindows, InATestRunner)
{
    const tsOutcome outcome = run("testRunner");
    EXPECT_EQ(outcome._output, reportOfThree);
    EXPECT_EQ(occurrences(outcome._errors, " - Assertion failure: "), 3U) << outcome._errors;
}

TEST(OutsideWindows, InAnApplicationWithoutWindows)
{
    const tsOutcome outcome = run("console");
    EXPECT_EQ(outcome._output, reportOfThree);
    EXPECT_EQ(occurrences(outcome._errors, " - Assertion failure: "), 3U) << outcome._errors;
}

TEST(OutsideWindows, BeforeTheApplicationStartsAndAfterItHasEnded)
{
    const tsOutcome outcome = run("life");
    EXPECT_EQ(outcome._output, "3 times, last Assertion failure (1 + 1 == 3): after it has ended\nwent on\n");
    for (const char* pText : {"before it starts", "in OnExit", "after it has ended"})
    {
        EXPECT_EQ(occurrences(outcome._errors, std::string("(1 + 1 == 3): ") + pText + " fail "), 1U)
            << outcome._errors;
    }
    // That one is the registry's.
    EXPECT_THAT(outcome._errors, testing::HasSubstr(": fail: Assertion failure (1 + 1 == 3): without a kit\n"));
}

TEST(OutsideWindows, WithoutADisplay)
{
    const tsOutcome outcome = run("noDisplay");
    EXPECT_THAT(outcome._output,
                testing::HasSubstr("times, last Assertion failure (1 + 1 == 3): after it has ended\n"));
    EXPECT_EQ(occurrences(outcome._errors, "(1 + 1 == 3): before it starts fail "), 1U) << outcome._errors;
    EXPECT_EQ(occurrences(outcome._errors, "(1 + 1 == 3): after it has ended fail "), 1U) << outcome._errors;
}
