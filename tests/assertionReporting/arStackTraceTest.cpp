// SPDX-License-Identifier: Apache-2.0
#include "assertionReporting/arStackTrace.h"

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/baseTools/gtAssert.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "tests/assertionReporting/checkLast.h"
#include "tests/support/failingAllocation.h"

// Not in a namespace, and not static: a name that every symbol table has.
std::vector<std::uintptr_t> innermostCall();
std::vector<std::uintptr_t> outerCall(int depth);
bool failingCall();

__attribute__((noinline)) std::vector<std::uintptr_t> innermostCall()
{
    return arStackOfThisThread();
}

__attribute__((noinline)) std::vector<std::uintptr_t> outerCall(int depth)
{
    std::vector<std::uintptr_t> stack = depth == 0 ? innermostCall() : outerCall(depth - 1);
    // Not a tail call.
    stack.shrink_to_fit();
    return stack;
}

__attribute__((noinline)) bool failingCall()
{
    const bool isFine = GT_ASSERT(1 + 1 == 3);
    return !isFine;
}

namespace
{

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

class StackTrace : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!arHasStacks())
        {
            GTEST_SKIP() << "built without a library that reads stacks";
        }
    }
};

class StackTaker : public gtIAssertionFailureHandler
{
public:
    StackTaker() { gtRegisterAssertionFailureHandler(this); }
    StackTaker(const StackTaker&) = delete;
    StackTaker& operator=(const StackTaker&) = delete;
    ~StackTaker() override { gtUnRegisterAssertionFailureHandler(this); }

    void onAssertionFailure(const char*, const char*, int, const char*) override { stack = arStackOfThisThread(); }

    std::vector<std::uintptr_t> stack;
};

// As text that matchers take.
std::vector<std::string> linesOf(const std::vector<std::uintptr_t>& stack)
{
    std::vector<std::string> lines;
    for (const gtString& line : arStackLines(stack))
    {
        lines.push_back(line.asStdString());
    }
    return lines;
}

}  // namespace

TEST_F(StackTrace, NamesTheCallsFromTheInnermostOn)
{
    const std::vector<std::string> lines = linesOf(outerCall(2));
    ASSERT_GT(lines.size(), 5U);
    EXPECT_THAT(lines[0], HasSubstr("innermostCall"));
    EXPECT_THAT(lines[1], HasSubstr("outerCall"));
    EXPECT_THAT(lines[2], HasSubstr("outerCall"));
    EXPECT_THAT(lines[3], HasSubstr("outerCall"));
    EXPECT_THAT(lines[4], HasSubstr("NamesTheCallsFromTheInnermostOn"));
    EXPECT_THAT(lines, Contains(HasSubstr("main")));
    // What the library gives for the end.
    EXPECT_THAT(lines, testing::Not(Contains(HasSubstr("0xffffffff"))));
}

TEST_F(StackTrace, TellsFileAndLine)
{
    const int line = __LINE__ + 1;
    const std::vector<std::string> lines = linesOf(outerCall(0));
    ASSERT_GT(lines.size(), 3U);
    EXPECT_THAT(lines[2], HasSubstr("arStackTraceTest.cpp:" + std::to_string(line)));
}

TEST_F(StackTrace, BeginsWithTheCheckThatFailed)
{
    StackTaker taker;
    EXPECT_TRUE(failingCall());
    const std::vector<std::string> lines = linesOf(taker.stack);
    ASSERT_GT(lines.size(), 2U);
    EXPECT_THAT(lines[0], HasSubstr("failingCall"));
    EXPECT_THAT(lines[1], HasSubstr("BeginsWithTheCheckThatFailed"));
}

TEST_F(StackTrace, HasTheFunctionWhoseLastCallIsTheCheck)
{
    StackTaker taker;
    checkLastInC(-1);
    EXPECT_THAT(linesOf(taker.stack), Contains(HasSubstr("checkLastInC")));
    checkLast(-1);
    const std::vector<std::string> lines = linesOf(taker.stack);
    ASSERT_FALSE(lines.empty());
    // More than one line where the compiler parted the function and put it together again.
    const auto caller =
        std::find_if(lines.begin(), lines.end(),
                     [](const std::string& line) { return line.find("checkLast(int)") == std::string::npos; });
    ASSERT_NE(caller, lines.begin()) << lines[0];
    ASSERT_NE(caller, lines.end());
    EXPECT_THAT(*caller, HasSubstr("HasTheFunctionWhoseLastCallIsTheCheck"));
}

TEST_F(StackTrace, IsOfTheCallingThread)
{
    std::vector<std::uintptr_t> stack;
    std::thread([&] { stack = outerCall(0); }).join();
    const std::vector<std::string> lines = linesOf(stack);
    EXPECT_THAT(lines, Contains(HasSubstr("innermostCall")));
    EXPECT_THAT(lines, testing::Not(Contains(HasSubstr("RUN_ALL_TESTS"))));
}

TEST_F(StackTrace, HasAnEnd)
{
    EXPECT_EQ(outerCall(1000).size(), arMostFrames);
}

TEST_F(StackTrace, IsEmptyWithoutMemory)
{
    arStackOfThisThread();
    const FailingAllocation failure(0);
    EXPECT_TRUE(arStackOfThisThread().empty());
    EXPECT_TRUE(failure.hasFailed());
}

TEST_F(StackTrace, ShowsAddressesThatNobodyKnows)
{
    EXPECT_THAT(linesOf({}), IsEmpty());
    EXPECT_THAT(linesOf({0x10}), testing::ElementsAre("0x10"));
}
