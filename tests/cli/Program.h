// SPDX-License-Identifier: Apache-2.0
// The program countersign in a folder with a pair of keys, for tests from outside.
#ifndef COUNTERSIGN_TESTS_PROGRAM_H
#define COUNTERSIGN_TESTS_PROGRAM_H

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cliTestSupport.h"
#include "tests/support/tsProcess.h"

class Program : public ::testing::Test
{
protected:
    void SetUp() override { makeKeys(_folder, 1024); }

    tsCommand command(const std::vector<std::string>& arguments) const
    {
        tsCommand result;
        result._arguments = {COUNTERSIGN_PROGRAM};
        result._arguments.insert(result._arguments.end(), arguments.begin(), arguments.end());
        result._folder = _folder.path();
        return result;
    }

    tsOutcome run(const std::vector<std::string>& arguments, const std::string& input = "") const
    {
        tsCommand toRun = command(arguments);
        toRun._input = input;
        return tsRun(toRun);
    }

    // Runs it with good result and nothing to say.
    std::string outputOf(const std::vector<std::string>& arguments, const std::string& input = "") const
    {
        const tsOutcome outcome = run(arguments, input);
        EXPECT_EQ(outcome._exitStatus, 0) << outcome._errors;
        EXPECT_EQ(outcome._errors, "");
        return outcome._output;
    }

    // It says that it failed, in words that hold these, and prints nothing else.
    static void expectFailure(const tsOutcome& outcome, const std::vector<std::string>& words, int status = 2)
    {
        EXPECT_EQ(outcome._exitStatus, status);
        EXPECT_THAT(outcome._errors, ::testing::StartsWith("countersign: "));
        EXPECT_THAT(outcome._errors, ::testing::EndsWith("\n"));
        for (const std::string& word : words)
        {
            EXPECT_THAT(outcome._errors, ::testing::HasSubstr(word));
        }
    }

    TemporaryFolder _folder;
};

#endif
