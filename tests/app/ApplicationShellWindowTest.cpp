// SPDX-License-Identifier: Apache-2.0
// What the application object does with a real main window, and whole programs from main() on.
#include "app/ApplicationShell.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "MainFrame.h"

#include "platform/toolkit/gtTextConversion.h"
#include "tests/support/failingAllocation.h"
#include "tests/support/tsAssertionRecorder.h"
#include "tests/support/tsCaughtErrors.h"
#include "tests/support/tsWindowTest.h"

namespace
{

class Access : public ApplicationShell
{
public:
    static MainFrame* mainFrameOf(ApplicationShell& shell) { return shell.*(&Access::_pMainFrame); }
    static bool hasHandler(ApplicationShell& shell) { return shell.*(&Access::_pAssertionFailureHandler) != nullptr; }
};

// The toolkit has started with the application of the program's own factory; what OnInit does is undone afterwards.
class ShellWindow : public testing::Test
{
protected:
    ~ShellWindow() override
    {
        MainFrame::whileConstructing() = nullptr;
        MainFrame::whileShowing() = nullptr;
        MainFrame::hasNoMemory = false;
        MainFrame::openedPaths().clear();
        closeMainWindow();
        wxGetApp().OnExit();
    }

    static MainFrame* mainFrame() { return Access::mainFrameOf(wxGetApp()); }

    static void closeMainWindow()
    {
        if (mainFrame() != nullptr)
        {
            mainFrame()->Destroy();
            tsRunUntil("the main window is gone", [] { return MainFrame::amountOfLive == 0; });
        }
    }
};

}  // namespace

TEST_F(ShellWindow, ComesFromTheFactory)
{
    EXPECT_NE(dynamic_cast<ApplicationShell*>(wxApp::GetInstance()), nullptr);
    EXPECT_EQ(wxGetApp().argc, 1);
    EXPECT_EQ(wxGetApp().argv.GetArguments().size(), 1U);
}

TEST_F(ShellWindow, StartsWithAHandlerAndThenAWindow)
{
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
    bool isConstructed = false;
    MainFrame::whileConstructing() = [&](MainFrame& frame)
    {
        isConstructed = true;
        EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
        EXPECT_TRUE(Access::hasHandler(wxGetApp()));
        EXPECT_EQ(mainFrame(), nullptr);
        EXPECT_FALSE(frame.IsShown());
    };
    EXPECT_TRUE(wxGetApp().OnInit());
    EXPECT_TRUE(isConstructed);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
    ASSERT_NE(mainFrame(), nullptr);
    EXPECT_TRUE(mainFrame()->IsShown());
    EXPECT_EQ(wxGetApp().GetTopWindow(), mainFrame());
    EXPECT_TRUE(tsRunUntil("the main window has the keyboard", [] { return tsHasKeyboard(*mainFrame()); }));

    // Silent from now on.
    const tsCaughtErrors errors;
    gtTriggerAssertonFailureHandler("f", "file.cpp", 1, "m");
    EXPECT_EQ(errors.take(), "");
}

TEST_F(ShellWindow, MakesItTheTopWindowEvenIfThereIsAnotherOne)
{
    wxFrame other(nullptr, wxID_ANY, "other");
    wxGetApp().SetTopWindow(&other);
    wxWindow* pTopWhileShowing = nullptr;
    MainFrame::whileShowing() = [&](MainFrame&) { pTopWhileShowing = wxGetApp().GetTopWindow(); };
    EXPECT_TRUE(wxGetApp().OnInit());
    EXPECT_EQ(pTopWhileShowing, &other) << "the window is shown first";
    EXPECT_EQ(wxGetApp().GetTopWindow(), mainFrame());
}

TEST_F(ShellWindow, ExitsOnceAndAgain)
{
    ASSERT_TRUE(wxGetApp().OnInit());
    MainFrame* pFrame = mainFrame();
    EXPECT_EQ(wxGetApp().OnExit(), 0);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
    EXPECT_FALSE(Access::hasHandler(wxGetApp()));
    EXPECT_EQ(wxGetApp().OnExit(), 0);
    EXPECT_EQ(mainFrame(), pFrame);
    EXPECT_TRUE(pFrame->IsShown());
}

TEST_F(ShellWindow, PassesDocumentsToTheMainWindow)
{
    tsAssertionRecorder recorder;
    ASSERT_TRUE(wxGetApp().OnInit());
    const std::vector<std::string> paths = {"/tmp/a.txt", "", "caf\xC3\xA9", "/\xFF\xE9/\xED\xA0\x80 \n%s",
                                            std::string(5000, 'x')};
    for (const std::string& path : paths)
    {
        wxGetApp().MacOpenFile(gtPathTextFromBytes(gtString(path.c_str())));
    }
    ASSERT_EQ(MainFrame::openedPaths().size(), paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i)
    {
        EXPECT_EQ(MainFrame::openedPaths()[i].first, paths[i]);
        EXPECT_TRUE(MainFrame::openedPaths()[i].second);
    }
    EXPECT_EQ(wxGetApp().argc, 1);
    EXPECT_EQ(wxGetApp().argv.GetArguments().size(), 1U);
    EXPECT_TRUE(recorder.reports.empty());
}

TEST_F(ShellWindow, StartsWithoutMemoryForTheHandler)
{
    tsAssertionRecorder recorder;
    recorder.reports.reserve(10);
    const OneFailingAllocation failure(0);
    EXPECT_TRUE(wxGetApp().OnInit());
    EXPECT_TRUE(failure.hasFailed());
    EXPECT_EQ(recorder.lines(),
              std::vector<std::string>{
                  "OnInit app/ApplicationShell.cpp 51 Assertion failure (_pAssertionFailureHandler != __null)"});
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
    ASSERT_NE(mainFrame(), nullptr);
    EXPECT_TRUE(mainFrame()->IsShown());
    EXPECT_EQ(wxGetApp().OnExit(), 0);
}

TEST_F(ShellWindow, LetsTheMainWindowsExceptionOutAndReleasesItsMemory)
{
    MainFrame::whileConstructing() = [](MainFrame&) { throw std::runtime_error("no window"); };
    EXPECT_THROW(wxGetApp().OnInit(), std::runtime_error);
    EXPECT_EQ(MainFrame::amountOfLive, 0);
    EXPECT_EQ(mainFrame(), nullptr);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
    EXPECT_EQ(wxGetApp().OnExit(), 0);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
}

TEST_F(ShellWindow, DropsADocumentThatComesAfterTheMainWindow)
{
    tsAssertionRecorder recorder;
    ASSERT_TRUE(wxGetApp().OnInit());
    // A window inside it that goes is none of the application's business.
    auto* pInside = new wxWindow(mainFrame(), wxID_ANY);
    pInside->Destroy();
    ASSERT_NE(mainFrame(), nullptr);

    closeMainWindow();
    EXPECT_EQ(mainFrame(), nullptr);
    wxGetApp().MacOpenFile("/tmp/late.txt");
    EXPECT_TRUE(MainFrame::openedPaths().empty());
    EXPECT_EQ(recorder.lines(),
              std::vector<std::string>{
                  "MacOpenFile app/ApplicationShell.cpp 109 Assertion failure ((argc == 0)&&(argv == __null))"});
}

TEST_F(ShellWindow, LeavesTheMainWindowsEndToItsOwnHandlers)
{
    int amountOfCalls = 0;
    MainFrame::whileConstructing() = [&amountOfCalls](MainFrame& frame)
    {
        frame.Bind(wxEVT_DESTROY,
                   [&amountOfCalls](wxWindowDestroyEvent& event)
                   {
                       ++amountOfCalls;
                       event.Skip();
                   });
    };
    ASSERT_TRUE(wxGetApp().OnInit());
    closeMainWindow();
    EXPECT_EQ(amountOfCalls, 1);
}

// Whole programs.

TEST(Program, EndsWithZeroWhenItsWindowIsClosed)
{
    for (const char* pProgram : {SHELL_PROGRAM, REORDERED_SHELL_PROGRAM})
    {
        std::string output;
        EXPECT_EQ(tsRunProgram({"timeout", "60", pProgram, "run"}, &output), 0) << pProgram;
        EXPECT_EQ(output, "window with 1 handler\n"
                          "argument run\n"
                          "0 handlers at the end\n");
    }
}

TEST(Program, TakesArgumentsThatLookLikeOptions)
{
    std::string output;
    EXPECT_EQ(tsRunProgram({SHELL_PROGRAM, "run", "--help", "-x", "/tmp/a b.txt", ""}, &output), 0);
    EXPECT_EQ(output, "window with 1 handler\n"
                      "argument run\n"
                      "argument --help\n"
                      "argument -x\n"
                      "argument /tmp/a b.txt\n"
                      "argument \n"
                      "0 handlers at the end\n");
}

TEST(Program, ReadsItsArgumentsBytesInEveryLocale)
{
    std::string output;
    EXPECT_EQ(tsRunProgram({"env", "LC_ALL=C.UTF-8", SHELL_PROGRAM, "run", "caf\xC3\xA9"}, &output), 0);
    EXPECT_NE(output.find("argument caf\xC3\xA9\n"), std::string::npos) << output;
    output.clear();
    EXPECT_EQ(tsRunProgram({"env", "LC_ALL=C", SHELL_PROGRAM, "run", "caf\xC3\xA9", "\xFF"}, &output), 0);
    EXPECT_NE(output.find("argument caf\xC3\xA9\nargument \xFF\n"), std::string::npos) << output;
}

TEST(Program, FailsWithoutAWindow)
{
    std::string output;
    EXPECT_NE(tsRunProgram({SHELL_PROGRAM, "withoutWindow"}, &output), 0);
    // The handler stays, and the toolkit does not ask for the application's OnExit.
    EXPECT_EQ(output, "1 handlers at the end\n");
}

TEST(Program, EndsAtOnceOnTheExitDecision)
{
    std::string output;
    EXPECT_EQ(tsRunProgram({SHELL_PROGRAM, "exitDecision"}, &output), 0);
    EXPECT_EQ(output, "window with 1 handler\n"
                      "argument exitDecision\n"
                      "1 handlers at the end\n");
}
