// SPDX-License-Identifier: Apache-2.0
// The dialog that makes key pairs, by keys and mouse.
#include "tests/host/Question.h"
#include "tests/host/window/BareFrame.h"

#include "host/keys/hoKeyFile.h"
#include "host/keys/hoKeyRing.h"
#include "host/window/hoNewKeyDialog.h"

#include <gmock/gmock.h>
#include <wx/combobox.h>
#include <wx/control.h>
#include <wx/panel.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;

class NewKeyDialog : public BareFrame
{
protected:
    void SetUp() override
    {
        BareFrame::SetUp();
        showWith(new wxPanel(_pFrame));
        _pDialog = std::make_unique<hoNewKeyDialog>(_pFrame, gtString(_folder.path() + "/"));
        _script.waitUntil("the dialog has the keyboard", [this] { return tsHasKeyboard(*_pDialog); });
    }
    void TearDown() override
    {
        _pDialog.reset();
        BareFrame::TearDown();
    }

    int show()
    {
        _script.waitUntil("the dialog is gone", [this] { return !_pDialog->IsModal(); }).start();
        const int answer = _pDialog->ShowModal();
        tsRunUntil("the script has seen it", [this] { return _script.isFinished(); });
        return answer;
    }
    wxWindow* find(const std::string& name) const { return wxWindow::FindWindowByName(name, _pDialog.get()); }
    wxTextCtrl& input(const std::string& name) const { return *dynamic_cast<wxTextCtrl*>(find(name)); }
    void setSize(const char* pText) const { dynamic_cast<wxComboBox*>(find("bits"))->SetValue(pText); }
    std::string said() const
    {
        // Long lines are broken.
        wxString label = find("said")->GetLabel();
        label.Replace("\n", " ");
        return label.utf8_string();
    }
    std::string publicFile() const { return find("publicFile")->GetLabel().utf8_string(); }
    // Everything that is agreed by it is agreed when this returns.
    void create() const
    {
        wxCommandEvent press(wxEVT_BUTTON, wxID_OK);
        _pDialog->FindWindow(wxID_OK)->ProcessWindowEvent(press);
    }
    std::vector<std::string> enabled() const
    {
        std::vector<std::string> names;
        for (const char* pName : {"bits", "file", "browse", "passphrase", "again", "show"})
        {
            if (find(pName)->IsEnabled())
            {
                names.emplace_back(pName);
            }
        }
        return names;
    }
    // The text of every label has the room that it takes.
    void expectNothingClipped() const
    {
        for (const wxWindow* pChild : _pDialog->GetChildren())
        {
            const auto* pLabel = dynamic_cast<const wxStaticText*>(pChild);
            if (pLabel != nullptr && pLabel != find("publicFile"))
            {
                EXPECT_GE(pLabel->GetSize().GetWidth(), pLabel->GetBestSize().GetWidth()) << pLabel->GetLabel();
                EXPECT_GE(pLabel->GetSize().GetHeight(), pLabel->GetBestSize().GetHeight()) << pLabel->GetLabel();
            }
        }
    }
    bool isFile(const std::string& name) const { return std::filesystem::is_regular_file(_folder.path(name)); }
    // What has the keyboard now, by its name; a part of a control counts as the control.
    std::string focused() const
    {
        const wxWindow* pWindow = wxWindow::FindFocus();
        while (pWindow != nullptr && pWindow->GetParent() != _pDialog.get())
        {
            pWindow = pWindow->GetParent();
        }
        if (pWindow == nullptr)
        {
            return "nothing";
        }
        const bool isButton = pWindow->GetId() == wxID_OK || pWindow->GetId() == wxID_CANCEL;
        return (isButton ? wxControl::RemoveMnemonics(pWindow->GetLabel()) : pWindow->GetName()).utf8_string();
    }
    tsScript& focusBy(const std::string& keys, const std::string& name)
    {
        return _script.perform("press " + keys, [keys] { tsPressKeys(keys); })
            .waitUntil(name + " has the keyboard", [this, name] { return focused() == name; });
    }

    std::unique_ptr<hoNewKeyDialog> _pDialog;
    tsScript _script;
};
}  // namespace

TEST_F(NewKeyDialog, FreezesWhatIsAgreedAtCreate)
{
    _script.perform("create, and change what can no longer be changed",
                    [this]
                    {
                        setSize("512");
                        input("file").SetValue("agreed.pem");
                        _folder.write("agreed.pub.pem.other", "stays");
                        create();
                        EXPECT_THAT(enabled(), ElementsAre());
                        EXPECT_FALSE(_pDialog->FindWindow(wxID_OK)->IsEnabled());
                        input("file").ChangeValue(wxString::FromUTF8(_folder.write("other.pem", "stays")));
                    });
    EXPECT_EQ(show(), wxID_OK);
    EXPECT_EQ(_pDialog->privateKeyPath(), gtString(_folder.path("agreed.pem")));
    EXPECT_TRUE(isFile("agreed.pem"));
    EXPECT_TRUE(isFile("agreed.pub.pem"));
    EXPECT_EQ(_folder.read("other.pem"), "stays");
    const std::filesystem::directory_iterator entries(_folder.path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 4) << "what the folder was tried by is still there";
}

TEST_F(NewKeyDialog, CanBeCancelledByEscapeWhileItWorks)
{
    _script
        .perform("create a key that takes long",
                 [this]
                 {
                     setSize("4096");
                     create();
                 })
        .perform("press Escape", [] { tsPressKeys("Escape"); });
    const int answer = show();
    // The key may have been quicker.
    EXPECT_EQ(isFile("countersign-key.pem"), answer == wxID_OK);
    EXPECT_EQ(isFile("countersign-key.pub.pem"), answer == wxID_OK);
}

TEST_F(NewKeyDialog, CanBeCancelledAsSoonAsItWorks)
{
    _script.perform("create a key, and cancel before it can be made",
                    [this]
                    {
                        setSize("4096");
                        create();
                        EXPECT_THAT(enabled(), ElementsAre());
                        wxCommandEvent press(wxEVT_BUTTON, wxID_CANCEL);
                        _pDialog->FindWindow(wxID_CANCEL)->ProcessWindowEvent(press);
                    });
    EXPECT_EQ(show(), wxID_CANCEL);
    EXPECT_TRUE(std::filesystem::is_empty(_folder.path()));
}

// About each of the two for itself.
TEST_F(NewKeyDialog, AsksBeforeItReplacesAFile)
{
    _folder.write("countersign-key.pem", "private");
    _folder.write("countersign-key.pub.pem", "public");
    const auto expectNothingDone = [this]
    {
        EXPECT_EQ(enabled().size(), 6U) << "nothing has begun";
        EXPECT_EQ(_folder.read("countersign-key.pem"), "private");
        EXPECT_EQ(_folder.read("countersign-key.pub.pem"), "public");
    };
    const auto isPrivateAsked = []
    { return shownQuestion().find("countersign-key.pem is there") != std::string::npos; };
    const auto isPublicAsked = []
    { return shownQuestion().find("countersign-key.pub.pem is there") != std::string::npos; };
    const auto isAnswered = [this] { return tsHasKeyboard(*_pDialog); };
    // Return takes the button that the keyboard is on at first.
    for (const char* pAnswer : {"Return", "Escape", "alt+k"})
    {
        _script.perform("create", [this] { create(); })
            .waitUntil("the private file is asked about", isPrivateAsked)
            .perform("keep it", [=] { tsPressKeys(pAnswer); })
            .waitUntil("it is answered", isAnswered)
            .perform("look", expectNothingDone)
            .perform("create", [this] { create(); })
            .waitUntil("the private file is asked about", isPrivateAsked)
            .perform("replace it", [] { tsPressKeys("alt+r"); })
            .waitUntil("the public file is asked about", isPublicAsked)
            .perform("keep it", [=] { tsPressKeys(pAnswer); })
            .waitUntil("it is answered", isAnswered)
            .perform("look", expectNothingDone);
    }
    _script
        .perform("create",
                 [this]
                 {
                     setSize("512");
                     create();
                 })
        .waitUntil("the private file is asked about", isPrivateAsked)
        .perform("replace it", [] { tsPressKeys("alt+r"); })
        .waitUntil("the public file is asked about", isPublicAsked)
        .perform("replace it, too", [] { tsPressKeys("alt+r"); });
    EXPECT_EQ(show(), wxID_OK);
    EXPECT_THAT(_folder.read("countersign-key.pem"), HasSubstr("PRIVATE KEY"));
    EXPECT_THAT(_folder.read("countersign-key.pub.pem"), HasSubstr("PUBLIC KEY"));
}

TEST_F(NewKeyDialog, ReplacesNoFileThatCameAfterTheQuestion)
{
    _folder.write("countersign-key.pub.pem", "public");
    _script
        .perform("create, and let another private key come",
                 [this]
                 {
                     setSize("512");
                     create();
                     _folder.write("countersign-key.pem", "came meanwhile");
                 })
        .waitUntil("the public file is asked about", [] { return !shownQuestion().empty(); })
        .perform("replace it", [] { tsPressKeys("alt+r"); })
        .waitUntil("it has ended, or another place is asked for",
                   [this] { return !_pDialog->IsModal() || said().find("made and not saved") != std::string::npos; })
        .perform("look, and leave",
                 [this]
                 {
                     EXPECT_EQ(_folder.read("countersign-key.pem"), "came meanwhile");
                     if (_pDialog->IsModal())
                     {
                         tsPressKeys("Escape");
                     }
                 })
        .waitUntil("it has ended, or it is asked whether the key is not wanted",
                   [this] { return !_pDialog->IsModal() || !shownQuestion().empty(); })
        .perform("throw it away", [] { tsPressKeys("alt+t"); });
    EXPECT_EQ(show(), wxID_CANCEL);
}

TEST_F(NewKeyDialog, RefusesAFolderForItsFile)
{
    std::filesystem::create_directory(_folder.path("countersign-key.pem"));
    _script.perform("create", [this] { create(); })
        .waitUntil("it is refused or asked about",
                   [this] { return said().find("Name a file.") != std::string::npos || !shownQuestion().empty(); })
        .perform("look",
                 [this]
                 {
                     EXPECT_THAT(said(), testing::EndsWith("countersign-key.pem is a folder. Name a file."));
                     EXPECT_EQ(enabled().size(), 6U) << "nothing has begun";
                     if (!shownQuestion().empty())
                     {
                         tsPressKeys("Escape");
                     }
                 })
        .waitUntil("the dialog has the keyboard", [this] { return tsHasKeyboard(*_pDialog); })
        .perform("leave", [] { tsPressKeys("Escape"); });
    EXPECT_EQ(show(), wxID_CANCEL);
}

TEST_F(NewKeyDialog, TriesTheFolderBeforeItMakesAKey)
{
    _script
        .perform("name a folder that is not there",
                 [this]
                 {
                     input("file").SetValue("missing/key.pem");
                     create();
                     EXPECT_EQ(enabled().size(), 6U) << "nothing has begun";
                     EXPECT_THAT(said(), testing::StartsWith("No file can be made in "));
                     EXPECT_THAT(said(), testing::EndsWith("/missing/: No such file or directory."));
                     EXPECT_EQ(input("file").GetValue().utf8_string(), _folder.path("missing/key.pem"));
                     expectNothingClipped();
                 })
        .perform("press Escape", [] { tsPressKeys("Escape"); });
    EXPECT_EQ(show(), wxID_CANCEL);
    EXPECT_TRUE(std::filesystem::is_empty(_folder.path()));
}

// No program could load such a key again.
TEST_F(NewKeyDialog, RefusesAPassphraseThatNoKeyFileTakes)
{
    _script
        .perform("give a long passphrase",
                 [this]
                 {
                     // Two bytes a character.
                     const wxString passphrase(static_cast<wchar_t>(0xE9), hoLongestPassphrase / 2);
                     input("passphrase").SetValue(passphrase + "x");
                     input("again").SetValue(passphrase + "x");
                     create();
                     EXPECT_EQ(said(), "The passphrase is too long; a key file takes up to 1024 bytes.");
                     EXPECT_EQ(enabled().size(), 6U) << "nothing has begun";
                     expectNothingClipped();
                     input("passphrase").SetValue(passphrase);
                     input("again").SetValue(passphrase);
                     create();
                 })
        .waitUntil("it has ended", [this] { return !_pDialog->IsModal(); });
    EXPECT_EQ(show(), wxID_OK);
    EXPECT_TRUE(isFile("countersign-key.pem"));
}

TEST_F(NewKeyDialog, KeepsAFinishedKeyUntilItIsSaved)
{
    _script
        .perform("let something take the name after it was agreed",
                 [this]
                 {
                     setSize("512");
                     create();
                     std::filesystem::create_directory(_folder.path("countersign-key.pem"));
                 })
        .waitUntil("another place is asked for",
                   [this] { return said().find("made and not saved") != std::string::npos; })
        .perform("look, and leave",
                 [this]
                 {
                     EXPECT_THAT(enabled(), ElementsAre("file", "browse"));
                     EXPECT_FALSE(isFile("countersign-key.pub.pem")) << "half a pair";
                     expectNothingClipped();
                     tsPressKeys("Escape");
                 })
        .waitUntil("it is asked whether the key is not wanted", [this] { return !tsHasKeyboard(*_pDialog); })
        .perform("go back by Return", [] { tsPressKeys("Return"); })
        .waitUntil("the dialog has the keyboard again", [this] { return tsHasKeyboard(*_pDialog); })
        .perform("name another place",
                 [this]
                 {
                     input("file").SetValue("saved.pem");
                     tsPressKeys("alt+v");
                 });
    EXPECT_EQ(show(), wxID_OK);
    EXPECT_EQ(_pDialog->privateKeyPath(), gtString(_folder.path("saved.pem")));
    hoKeyFileFacts facts;
    const auto pKey = hoLoadKeyFile(_pDialog->privateKeyPath(), nullptr, facts);
    ASSERT_NE(pKey, nullptr);
    const auto pPublic = hoLoadKeyFile(gtString(_folder.path("saved.pub.pem")), nullptr, facts);
    ASSERT_NE(pPublic, nullptr);
    EXPECT_EQ(hoShortFingerprint(*pKey), hoShortFingerprint(*pPublic));
}

TEST_F(NewKeyDialog, ThrowsAFinishedKeyAwayWhenItIsToldTo)
{
    _script
        .perform("let something take the name after it was agreed",
                 [this]
                 {
                     setSize("512");
                     create();
                     std::filesystem::create_directory(_folder.path("countersign-key.pem"));
                 })
        .waitUntil("another place is asked for",
                   [this] { return said().find("made and not saved") != std::string::npos; })
        .perform("leave", [] { tsPressKeys("Escape"); })
        .waitUntil("it is asked whether the key is not wanted", [this] { return !tsHasKeyboard(*_pDialog); })
        .perform("throw it away", [] { tsPressKeys("alt+t"); });
    EXPECT_EQ(show(), wxID_CANCEL);
    EXPECT_FALSE(isFile("countersign-key.pub.pem"));
}

TEST_F(NewKeyDialog, NamesBothFilesInFull)
{
    _script
        .perform("type a relative name",
                 [this]
                 {
                     EXPECT_EQ(publicFile(), _folder.path("countersign-key.pub.pem"));
                     input("file").SetFocus();
                     tsPressKeys("ctrl+a");
                     tsType("./alice");
                 })
        .waitUntil("the public file is named", [this] { return publicFile() == _folder.path("alice.pub.pem"); })
        .perform("create",
                 [this]
                 {
                     setSize("512");
                     create();
                     EXPECT_EQ(input("file").GetValue().utf8_string(), _folder.path("alice"));
                 });
    EXPECT_EQ(show(), wxID_OK);
    EXPECT_TRUE(isFile("alice"));
    EXPECT_TRUE(isFile("alice.pub.pem"));
}

TEST_F(NewKeyDialog, IsWalkedThroughAsItIsSeen)
{
    _script.perform("look", [this] { expectNothingClipped(); });
    focusBy("alt+f", "file");
    focusBy("Tab", "browse");
    focusBy("Tab", "passphrase");
    focusBy("Tab", "again");
    focusBy("Tab", "show");
    focusBy("Tab", "Cancel");
    focusBy("Tab", "Create");
    focusBy("alt+p", "passphrase");
    focusBy("alt+a", "again");
    _script.perform("press Escape", [] { tsPressKeys("Escape"); });
    EXPECT_EQ(show(), wxID_CANCEL);
}

TEST_F(NewKeyDialog, ShowsThePassphraseWhenItIsToldTo)
{
    const auto areHidden = [this](bool expected) {
        return input("passphrase").HasFlag(wxTE_PASSWORD) == expected &&
               input("again").HasFlag(wxTE_PASSWORD) == expected;
    };
    _script.waitUntil("it is hidden at first", [=] { return areHidden(true); })
        .perform("show it", [] { tsPressKeys("alt+h"); })
        .waitUntil("it is shown", [=] { return areHidden(false); })
        .perform("hide it", [] { tsPressKeys("alt+h"); })
        .waitUntil("it is hidden", [=] { return areHidden(true); })
        .perform("press Escape", [] { tsPressKeys("Escape"); });
    EXPECT_EQ(show(), wxID_CANCEL);
}
