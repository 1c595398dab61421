// SPDX-License-Identifier: Apache-2.0
// Developer > Assertion report, and what the interactive handler puts into it.
#include "tests/host/MainFrameFixture.h"

#include "assertionHandling/ahAssertDialog.h"
#include "assertionReporting/arAssertionReportWindow.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "tests/support/tsCaughtErrors.h"

#include <gmock/gmock.h>
#include <wx/button.h>
#include <wx/clipbrd.h>
#include <wx/listctrl.h>
#include <wx/stattext.h>

#include <thread>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

enum Column
{
    PLACE,
    COUNT,
    FIRST,
    LAST,
    THREAD,
    DECISION,
    REASON
};

wxString clipboardText()
{
    const wxClipboardLocker clipboard;
    wxTextDataObject text;
    return wxTheClipboard->GetData(text) ? text.GetText() : wxString();
}

bool hasDialogKeyboard()
{
    const auto* pDialog = dynamic_cast<ahAssertDialog*>(tsTopModalDialog());
    return pDialog != nullptr && tsHasKeyboard(*pDialog);
}

void fail(int line, const char* message = "Assertion failure (x != 0)")
{
    gtTriggerAssertonFailureHandler("aFunction", "/source/aFile.cpp", line, message);
}

void failWithDialog(int line, const std::string& key)
{
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &hasDialogKeyboard)
        .perform("decide", [&] { tsPressKeys(key); })
        .start();
    fail(line);
    EXPECT_TRUE(script.isFinished());
}

class AssertionReportWindow : public MainFrameFixture
{
protected:
    void settle()
    {
        MainFrameFixture::settle();
        tsRunUntil("the report shows all there is",
                   [this]
                   {
                       const arAssertionReportWindow* const pWindow = window();
                       return pWindow == nullptr || !pWindow->isBehind();
                   });
    }
    arAssertionReportWindow* window() const
    {
        for (wxWindow* pChild : _pFrame->GetChildren())
        {
            if (auto* pWindow = dynamic_cast<arAssertionReportWindow*>(pChild))
            {
                return pWindow;
            }
        }
        return nullptr;
    }
    void open()
    {
        choose("alt+d", "r");
        tsRunUntil("the report has the keyboard", [this] { return window() != nullptr && tsHasKeyboard(*window()); });
        settle();
    }
    void startWithReport()
    {
        start();
        _pFrame->setAssertionDialogs(true);
        open();
    }
    std::vector<std::string> column(int column) const
    {
        const auto& list = *dynamic_cast<wxListCtrl*>(wxWindow::FindWindowByName("assertionReport", window()));
        std::vector<std::string> texts;
        for (int row = 0; row < list.GetItemCount(); ++row)
        {
            texts.push_back(list.GetItemText(row, column).utf8_string());
        }
        return texts;
    }
    std::string heading() const
    {
        return wxWindow::FindWindowByName("assertionReportHeading", window())->GetLabel().utf8_string();
    }
    bool isEnabled(int id) const { return window()->FindWindow(id)->IsEnabled(); }

    const tsCaughtErrors _errors;
};
}  // namespace

TEST_F(AssertionReportWindow, SaysThatThereIsNothing)
{
    startWithReport();
    EXPECT_EQ(heading(), "No assertion has failed while there were dialogs for them.");
    EXPECT_THAT(column(PLACE), IsEmpty());
    EXPECT_FALSE(isEnabled(wxID_COPY));
    EXPECT_FALSE(isEnabled(wxID_SAVEAS));
    tsPressKeys("ctrl+c");
    tsPressKeys("ctrl+s");
    settle();
    EXPECT_EQ(tsTopModalDialog(), nullptr);
    tsPressKeys("Escape");
    tsRunUntil("the main window has the keyboard again", [this] { return tsHasKeyboard(*_pFrame); });
    EXPECT_FALSE(window()->IsShown());
    open();
}

TEST_F(AssertionReportWindow, FollowsEveryFailure)
{
    startWithReport();
    failWithDialog(7, "Return");  // Ignore all
    settle();
    EXPECT_EQ(heading(), "1 failure at 1 place.");
    fail(7);
    fail(7, "again");
    failWithDialog(8, "alt+i");
    settle();
    EXPECT_EQ(heading(), "4 failures at 2 places.");
    EXPECT_THAT(column(PLACE), ElementsAre("aFile.cpp:7", "aFile.cpp:8"));
    EXPECT_THAT(column(COUNT), ElementsAre("3", "1"));
    EXPECT_THAT(column(DECISION), ElementsAre("ignore all", "ignore"));
    EXPECT_THAT(column(REASON), ElementsAre("again", "Assertion failure (x != 0)"));
    EXPECT_THAT(column(THREAD), ElementsAre(StartsWith("main ("), StartsWith("main (")));
    EXPECT_THAT(column(FIRST)[0], testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}"));
    EXPECT_LE(column(FIRST)[0], column(LAST)[0]);
    EXPECT_TRUE(isEnabled(wxID_COPY));
    EXPECT_TRUE(isEnabled(wxID_SAVEAS));
}

TEST_F(AssertionReportWindow, ShowsWhatFailedBeforeItWasOpened)
{
    start();
    fail(1);  // silent
    _pFrame->setAssertionDialogs(true);
    failWithDialog(2, "alt+i");
    _pFrame->setAssertionDialogs(false);
    fail(3);
    open();
    EXPECT_THAT(column(PLACE), ElementsAre("aFile.cpp:2"));
    _pFrame->setAssertionDialogs(true);
    failWithDialog(2, "alt+i");
    settle();
    EXPECT_THAT(column(COUNT), ElementsAre("2"));
}

TEST_F(AssertionReportWindow, HoldsWhatFailsWhileAnotherIsDecided)
{
    startWithReport();
    std::vector<std::string> decisionsMeanwhile;
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &hasDialogKeyboard)
        .perform("fail again, here and elsewhere",
                 []
                 {
                     fail(2);
                     std::thread([] { fail(3); }).join();
                     fail(1);
                 })
        .waitUntil("the report shows them", [this] { return column(PLACE).size() == 3; })
        .perform("decide",
                 [&]
                 {
                     decisionsMeanwhile = column(DECISION);
                     EXPECT_EQ(dynamic_cast<ahAssertDialog*>(tsTopModalDialog()) != nullptr, true);
                     tsPressKeys("alt+i");
                 })
        .start();
    fail(1);
    EXPECT_TRUE(script.isFinished());
    settle();
    EXPECT_EQ(tsTopModalDialog(), nullptr);
    EXPECT_THAT(decisionsMeanwhile, ElementsAre("none", "none", "none"));
    EXPECT_THAT(column(PLACE), ElementsAre("aFile.cpp:1", "aFile.cpp:2", "aFile.cpp:3"));
    EXPECT_THAT(column(COUNT), ElementsAre("2", "1", "1"));
    EXPECT_THAT(column(DECISION), ElementsAre("ignore", "none", "none"));
    EXPECT_THAT(column(THREAD)[2], testing::Not(HasSubstr("main")));
}

TEST_F(AssertionReportWindow, TellsOfADialogThatWasClosed)
{
    startWithReport();
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &hasDialogKeyboard)
        .perform("close it", [] { dynamic_cast<ahAssertDialog*>(tsTopModalDialog())->Close(); })
        .start();
    fail(1);
    settle();
    EXPECT_THAT(column(DECISION), ElementsAre("closed"));
}

TEST_F(AssertionReportWindow, IsCopied)
{
    startWithReport();
    failWithDialog(7, "alt+i");
    failWithDialog(8, "alt+i");
    window()->Raise();
    tsRunUntil("the report has the keyboard again", [this] { return tsHasKeyboard(*window()); });
    tsRunUntil("there is something to copy", [this] { return isEnabled(wxID_COPY); });
    tsClick(*window()->FindWindow(wxID_COPY));
    tsRunUntil("all is copied", [] { return clipboardText().Freq('\n') == 3; });
    EXPECT_THAT(clipboardText().utf8_string(), StartsWith("File\tLine\tCount\tFirst\tLast\tThread\tDecision"));
    EXPECT_THAT(clipboardText().utf8_string(), HasSubstr("\n/source/aFile.cpp\t7\t1\t"));

    wxWindow* pList = wxWindow::FindWindowByName("assertionReport", window());
    pList->SetFocus();
    tsPressKeys("End");
    tsPressKeys("ctrl+c");
    tsRunUntil("one row is copied", [] { return clipboardText().Freq('\n') == 2; });
    EXPECT_THAT(clipboardText().utf8_string(), HasSubstr("\n/source/aFile.cpp\t8\t1\t"));
    EXPECT_THAT(clipboardText().utf8_string(), HasSubstr("\tignore\taFunction\tAssertion failure (x != 0)\t"));
}

TEST_F(AssertionReportWindow, IsSaved)
{
    startWithReport();
    failWithDialog(7, "Return");
    settle();
    window()->Raise();
    tsRunUntil("the report has the keyboard again", [this] { return tsHasKeyboard(*window()); });
    const std::string path = _folder.path("report.tsv");
    const auto isFileDialogUp = [] { return isActive("Save the assertion report"); };
    {
        tsScript script;
        script.waitUntil("the file dialog has the keyboard", isFileDialogUp)
            .perform("choose the whole name", [] { tsPressKeys("ctrl+a"); })
            .perform("paste the path", [&] { tsPaste(path); })
            .perform("press Return", [] { tsPressKeys("Return"); })
            .start();
        tsPressKeys("ctrl+s");
        tsRunUntil("the file is there", [&] { return std::filesystem::exists(path); });
    }
    EXPECT_THAT(_folder.read("report.tsv"), StartsWith("File\tLine\t"));
    EXPECT_THAT(_folder.read("report.tsv"), HasSubstr("\n/source/aFile.cpp\t7\t1\t"));

    // Not in the place of another file, unless that is wanted. The dialog begins in the current folder, with this name.
    _folder.write("assertions.tsv", "kept");
    const std::filesystem::path folderBefore = std::filesystem::current_path();
    std::filesystem::current_path(_folder.path());
    const auto isReplaced = [this] { return _folder.read("assertions.tsv") != "kept"; };
    tsRunUntil("the report has the keyboard again", [this] { return tsHasKeyboard(*window()); });
    {
        tsScript script;
        script.waitUntil("the file dialog has the keyboard", isFileDialogUp)
            .perform("press Return", [] { tsPressKeys("Return"); })
            .waitUntil("the question is up, or the file is replaced", [&] { return isActive("") || isReplaced(); })
            .perform("refuse", [] { tsPressKeys("Escape"); })
            .waitUntil("it has gone back", [&] { return isFileDialogUp() || isReplaced(); })
            .perform("cancel", [] { tsPressKeys("Escape"); })
            .start();
        tsPressKeys("ctrl+s");
        tsRunUntil("the dialog is closed", [&] { return script.isFinished() && !isFileDialogUp(); });
    }
    std::filesystem::current_path(folderBefore);
    EXPECT_EQ(_folder.read("assertions.tsv"), "kept");

    fail(7, "not \xff UTF-8");
    settle();
    EXPECT_TRUE(window()->saveAs(path));
    EXPECT_THAT(_folder.read("report.tsv"), HasSubstr("\tnot \xc3\xbf UTF-8\t"));
}

TEST_F(AssertionReportWindow, SaysHowManyAreNotListed)
{
    start();
    const auto pReport = std::make_shared<arAssertionReport>();
    const int most = static_cast<int>(arAssertionReport::mostRows);
    for (int line = 1; line <= most + 3; ++line)
    {
        pReport->record("aFunction", "/source/aFile.cpp", line, "Assertion failure (x != 0)", 1, 1);
    }
    const arAssertionReportWindow full(_pFrame, pReport);
    EXPECT_EQ(wxWindow::FindWindowByName("assertionReportHeading", &full)->GetLabel(),
              "10,003 failures at 10,000 places, 3 of them elsewhere and not listed.");
}

TEST_F(AssertionReportWindow, SaysWhyItCannotBeSaved)
{
    startWithReport();
    std::string title;
    tsScript script;
    script
        .waitUntil("a message has the keyboard",
                   []
                   {
                       std::string name;
                       tsRunProgram({"xdotool", "getactivewindow", "getwindowname"}, &name);
                       return tsTopModalDialog() != nullptr || name == "Assertion report\n";
                   })
        .perform("leave it", [] { tsPressKeys("Return"); })
        .start();
    EXPECT_FALSE(window()->saveAs(_folder.path("missing/report.tsv")));
}

TEST_F(AssertionReportWindow, MayBeOpenWhenTheMainWindowCloses)
{
    startWithReport();
    closeWindow();
}
