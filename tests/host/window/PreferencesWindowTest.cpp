// SPDX-License-Identifier: Apache-2.0
// The preferences by the keyboard alone, and what comes of them at the next start.
#include "tests/host/MainFrameFixture.h"

#include "host/window/hoPreferencesDialog.h"
#include "platform/toolkit/gtTextSize.h"

#include <gmock/gmock.h>

namespace
{
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class PreferencesWindow : public MainFrameFixture
{
protected:
    void TearDown() override
    {
        MainFrameFixture::TearDown();
        gtSetTextSize(0);
    }

    static bool isDialogUp()
    {
        const auto* pDialog = dynamic_cast<hoPreferencesDialog*>(tsTopModalDialog());
        return pDialog != nullptr && tsHasKeyboard(*pDialog);
    }

    // Calls the dialog up, presses these one after the other, and waits until it is closed.
    void pressInDialog(const std::vector<std::string>& keys)
    {
        tsScript script;
        script.waitUntil("the preferences have the keyboard", isDialogUp);
        for (const std::string& key : keys)
        {
            script.perform("press " + key, [key] { tsPressKeys(key); });
        }
        script.start();
        tsRunUntil("the main window has the keyboard", [this] { return tsHasKeyboard(*_pFrame); });
        tsPressKeys("ctrl+comma");
        tsRunUntil("the preferences are closed", [&] { return script.isFinished() && tsTopModalDialog() == nullptr; });
        settle();
    }

    std::string settings() const { return _folder.read("config/countersign/settings"); }
};
}  // namespace

TEST_F(PreferencesWindow, AreChosenByTheKeyboardAlone)
{
    start({"countersign-desktop", _folder.write("a.txt", "x")});
    EXPECT_THAT(settings(), HasSubstr("recent.1="));
    pressInDialog({"alt+r", "Escape"});
    EXPECT_THAT(settings(), HasSubstr("recent.1="));
    // The key of a label goes to its choice, which takes the arrow keys.
    pressInDialog({"alt+p", "alt+r", "alt+f", "alt+s", "Down", "alt+t", "Down", "alt+o"});
    EXPECT_THAT(settings(),
                AllOf(HasSubstr("remember.place=0\n"), HasSubstr("remember.recent=0\n"), HasSubstr("offerKey=0\n"),
                      HasSubstr("signedDocuments=1\n"), HasSubstr("textPoints=8\n"), HasSubstr("jobs=0\n")));
    EXPECT_THAT(settings(), AllOf(Not(HasSubstr("recent.1=")), Not(HasSubstr("window."))));
    closeWindow();
    wxGetApp().OnExit();
    EXPECT_THAT(settings(), AllOf(Not(HasSubstr("recent.1=")), Not(HasSubstr("window.")), Not(HasSubstr("folder="))));
}

TEST_F(PreferencesWindow, GiveTheTextItsSizeAtTheNextStart)
{
    start();
    const int usual = _pFrame->GetStatusBar()->GetTextExtent("Countersign").GetHeight();
    closeWindow();
    wxGetApp().OnExit();
    std::filesystem::create_directories(_folder.path("config/countersign"));
    _folder.write("config/countersign/settings", "textPoints=28\n");
    start();
    EXPECT_GT(_pFrame->GetStatusBar()->GetTextExtent("Countersign").GetHeight(), 3 * usual / 2);
    closeWindow();
    wxGetApp().OnExit();
    _folder.write("config/countersign/settings", "");
    start();
    EXPECT_EQ(_pFrame->GetStatusBar()->GetTextExtent("Countersign").GetHeight(), usual);
}
