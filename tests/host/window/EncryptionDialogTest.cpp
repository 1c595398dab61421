// SPDX-License-Identifier: Apache-2.0
// Key > Short texts, by keys and mouse.
#include "tests/host/MainFrameFixture.h"
#include "tests/host/NewKey.h"

#include "host/signing/hoShortTexts.h"
#include "host/window/hoDetailsDialog.h"
#include "host/window/hoDocumentDropTarget.h"
#include "host/window/hoEncryptionDialog.h"

#include <gmock/gmock.h>
#include <wx/button.h>
#include <wx/clipbrd.h>
#include <wx/textctrl.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include <gtk/gtk.h>

namespace
{
using testing::HasSubstr;

wxString clipboardText()
{
    const wxClipboardLocker clipboard;
    wxTextDataObject text;
    return wxTheClipboard->GetData(text) ? text.GetText() : wxString();
}

class TextsDialog : public MainFrameFixture
{
protected:
    void startWithKey(const std::string& keyText)
    {
        start();
        static_cast<hoDocumentDropTarget*>(_pFrame->GetDropTarget())
            ->drop("file://" + _folder.write("mine.pem", keyText) + "\r\n");
        settle();
    }
    // Opens the dialog by its key, performs the steps in it and leaves it by Escape.
    void inDialog(tsScript& steps)
    {
        steps.perform("leave", [] { tsPressKeys("Escape"); });
        steps.start();
        tsPressKeys("ctrl+e");
        tsRunUntil("the dialog is gone", [&] { return steps.isFinished() && tsTopModalDialog() == nullptr; });
    }
    static bool isUp()
    {
        const auto* pDialog = dynamic_cast<hoEncryptionDialog*>(tsTopModalDialog());
        return pDialog != nullptr && tsHasKeyboard(*pDialog);
    }
    static wxTextCtrl& box(const char* name)
    {
        return *dynamic_cast<wxTextCtrl*>(wxWindow::FindWindowByName(name, tsTopModalDialog()));
    }
    static std::string label(const char* name)
    {
        return wxWindow::FindWindowByName(name, tsTopModalDialog())->GetLabel().utf8_string();
    }
    static wxWindow& button(const std::string& name)
    {
        for (wxWindow* pChild : tsTopModalDialog()->GetChildren())
        {
            auto* pButton = dynamic_cast<wxButton*>(pChild);
            if (pButton != nullptr && pButton->GetLabelText().utf8_string() == name)
            {
                return *pButton;
            }
        }
        throw std::runtime_error("there is no button " + name);
    }
};
}  // namespace

TEST_F(TextsDialog, NeedsAKey)
{
    start();
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &isUp)
        .perform("put texts in",
                 []
                 {
                     box("plain").SetValue("x");
                     box("cipher").SetValue("00000000");
                     tsRunEvents();
                     EXPECT_FALSE(button("Encrypt").IsEnabled());
                     EXPECT_FALSE(button("Decrypt").IsEnabled());
                     EXPECT_NE(wxWindow::FindWindowByLabel("Load a key to encrypt or decrypt.", tsTopModalDialog()),
                               nullptr);
                 });
    inDialog(script);
}

TEST_F(TextsDialog, HasRoomForEverything)
{
    startWithKey(newKeyText(512));
    const auto expectApart = [](const char* pWhen)
    {
        const wxWindowList& children = tsTopModalDialog()->GetChildren();
        for (auto one = children.begin(); one != children.end(); ++one)
        {
            for (auto other = std::next(one); other != children.end(); ++other)
            {
                EXPECT_FALSE((*one)->GetRect().Intersects((*other)->GetRect()))
                    << pWhen << ": " << (*one)->GetLabel() << " and " << (*other)->GetLabel();
            }
        }
    };
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &isUp)
        .perform("put a text in that is too long", [] { box("plain").SetValue(wxString('x', 900)); })
        .waitUntil("the bytes are counted", [] { return label("count").find("too long") != std::string::npos; })
        .perform("look, and make it small",
                 [&]
                 {
                     expectApart("at first");
                     auto* pDialog = dynamic_cast<wxDialog*>(tsTopModalDialog());
                     pDialog->SetSize(pDialog->GetMinSize());
                 })
        .waitUntil("it is small",
                   [] { return tsTopModalDialog()->GetSize().x <= tsTopModalDialog()->GetMinSize().x + 4; })
        .perform("look", [&] { expectApart("small"); });
    inDialog(script);
}

TEST_F(TextsDialog, GivesEachControlAMnemonicOfItsOwn)
{
    startWithKey(newKeyText(512));
    std::string mnemonics;
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &isUp)
        .perform("read them",
                 [&]
                 {
                     for (const wxWindow* pChild : tsTopModalDialog()->GetChildren())
                     {
                         const std::string text = pChild->GetLabel().Lower().utf8_string();
                         const std::size_t position = text.find('&');
                         if (position != std::string::npos && text.at(position + 1) != '&')
                         {
                             mnemonics += text.at(position + 1);
                         }
                     }
                 });
    inDialog(script);
    std::sort(mnemonics.begin(), mnemonics.end());
    EXPECT_EQ(mnemonics.size(), 7U) << mnemonics;
    EXPECT_EQ(std::adjacent_find(mnemonics.begin(), mnemonics.end()), mnemonics.end()) << mnemonics;
}

// The toolkit puts hyphens where it breaks a word, and the cipher text is one.
TEST_F(TextsDialog, ShowsTheCipherTextInOneLine)
{
    startWithKey(newKeyText(512));
    bool isBroken = true;
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &isUp)
        .perform("put a long cipher text in", [] { box("cipher").SetValue(wxString('a', 4000)); })
        .waitUntil("it is shown", [] { return box("cipher").GetLastPosition() == 4000; })
        .perform("look for a break",
                 [&]
                 {
                     auto* pView = GTK_TEXT_VIEW(gtk_bin_get_child(GTK_BIN(box("cipher").GetHandle())));
                     GtkTextIter position;
                     gtk_text_buffer_get_start_iter(gtk_text_view_get_buffer(pView), &position);
                     isBroken = gtk_text_view_forward_display_line(pView, &position) != FALSE;
                 });
    inDialog(script);
    EXPECT_FALSE(isBroken);
}

TEST_F(TextsDialog, EncryptsAndDecryptsByKeys)
{
    startWithKey(newKeyText(512));
    std::string cipher;
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &isUp)
        .perform("see what is possible",
                 []
                 {
                     EXPECT_EQ(label("count"), "0 of 63 bytes");
                     EXPECT_FALSE(button("Encrypt").IsEnabled());
                     EXPECT_FALSE(button("Decrypt").IsEnabled());
                     tsType("Meet me at noon");
                 })
        .waitUntil("the bytes are counted", [] { return label("count") == "15 of 63 bytes"; })
        .waitUntil("it can be encrypted", [] { return button("Encrypt").IsEnabled(); })
        .perform("encrypt", [] { tsPressKeys("alt+e"); })
        .waitUntil("it is encrypted", [] { return label("said") == "Encrypted."; })
        .perform("take the text away",
                 [&]
                 {
                     cipher = box("cipher").GetValue().utf8_string();
                     box("plain").Clear();
                 })
        .waitUntil("it can be decrypted", [] { return button("Decrypt").IsEnabled(); })
        .perform("decrypt", [] { tsPressKeys("alt+d"); })
        .waitUntil("it is decrypted", [] { return label("said") == "Decrypted."; })
        .perform("see the text", [] { EXPECT_EQ(box("plain").GetValue(), "Meet me at noon"); });
    inDialog(script);
    EXPECT_EQ(cipher.size(), 8U + 128U);
    EXPECT_EQ(cipher.substr(0, 8), "0000000f");
    // Nothing of it is kept.
    closeWindow();
    EXPECT_EQ(_folder.read("config/countersign/settings").find("noon"), std::string::npos);
}

TEST_F(TextsDialog, EncryptsAndCopiesByMouse)
{
    startWithKey(newKeyText(512));
    wxString plain;
    wxString cipher;
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &isUp)
        .perform("put a text in", [] { box("plain").SetValue(wxString::FromUTF8("gr\xc3\xbc\xc3\x9f\n")); })
        .waitUntil("the bytes are counted", [] { return label("count") == "7 of 63 bytes"; })
        .waitUntil("it can be encrypted", [] { return button("Encrypt").IsEnabled(); })
        .perform("encrypt", [] { tsClick(button("Encrypt")); })
        .waitUntil("it is encrypted", [] { return label("said") == "Encrypted."; })
        .perform("copy", [] { tsClick(button("Copy cipher text")); })
        .waitUntil("it is copied", [] { return label("said") == "Copied the cipher text."; })
        .perform("copy the text",
                 [&]
                 {
                     cipher = clipboardText();
                     EXPECT_EQ(cipher, box("cipher").GetValue());
                     tsClick(button("Copy plain text"));
                 })
        .waitUntil("it is copied", [] { return label("said") == "Copied the plain text."; })
        .perform("read the clipboard", [&] { plain = clipboardText(); });
    inDialog(script);
    EXPECT_EQ(cipher.length(), 136U);
    EXPECT_EQ(plain.utf8_string(), "gr\xc3\xbc\xc3\x9f\n");
}

TEST_F(TextsDialog, RefusesATextOverTheLimit)
{
    startWithKey(newKeyText(512));
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &isUp)
        .perform("fill the block", [] { box("plain").SetValue(wxString('x', 63)); })
        .waitUntil("it can be encrypted", [] { return button("Encrypt").IsEnabled(); })
        .perform("one character more", [] { box("plain").AppendText(wxString::FromUTF8("\xc3\xa9")); })
        .waitUntil("it cannot be encrypted", [] { return !button("Encrypt").IsEnabled(); })
        .perform("read why",
                 []
                 {
                     EXPECT_EQ(label("count"), "65 of 63 bytes: too long for this key");
                     tsPressKeys("alt+e");
                     // Comes after it.
                     tsType("x");
                 })
        .waitUntil("the keys have done what they do", [] { return box("plain").GetValue().length() == 65; })
        .perform("see that nothing came", [] { EXPECT_TRUE(box("cipher").IsEmpty()); });
    inDialog(script);
}

TEST_F(TextsDialog, ShowsBytesWhereThereIsNoText)
{
    const std::string keyText = newKeyText(512);
    hoKeyFileFacts facts;
    const auto pKey = hoLoadKey(keyText.data(), static_cast<int>(keyText.size()), nullptr, facts);
    gtString cipher;
    ASSERT_EQ(hoEncryptText(pKey->publicKey(), "a\xff\xfe", cipher)._problem, hoTextProblem::None);
    startWithKey(keyText);
    wxString dump;
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &isUp)
        .perform("put a cipher text in",
                 [&]
                 {
                     box("plain").SetValue("typed");
                     box("cipher").SetValue(cipher.asCharArray());
                 })
        .waitUntil("it can be decrypted", [] { return button("Decrypt").IsEnabled(); })
        .perform("decrypt", [] { tsPressKeys("alt+d"); })
        .waitUntil("the bytes are shown",
                   []
                   {
                       const auto* pBytes = dynamic_cast<hoDetailsDialog*>(tsTopModalDialog());
                       return pBytes != nullptr && tsHasKeyboard(*pBytes);
                   })
        .perform("read them",
                 [&]
                 {
                     for (wxWindow* pChild : tsTopModalDialog()->GetChildren())
                     {
                         if (const auto* pText = dynamic_cast<wxTextCtrl*>(pChild))
                         {
                             dump = pText->GetValue();
                         }
                     }
                     tsPressKeys("Escape");
                 })
        .waitUntil("the dialog has the keyboard again", &isUp)
        .perform("read why",
                 []
                 {
                     EXPECT_EQ(label("said"), "What came out is no valid text (UTF-8).");
                     EXPECT_EQ(box("plain").GetValue(), "typed");
                     box("cipher").SetValue("no cipher text");
                     tsPressKeys("alt+d");
                 })
        .waitUntil("that is told", [] { return label("said").find("This is not a cipher text") == 0; });
    inDialog(script);
    EXPECT_THAT(dump.utf8_string(), HasSubstr("00000000  61 ff fe"));
}

TEST_F(TextsDialog, EncryptsWithThePublicKeyThatCameLast)
{
    startWithKey(newKeyText(512, true));
    static_cast<hoDocumentDropTarget*>(_pFrame->GetDropTarget())
        ->drop("file://" + _folder.write("hers.pem", newKeyText(1024, true)) + "\r\n");
    settle();
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &isUp)
        .perform("look at it, and put a text in",
                 []
                 {
                     EXPECT_THAT(label("keys"), HasSubstr("Encrypts with the 1024-bit public key "));
                     EXPECT_EQ(label("count"), "0 of 127 bytes");
                     box("plain").SetValue("x");
                 })
        .waitUntil("it can be encrypted", [] { return button("Encrypt").IsEnabled(); })
        .perform("encrypt", [] { tsPressKeys("alt+e"); })
        .waitUntil("it is encrypted", [] { return !box("cipher").IsEmpty(); })
        .perform("look", [] { EXPECT_EQ(box("cipher").GetValue().length(), 8U + 256U); });
    inDialog(script);
}

TEST_F(TextsDialog, OfAPublicKeyOnlyEncrypts)
{
    startWithKey(newKeyText(512, true));
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &isUp)
        .perform("put texts in",
                 []
                 {
                     box("plain").SetValue("x");
                     box("cipher").SetValue("00000000");
                 })
        .waitUntil("it can be encrypted", [] { return button("Encrypt").IsEnabled(); })
        .perform("see that it cannot be decrypted", [] { EXPECT_FALSE(button("Decrypt").IsEnabled()); });
    inDialog(script);
}
