// SPDX-License-Identifier: Apache-2.0
// What the Key menu tells of keys and remembers of them, and the steps that the empty window names.
#include "tests/host/MainFrameFixture.h"
#include "tests/host/NewKey.h"

#include "host/keys/hoPublicKey.h"
#include "host/window/hoDocumentDropTarget.h"
#include "host/window/hoKeyInformationDialog.h"

#include <gmock/gmock.h>
#include <wx/button.h>
#include <wx/clipbrd.h>
#include <wx/textctrl.h>

namespace
{
using testing::HasSubstr;

class KeyMenu : public MainFrameFixture
{
protected:
    void loadKey()
    {
        const std::string path = _folder.write("mine.pem", newKeyText(1024));
        std::filesystem::permissions(path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
        static_cast<hoDocumentDropTarget*>(_pFrame->GetDropTarget())->drop("file://" + path + "\r\n");
        tsRunUntil("the key is loaded", [this] { return _pFrame->keys().canSign(); });
        settle();
    }
    static bool isActive(const std::string& title)
    {
        std::string found;
        tsRunProgram({"xdotool", "getactivewindow", "getwindowname"}, &found);
        return found == title + "\n";
    }
    static bool isInformationUp()
    {
        const auto* pDialog = dynamic_cast<hoKeyInformationDialog*>(tsTopModalDialog());
        return pDialog != nullptr && tsHasKeyboard(*pDialog);
    }
};
}  // namespace

TEST_F(KeyMenu, TellsOfTheKeyAndExportsItsPublicHalf)
{
    start();
    loadKey();
    const hoKey& key = *_pFrame->keys()._private._pKey;
    const std::filesystem::path folderBefore = std::filesystem::current_path();
    std::filesystem::current_path(_folder.path());
    std::string text;
    tsScript script;
    script.waitUntil("the information has the keyboard", isInformationUp)
        .perform("read and copy",
                 [&]
                 {
                     const wxWindow* const pText = wxWindow::FindWindowByName("keyInformation", tsTopModalDialog());
                     text = dynamic_cast<const wxTextCtrl*>(pText)->GetValue().utf8_string();
                     tsPressKeys("alt+a");
                 })
        .waitUntil("it is copied",
                   [&]
                   {
                       const wxClipboardLocker clipboard;
                       wxTextDataObject copied;
                       return wxTheClipboard->GetData(copied) && copied.GetText().utf8_string() == text;
                   })
        .perform("export", [] { tsPressKeys("alt+e"); })
        .waitUntil("the file dialog is up", [] { return isActive("Export the public key"); })
        .perform("press Return", [] { tsPressKeys("Return"); })
        .waitUntil("the file is written", [this] { return std::filesystem::exists(_folder.path("mine.pub.pem")); })
        .waitUntil("the information has the keyboard", isInformationUp)
        .perform("close it", [] { tsPressKeys("Escape"); })
        .start();
    tsPressKeys("ctrl+i");
    tsRunUntil("the information is closed", [&] { return script.isFinished() && tsTopModalDialog() == nullptr; });
    std::filesystem::current_path(folderBefore);
    EXPECT_THAT(text, HasSubstr("Private key of 1024 bits\n"));
    EXPECT_THAT(text, HasSubstr("File: " + _folder.path("mine.pem")));
    EXPECT_THAT(text, HasSubstr(hoFingerprint(key).asStdString()));
    EXPECT_THAT(text, HasSubstr(hoShortFingerprint(key).asStdString()));
    EXPECT_THAT(text, testing::Not(HasSubstr("Public key of")));
    EXPECT_EQ(_folder.read("mine.pub.pem"), hoPublicKeyPem(key).asStdString());
}

// In a list the key is another one's: the one that goes to the next control.
TEST_F(KeyMenu, TellsOfTheKeyWhileTheListHasTheKeyboard)
{
    start();
    openAskedFor(_folder.write("a.txt", "x"));
    tsPressKeys("ctrl+i");
    settle();
    EXPECT_EQ(tsTopModalDialog(), nullptr) << "there is no key";
    loadKey();
    tsScript script;
    script.waitUntil("the information has the keyboard", isInformationUp)
        .perform("close it", [] { tsPressKeys("Escape"); })
        .start();
    tsPressKeys("ctrl+i");
    tsRunUntil("the information is closed", [&] { return script.isFinished() && tsTopModalDialog() == nullptr; });
}

TEST_F(KeyMenu, RemembersTheFilesOfKeys)
{
    start();
    loadKey();
    closeWindow();
    wxGetApp().OnExit();
    EXPECT_THAT(_folder.read("config/countersign/settings"),
                HasSubstr("recentKey.1=" + _folder.path("mine.pem") + "\n"));

    start();
    EXPECT_FALSE(_pFrame->keys().canSign());
    openMenu("alt+k");
    openSubmenu("e");
    tsPressKeys("1");
    tsRunUntil("the key is loaded", [this] { return _pFrame->keys().canSign(); });
    openMenu("alt+k");
    openSubmenu("e");
    tsPressKeys("c");
    tsRunUntil("the list is empty",
               [this] { return _folder.read("config/countersign/settings").find("recentKey") == std::string::npos; });
}

TEST_F(KeyMenu, IsTheFirstStepOfTheEmptyWindow)
{
    start();
    struct Step
    {
        const char* _button;
        const char* _window;
    };
    for (const Step& step :
         {Step{"Load private key...", "Load a private key"}, Step{"Load public key...", "Load a public key"},
          Step{"New key pair...", "New key pair"}, Step{"Open documents...", "Open documents"}})
    {
        const wxWindow* pButton = nullptr;
        for (const wxWindow* pChild : wxWindow::FindWindowByName("emptyLine", _pFrame)->GetParent()->GetChildren())
        {
            if (dynamic_cast<const wxButton*>(pChild) != nullptr &&
                wxControl::RemoveMnemonics(pChild->GetLabel()) == step._button)
            {
                pButton = pChild;
            }
        }
        ASSERT_NE(pButton, nullptr) << step._button;
        tsScript script;
        script.waitUntil("its window is up", [&] { return isActive(step._window); })
            .perform("close it", [] { tsPressKeys("Escape"); })
            .start();
        tsClick(*pButton);
        tsRunUntil("it is closed", [&] { return script.isFinished() && tsHasKeyboard(*_pFrame); });
    }
    openAskedFor(_folder.write("a.txt", "x"));
    EXPECT_FALSE(wxWindow::FindWindowByName("emptyLine", _pFrame)->IsShownOnScreen());
}
