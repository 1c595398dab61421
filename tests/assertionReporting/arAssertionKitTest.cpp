// SPDX-License-Identifier: Apache-2.0
// The kit as a program uses it: which handler is registered, when dialogs come, and what the report keeps and shows.
#include "assertionReporting/arAssertionKit.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <wx/app.h>
#include <wx/clipbrd.h>
#include <wx/frame.h>
#include <wx/listctrl.h>
#include <wx/msgdlg.h>
#include <wx/textctrl.h>

#include "assertionHandling/ahAssertDialog.h"
#include "assertionReporting/arAssertionReport.h"
#include "assertionReporting/arAssertionReportWindow.h"
#include "assertionReporting/arInteractiveAssertionFailureHandler.h"
#include "assertionReporting/arStackTrace.h"
#include "platform/baseTools/gtAssert.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/tsCaughtErrors.h"
#include "tests/support/tsWindowTest.h"

void failDeepInside();

__attribute__((noinline)) void failDeepInside()
{
    GT_ASSERT_AT(1 + 1 == 3, "x != 0", "aFunction", "source/aFile.cpp", 7);
}

namespace
{

using testing::HasSubstr;

bool hasDialogKeyboard()
{
    const auto* pDialog = dynamic_cast<ahAssertDialog*>(tsTopModalDialog());
    return pDialog != nullptr && tsHasKeyboard(*pDialog);
}

bool isAskedAboutDebugger()
{
    std::string title;
    tsRunProgram({"xdotool", "getactivewindow", "getwindowname"}, &title);
    return title == "No debugger is attached\n";
}

// Fails, and answers the dialog by that key.
void failWithDialog(const std::string& key)
{
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &hasDialogKeyboard)
        .perform("decide", [&] { tsPressKeys(key); })
        .start();
    failDeepInside();
    EXPECT_TRUE(script.isFinished());
}

class AssertionKit : public testing::Test
{
protected:
    AssertionKit() { _kit.setAsking(true); }

    arAssertionRow row() const
    {
        const std::vector<arAssertionRow> rows = _kit.report()->rows();
        return rows.empty() ? arAssertionRow() : rows.front();
    }

    TemporaryFolder _folder;
    arAssertionKit _kit;
    const tsCaughtErrors _errors;
};

// The report in a window of its own.
class AssertionKitWindow : public AssertionKit
{
protected:
    AssertionKitWindow() : _pWindow(_kit.makeReportWindow(&_frame)) {}

    void show()
    {
        _pWindow->Show();
        tsRunUntil("the report has the keyboard", [this] { return tsHasKeyboard(*_pWindow); });
        tsRunUntil("the report shows all there is", [this] { return !_pWindow->isBehind(); });
    }

    wxListCtrl& list() const
    {
        return *dynamic_cast<wxListCtrl*>(wxWindow::FindWindowByName("assertionReport", _pWindow));
    }
    std::string stack() const
    {
        return dynamic_cast<wxTextCtrl*>(wxWindow::FindWindowByName("assertionStack", _pWindow))
            ->GetValue()
            .utf8_string();
    }

    // The first editor that is looked for tells what it is asked to open. The action ends when the condition that it is
    // given holds: the editor was called.
    std::string openedBy(const std::function<void(const std::function<bool()>&)>& action)
    {
        const std::string editor = _folder.path("code");
        std::ofstream(editor) << "#!/bin/sh\nprintf '%s ' \"$@\" > \"$0.part\" && mv \"$0.part\" \"$0.called\"\n";
        chmod(editor.c_str(), 0755);
        const char* const pPath = std::getenv("PATH");
        const std::string before(pPath == nullptr ? "" : pPath);
        setenv("PATH", (_folder.path("") + ":" + before).c_str(), 1);
        action([&] { return std::filesystem::exists(editor + ".called"); });
        setenv("PATH", before.c_str(), 1);
        std::stringstream arguments;
        arguments << std::ifstream(editor + ".called").rdbuf();
        std::filesystem::remove(editor + ".called");
        return arguments.str();
    }

    wxFrame _frame{nullptr, wxID_ANY, "owner"};
    arAssertionReportWindow* const _pWindow;
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

TEST_F(AssertionKit, RegistersOneHandlerForTheRun)
{
    EXPECT_TRUE(_kit.isAsking());
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
    _kit.setAsking(true);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
    _kit.setAsking(false);
    EXPECT_FALSE(_kit.isAsking());
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
    {
        arAssertionKit other;
        EXPECT_FALSE(other.isAsking());
        EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
        other.setAsking(true);
    }
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
}

TEST_F(AssertionKit, RemembersIgnoreAllForTheWholeRun)
{
    failWithDialog("Return");
    _kit.setAsking(false);
    _kit.setAsking(true);
    failDeepInside();
    EXPECT_EQ(tsTopModalDialog(), nullptr);
    EXPECT_EQ(row()._count, 2U);
    EXPECT_EQ(row()._decision, arAssertionDecision::IgnoreAll);
}

TEST_F(AssertionKit, KeepsTheStackOfTheLastFailure)
{
    if (!arHasStacks())
    {
        GTEST_SKIP() << "built without a library that reads stacks";
    }
    failWithDialog("Return");
    ASSERT_FALSE(row()._stack.empty());
    EXPECT_THAT(linesOf(row()._stack)[0], HasSubstr("failDeepInside"));
    std::thread(&failDeepInside).join();
    const std::vector<std::string> ofThread = linesOf(row()._stack);
    EXPECT_THAT(ofThread[0], HasSubstr("failDeepInside"));
    EXPECT_THAT(ofThread, testing::Not(testing::Contains(HasSubstr("TestBody"))));
}

TEST_F(AssertionKit, AsksBeforeABreakpointThatNoDebuggerWaitsFor)
{
    int amountOfEnds = 0;
    _kit.setBeforeEnd([&] { ++amountOfEnds; });
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &hasDialogKeyboard)
        .perform("Debug", [] { tsPressKeys("alt+d"); })
        .waitUntil("it is asked", &isAskedAboutDebugger)
        .perform("go back", [] { tsPressKeys("Escape"); })
        .waitUntil("the dialog has the keyboard again", &hasDialogKeyboard)
        .perform("decide otherwise", [] { tsPressKeys("alt+i"); })
        .start();
    failDeepInside();
    EXPECT_TRUE(script.isFinished());
    EXPECT_EQ(row()._decision, arAssertionDecision::Ignore);
    EXPECT_EQ(amountOfEnds, 0);
}

TEST(AssertionKitDeathTest, GivesUpWhatIsAtWorkBeforeItEnds)
{
    EXPECT_EXIT(
        {
            arAssertionKit kit;
            kit.setAsking(true);
            bool isDone = false;
            kit.setBeforeEnd([&] { isDone = kit.isDeciding(); });
            static bool* pIsDone = &isDone;
            static_cast<void>(std::atexit([] { std::_Exit(*pIsDone ? 7 : 8); }));
            failWithDialog("alt+e");
            std::_Exit(9);
        },
        testing::ExitedWithCode(7), "");
    EXPECT_EXIT(
        {
            struct sigaction toHere = {};
            static bool isDone = false;
            toHere.sa_handler = [](int) { std::_Exit(isDone ? 7 : 8); };
            sigaction(SIGTRAP, &toHere, nullptr);
            arAssertionKit kit;
            kit.setAsking(true);
            kit.setBeforeEnd([] { isDone = true; });
            tsScript script;
            script.waitUntil("the dialog has the keyboard", &hasDialogKeyboard)
                .perform("Debug", [] { tsPressKeys("alt+d"); })
                .waitUntil("it is asked", &isAskedAboutDebugger)
                .perform("break", [] { tsPressKeys("alt+b"); })
                .start();
            failDeepInside();
            std::_Exit(9);
        },
        testing::ExitedWithCode(7), "");
}

TEST_F(AssertionKit, RecordsAnAnnouncedEndWithoutADialog)
{
    arInteractiveAssertionFailureHandler::announceEnd();
    failDeepInside();
    EXPECT_EQ(row()._decision, arAssertionDecision::Terminated);
    // It was for one failure.
    failWithDialog("alt+i");
    EXPECT_EQ(row()._decision, arAssertionDecision::Ignore);
    EXPECT_EQ(row()._count, 2U);
}

TEST_F(AssertionKitWindow, ShowsTheStackOfTheSelectedRow)
{
    if (!arHasStacks())
    {
        GTEST_SKIP() << "built without a library that reads stacks";
    }
    failWithDialog("Return");
    arInteractiveAssertionFailureHandler::announceEnd();
    GT_ASSERT_AT(false, "other", "anotherFunction", "source/other.cpp", 9);
    show();
    EXPECT_THAT(stack(), HasSubstr(" 0  failDeepInside"));
    list().SetItemState(1, wxLIST_STATE_SELECTED, wxLIST_STATE_SELECTED);
    tsRunUntil("the other stack is shown", [this] { return stack().find("failDeepInside") == std::string::npos; });
    EXPECT_THAT(stack(), HasSubstr(" 0  "));
    EXPECT_THAT(stack(), HasSubstr("TestBody"));
}

TEST_F(AssertionKitWindow, SavesTheStack)
{
    if (!arHasStacks())
    {
        GTEST_SKIP() << "built without a library that reads stacks";
    }
    failWithDialog("Return");
    show();
    ASSERT_TRUE(_pWindow->saveAs(_folder.path("report.tsv")));
    EXPECT_THAT(_folder.read("report.tsv"), HasSubstr("\tReason\tStack\n"));
    EXPECT_THAT(_folder.read("report.tsv"), HasSubstr("Assertion failure (x != 0)\tfailDeepInside"));
}

TEST_F(AssertionKitWindow, OpensTheSourceByReturnAndDoubleClick)
{
    failWithDialog("Return");
    show();
    list().SetFocus();
    list().SetItemState(0, wxLIST_STATE_SELECTED | wxLIST_STATE_FOCUSED, wxLIST_STATE_SELECTED | wxLIST_STATE_FOCUSED);
    const auto byReturn = [](const std::function<bool()>& wasCalled)
    {
        tsPressKeys("Return");
        tsRunUntil("Return calls the editor", wasCalled);
    };
    EXPECT_EQ(openedBy(byReturn), "--goto source/aFile.cpp:7 ");
    EXPECT_TRUE(_pWindow->IsShown());

    wxRect rect;
    ASSERT_TRUE(list().GetItemRect(0, rect));
    const wxPoint place = list().ClientToScreen(rect.GetPosition() + wxPoint(30, rect.height / 2));
    const auto byDoubleClick = [&](const std::function<bool()>& wasCalled)
    { tsDoubleClickAtUntil(place, "a double click calls the editor", wasCalled); };
    EXPECT_EQ(openedBy(byDoubleClick), "--goto source/aFile.cpp:7 ");
}
