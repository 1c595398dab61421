// SPDX-License-Identifier: Apache-2.0
// What the Key menu tells of keys and remembers of them, and the steps that the empty window names.
#include "tests/host/MainFrameFixture.h"
#include "tests/host/Question.h"

#include "host/keys/hoPublicKey.h"
#include "host/signing/hoFileSigning.h"
#include "host/window/hoKeyInformationDialog.h"

#include <gmock/gmock.h>
#include <gtk/gtk.h>
#include <wx/button.h>
#include <wx/choicdlg.h>
#include <wx/clipbrd.h>
#include <wx/textctrl.h>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;

class KeyMenu : public MainFrameFixture
{
protected:
    static bool isInformationUp()
    {
        const auto* pDialog = dynamic_cast<hoKeyInformationDialog*>(tsTopModalDialog());
        return pDialog != nullptr && tsHasKeyboard(*pDialog);
    }

    // What the information says.
    std::string readInformation()
    {
        std::string text;
        tsScript script;
        script.waitUntil("the information has the keyboard", isInformationUp)
            .perform("read and close it",
                     [&]
                     {
                         const wxWindow* const pText = wxWindow::FindWindowByName("keyInformation", tsTopModalDialog());
                         text = dynamic_cast<const wxTextCtrl*>(pText)->GetValue().utf8_string();
                         tsPressKeys("Escape");
                     })
            .start();
        tsPressKeys("ctrl+i");
        tsRunUntil("the information is closed", [&] { return script.isFinished() && tsTopModalDialog() == nullptr; });
        return text;
    }

    // Makes a document and its signature by a key of its own, whose public half is in keys/NAME.pub.pem.
    std::string writeSigned(const std::string& document, const std::string& name) const
    {
        const std::shared_ptr<const hoKey> pKey = newKey(1024);
        std::string path = _folder.write(document, "text of " + document);
        gtString signature;
        EXPECT_TRUE(hoSignFile(path.c_str(), *pKey, hoSignatureLines::Both, nullptr, signature).isOk());
        _folder.write(document + ".sig", signature.asStdString());
        std::filesystem::create_directories(_folder.path("keys"));
        _folder.write("keys/" + name + ".pub.pem", hoPublicKeyPem(*pKey).asStdString());
        return path;
    }
};
}  // namespace

TEST_F(KeyMenu, TellsOfTheKeyAndExportsItsPublicHalf)
{
    start();
    dropNewKey();
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
    handleAllKeys();
    EXPECT_EQ(tsTopModalDialog(), nullptr) << "there is no key";
    dropNewKey();
    tsScript script;
    script.waitUntil("the information has the keyboard", isInformationUp)
        .perform("close it", [] { tsPressKeys("Escape"); })
        .start();
    tsPressKeys("ctrl+i");
    tsRunUntil("the information is closed", [&] { return script.isFinished() && tsTopModalDialog() == nullptr; });
}

TEST_F(KeyMenu, ExportsNothingOverTheFileOfAKey)
{
    start();
    dropNewKey();
    const std::string before = _folder.read("mine.pem");
    const std::filesystem::path folderBefore = std::filesystem::current_path();
    std::filesystem::create_hard_link(_folder.path("mine.pem"), _folder.path("link.pem"));
    std::filesystem::current_path(_folder.path());
    const auto isToolkitsQuestionUp = [] { return isActive(""); };
    tsScript script;
    script.waitUntil("the information has the keyboard", isInformationUp)
        .perform("export", [] { tsPressKeys("alt+e"); })
        .waitUntil("the file dialog is up", [] { return isActive("Export the public key"); })
        .perform("choose the key's own file",
                 []
                 {
                     tsPressKeys("ctrl+a");
                     tsPaste("link.pem");
                     tsPressKeys("Return");
                 })
        .waitUntil("the question is up", isToolkitsQuestionUp)
        .perform("agree to replace it", [] { tsPressKeys("alt+r"); })
        .waitUntil("the refusal is up",
                   [] { return shownQuestion().find("it is the file of a loaded key") != std::string::npos; })
        .perform("close it", [] { tsPressKeys("Escape"); })
        .waitUntil("the information has the keyboard", isInformationUp)
        .perform("close it, too", [] { tsPressKeys("Escape"); })
        .start();
    tsPressKeys("ctrl+i");
    tsRunUntil("the information is closed", [&] { return script.isFinished() && tsTopModalDialog() == nullptr; });
    std::filesystem::current_path(folderBefore);
    EXPECT_EQ(_folder.read("mine.pem"), before);
    EXPECT_EQ(_folder.read("link.pem"), before);
}

TEST_F(KeyMenu, TestsWithSeveralPublicKeysAndForgetsOne)
{
    start({"countersign-desktop", writeSigned("a.txt", "lab"), writeSigned("b.txt", "office"),
           _folder.write("c.txt", "unsigned")});
    const std::string uris =
        "file://" + _folder.path("keys/lab.pub.pem") + "\r\nfile://" + _folder.path("keys/office.pub.pem") + "\r\n";
    static_cast<hoDocumentDropTarget*>(_pFrame->GetDropTarget())->drop(uris);
    tsRunUntil("both keys are loaded", [this] { return _pFrame->keys()._publics.size() == 2; });
    settle();
    EXPECT_THAT(status(1), HasSubstr("2 public keys"));
    const std::string information = readInformation();
    EXPECT_THAT(information, HasSubstr("File: " + _folder.path("keys/lab.pub.pem")));
    EXPECT_THAT(information, HasSubstr("File: " + _folder.path("keys/office.pub.pem")));

    work("ctrl+shift+t");
    EXPECT_THAT(rows(1), ElementsAre("Good \u00b7 lab.pub.pem", "Good \u00b7 office.pub.pem", "Not signed"));
    EXPECT_GE(list().columnWidths().at(1), list().GetTextExtent(wxString::FromUTF8(rows(1)[1])).GetWidth());
    EXPECT_THAT(_pFrame->workMessage()._details.utf8_string(), HasSubstr("\n    good \u00b7 office.pub.pem\n"));

    openMenu("alt+k");
    openSubmenu("o");
    tsPressKeys("1");
    tsRunUntil("the first key is gone", [this] { return _pFrame->keys()._publics.size() == 1; });
    settle();
    EXPECT_THAT(rows(1), ElementsAre("Not tested", "Not tested", "Not signed"));
    work("ctrl+shift+t");
    EXPECT_THAT(rows(1), ElementsAre("Another key", "Good", "Not signed"));
}

TEST_F(KeyMenu, LoadsSeveralPublicKeysThatAreChosenAtOnce)
{
    writeSigned("a.txt", "lab");
    writeSigned("b.txt", "office");
    std::filesystem::create_directories(_folder.path("config/countersign"));
    _folder.write("config/countersign/settings", "keyFolder=" + _folder.path("keys/") + "\n");
    start();
    // The dialog reads the folder on a thread of its own: what is pressed before it has done so chooses nothing.
    const auto areBothChosen = []
    {
        unsigned int amount = 0;
        GList* const pWindows = gtk_window_list_toplevels();
        for (const GList* pEntry = pWindows; pEntry != nullptr; pEntry = pEntry->next)
        {
            if (GTK_IS_FILE_CHOOSER(pEntry->data))
            {
                GSList* const pNames = gtk_file_chooser_get_filenames(GTK_FILE_CHOOSER(pEntry->data));
                amount += g_slist_length(pNames);
                g_slist_free_full(pNames, &g_free);
            }
        }
        g_list_free(pWindows);
        const bool areChosen = amount == 2;
        if (!areChosen)
        {
            tsPressKeys("ctrl+a");
        }
        return areChosen;
    };
    tsScript script;
    script.waitUntil("the file dialog is up", [] { return isActive("Load public keys"); })
        .waitUntil("both files are chosen", areBothChosen)
        .perform("load them", [] { tsPressKeys("Return"); })
        .start();
    tsPressKeys("ctrl+shift+k");
    tsRunUntil("both keys are loaded", [this] { return _pFrame->keys()._publics.size() == 2; });
}

TEST_F(KeyMenu, LoadsTheHalfThatItIsAskedFor)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the toolkit's libraries sometimes keep texts of three file dialogs, which counts as a leak";
#endif
    const std::string privateKey = _folder.write("private.pem", newKeyText(512));
    const std::string publicKey = _folder.write("public.pem", newKeyText(512, true));
    start();
    // Until a key is loaded or a message is left.
    const auto load = [this](const char* pKeys, const char* pTitle, const std::string& path)
    {
        std::string said;
        tsScript script;
        script.waitUntil("the file dialog is up", [=] { return isActive(pTitle); })
            .perform("paste the path", [&] { tsPaste(path); })
            .perform("choose it", [] { tsPressKeys("Return"); })
            .waitUntil("a key is loaded, or a message is up",
                       [&]
                       {
                           said = shownQuestion();
                           return _pFrame->keys().canTest() || !said.empty();
                       })
            .perform("leave the message",
                     [&]
                     {
                         if (!said.empty())
                         {
                             tsPressKeys("Escape");
                         }
                     })
            .start();
        tsPressKeys(pKeys);
        tsRunUntil("it is done", [&] { return script.isFinished() && tsHasKeyboard(*_pFrame); });
        settle();
        return said;
    };
    EXPECT_EQ(load("ctrl+k", "Load a private key", publicKey),
              "\u201cpublic.pem\u201d holds a public key, which cannot sign. Load it as a public key to test with it.");
    EXPECT_FALSE(_pFrame->keys().canTest());

    _pFrame->setKeys(hoKeyRing());
    EXPECT_EQ(load("ctrl+shift+k", "Load public keys", privateKey), "");
    EXPECT_FALSE(_pFrame->keys().canSign());
    ASSERT_EQ(_pFrame->keys()._publics.size(), 1U);
    EXPECT_FALSE(_pFrame->keys()._publics[0]._pKey->hasPrivateKey());

    _pFrame->setKeys(hoKeyRing());
    EXPECT_EQ(load("ctrl+shift+k", "Load public keys", publicKey), "");
    EXPECT_EQ(_pFrame->keys()._publics.size(), 1U);

    _pFrame->setKeys(hoKeyRing());
    EXPECT_EQ(load("ctrl+k", "Load a private key", privateKey), "");
    EXPECT_TRUE(_pFrame->keys().canSign());
    EXPECT_TRUE(_pFrame->keys()._publics.empty());
}

TEST_F(KeyMenu, AsksWhichPublicKeyIsToBeExported)
{
    writeSigned("a.txt", "lab");
    writeSigned("b.txt", "office");
    start();
    static_cast<hoDocumentDropTarget*>(_pFrame->GetDropTarget())
        ->drop("file://" + _folder.path("keys/lab.pub.pem") + "\r\nfile://" + _folder.path("keys/office.pub.pem") +
               "\r\n");
    tsRunUntil("both keys are loaded", [this] { return _pFrame->keys()._publics.size() == 2; });
    settle();
    const std::filesystem::path folderBefore = std::filesystem::current_path();
    std::filesystem::current_path(_folder.path());
    const auto isChoiceUp = []
    {
        const auto* pDialog = dynamic_cast<const wxSingleChoiceDialog*>(tsTopModalDialog());
        return pDialog != nullptr && tsHasKeyboard(*pDialog);
    };
    const auto isFileDialogUp = []
    {
        return dynamic_cast<const wxSingleChoiceDialog*>(tsTopModalDialog()) == nullptr &&
               isActive("Export the public key");
    };
    std::vector<std::string> exported;
    const auto findExported = [&]
    {
        exported.clear();
        for (const auto& entry : std::filesystem::directory_iterator("."))
        {
            if (entry.path().extension() == ".pem")
            {
                exported.push_back(entry.path().filename().string());
            }
        }
        return !exported.empty();
    };
    tsScript script;
    script.waitUntil("the information has the keyboard", isInformationUp)
        .perform("export", [] { tsPressKeys("alt+e"); })
        .waitUntil("it is asked which key, or where to", [=] { return isChoiceUp() || isFileDialogUp(); })
        .perform("choose the second key",
                 [=]
                 {
                     if (isChoiceUp())
                     {
                         tsPressKeys("Down");
                         tsPressKeys("Return");
                     }
                 })
        .waitUntil("the file dialog is up", isFileDialogUp)
        .perform("press Return", [] { tsPressKeys("Return"); })
        .waitUntil("the file is written", findExported)
        .waitUntil("the information has the keyboard", isInformationUp)
        .perform("close it", [] { tsPressKeys("Escape"); })
        .start();
    tsPressKeys("ctrl+i");
    tsRunUntil("the information is closed", [&] { return script.isFinished() && tsTopModalDialog() == nullptr; });
    std::filesystem::current_path(folderBefore);
    ASSERT_THAT(exported, ElementsAre("office.pub.pub.pem"));
    EXPECT_EQ(_folder.read(exported[0]), _folder.read("keys/office.pub.pem"));
}

TEST_F(KeyMenu, RemembersTheFilesOfKeys)
{
    start();
    dropNewKey();
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
         {Step{"Load private key...", "Load a private key"}, Step{"Load public keys...", "Load public keys"},
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
