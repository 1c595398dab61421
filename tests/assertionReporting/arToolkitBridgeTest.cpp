// SPDX-License-Identifier: Apache-2.0
#include "assertionReporting/arToolkitBridge.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/debug.h>
#include <wx/evtloop.h>
#include <wx/timer.h>

#include "assertionReporting/arAssertionReport.h"
#include "assertionReporting/arInteractiveAssertionFailureHandler.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "platform/osWrappers/osProcess.h"
#include "tests/support/tsAssertionRecorder.h"
#include "tests/support/tsCaughtErrors.h"
#include "tests/support/tsWindowTest.h"

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

int failTheToolkitsCheck()
{
    wxCHECK_MSG(1 + 1 == 3, 5, "said in words");
    return 6;
}

// Throws in an event's handler, and in a call that was put off, and runs the loop until that is over.
// A text is among them, whose copy may throw. NOLINTBEGIN(cert-err60-cpp)
template <class Exception>
void throwInTheLoop(const Exception& exception)
{
    wxTimer timer;
    int amountThrown = 0;
    timer.Bind(wxEVT_TIMER,
               [&](wxTimerEvent&)
               {
                   ++amountThrown;
                   throw exception;
               });
    timer.StartOnce(1);
    tsRunUntil("it is thrown by a handler", [&] { return amountThrown == 1; });
    wxTheApp->CallAfter(
        [&]
        {
            ++amountThrown;
            throw exception;
        });
    tsRunUntil("it is thrown by a call", [&] { return amountThrown == 2; });
    // NOLINTEND(cert-err60-cpp)
    // What comes after is handled.
    bool isHandled = false;
    wxTheApp->CallAfter([&] { isHandled = true; });
    tsRunUntil("the loop goes on", [&] { return isHandled; });
}

}  // namespace

TEST(ToolkitBridge, ReportsTheToolkitsAssertionsAndGoesOn)
{
    tsAssertionRecorder recorder;
    const arToolkitBridge bridge;
    const int line = __LINE__ + 1;
    wxASSERT(1 + 1 == 3);
    EXPECT_THAT(recorder.lines(), ElementsAre("TestBody " + std::string(__FILE__) + " " + std::to_string(line) +
                                              " Assertion failure (1 + 1 == 3)"));
    recorder.reports.clear();
    EXPECT_EQ(failTheToolkitsCheck(), 5);
    EXPECT_THAT(recorder.messages(), ElementsAre("Assertion failure (1 + 1 == 3): said in words"));
    EXPECT_EQ(recorder.reports.at(0).functionName, "failTheToolkitsCheck");
    recorder.reports.clear();
    wxASSERT_MSG(1 + 1 == 2, "is not said");
    EXPECT_THAT(recorder.reports, IsEmpty());
    std::thread([] { wxASSERT(false); }).join();
    EXPECT_EQ(recorder.reports.size(), 1U);
}

TEST(ToolkitBridge, LeavesTheToolkitsHandlerWhenItGoes)
{
    static int amount = 0;
    const wxAssertHandler_t before =
        wxSetAssertHandler([](const wxString&, int, const wxString&, const wxString&, const wxString&) { ++amount; });
    const std::terminate_handler terminateBefore = std::get_terminate();
    {
        const arToolkitBridge bridge;
        EXPECT_NE(std::get_terminate(), terminateBefore);
    }
    EXPECT_EQ(std::get_terminate(), terminateBefore);
    tsAssertionRecorder recorder;
    wxASSERT(false);
    EXPECT_EQ(amount, 1);
    EXPECT_THAT(recorder.reports, IsEmpty());
    wxSetAssertHandler(before);
}

TEST(ToolkitBridge, ReportsExceptionsOfTheMainLoopAndGoesOn)
{
    tsAssertionRecorder recorder;
    const arToolkitBridge bridge;
    throwInTheLoop(std::runtime_error("what it says"));
    throwInTheLoop(std::string("a string"));
    throwInTheLoop(42);
    const std::string start = "OnExceptionInMainLoop  0 Unhandled exception of type ";
    // Each by a handler and by a call.
    std::vector<std::string> expected;
    for (const char* pText : {"std::runtime_error: what it says", "std::string: a string", "int"})
    {
        expected.insert(expected.end(), 2, start + pText);
    }
    EXPECT_EQ(recorder.lines(), expected);
}

// With the silent handler alone nobody would see that the event was given up.
TEST(ToolkitBridge, WritesTheLineOfAnExceptionThatNoHandlerWrites)
{
    const tsCaughtErrors errors;
    const auto report = []
    {
        try
        {
            throw std::runtime_error("two\nlines");
        }
        catch (...)
        {
            EXPECT_TRUE(arReportUnhandledException());
        }
        return tsCaughtErrors::take();
    };
    const std::string text = "Unhandled exception of type std::runtime_error: two";
    {
        const tsAssertionRecorder silent;
        EXPECT_EQ(report(), text + " lines\n");
    }
    // The registry does when there is no handler.
    EXPECT_EQ(report(), ":0: OnExceptionInMainLoop: " + text + " lines\n");
    // And the handler that asks does.
    const auto pHandler = std::make_shared<arInteractiveAssertionFailureHandler>(osGetCurrentThreadId(),
                                                                                 std::make_shared<arAssertionReport>());
    gtRegisterAssertionFailureHandler(pHandler.get());
    arInteractiveAssertionFailureHandler::announceEnd();
    const std::string written = report();
    gtUnRegisterAssertionFailureHandler(pHandler.get());
    EXPECT_THAT(written, testing::HasSubstr(" - Assertion failure: " + text + "\nlines OnExceptionInMainLoop"));
    EXPECT_EQ(written.find(text), written.rfind(text));
}

TEST(ToolkitBridge, LetsExceptionsOfTheMainLoopOutWithoutABridge)
{
    tsAssertionRecorder recorder;
    wxGUIEventLoop loop;
    wxTheApp->CallAfter([] { throw std::runtime_error("nobody is there"); });
    EXPECT_THROW(loop.Run(), std::runtime_error);
    EXPECT_THAT(recorder.reports, IsEmpty());
}

namespace
{

// Ends the process like std::terminate would, after it has written what the report holds.
std::shared_ptr<arAssertionReport> pReportAtEnd;

void writeReportAndEnd()
{
    for (const arAssertionRow& row : pReportAtEnd->rows())
    {
        static_cast<void>(
            std::fprintf(stderr, "row: %s, %s, %s\n", row._function.asCharArray(), row._message.asCharArray(),
                         row._decision == arAssertionDecision::Terminated ? "terminated" : "another decision"));
    }
    std::_Exit(7);
}

void throwOutOfRange()
{
    throw std::out_of_range("on the main thread");
}

void terminateWith(const std::function<void()>& action)
{
    pReportAtEnd = std::make_shared<arAssertionReport>();
    const auto pHandler = std::make_shared<arInteractiveAssertionFailureHandler>(osGetCurrentThreadId(), pReportAtEnd);
    gtRegisterAssertionFailureHandler(pHandler.get());
    std::set_terminate(&writeReportAndEnd);
    const arToolkitBridge bridge;
    action();
    std::_Exit(9);
}

}  // namespace

TEST(ToolkitBridgeDeathTest, RecordsTheEndAndAsksNobody)
{
    EXPECT_EXIT(terminateWith([] { std::thread([] { throw std::logic_error("from a thread"); }).join(); }),
                testing::ExitedWithCode(7),
                "row: std::terminate, Terminated by an exception of type std::logic_error: from a thread, terminated");
    // As is meant here. NOLINTNEXTLINE(bugprone-exception-escape)
    EXPECT_EXIT(terminateWith([]() noexcept { throwOutOfRange(); }), testing::ExitedWithCode(7),
                "row: std::terminate, Terminated by an exception of type std::out_of_range: on the main thread, "
                "terminated");
    EXPECT_EXIT(terminateWith([] { std::terminate(); }), testing::ExitedWithCode(7),
                "row: std::terminate, Terminated without an exception, terminated");
}
