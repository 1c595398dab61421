// SPDX-License-Identifier: Apache-2.0
// Documents in the desktop's programs and folders, which here write down what they get, and their properties.
#include "tests/host/MainFrameFixture.h"
#include "tests/host/Question.h"

#include "host/signing/hoFileSigning.h"
#include "host/window/hoPropertiesDialog.h"

#include <gmock/gmock.h>
#include <wx/clipbrd.h>
#include <wx/textctrl.h>

#include <gtk/gtk.h>

namespace
{
using testing::EndsWith;
using testing::HasSubstr;

// GLib reads this once; so it is set before anything asks for it.
class Programs
{
public:
    Programs()
    {
        setenv("XDG_DATA_HOME", _folder.path().c_str(), 1);
        std::filesystem::create_directories(_folder.path("applications"));
        const std::string viewer =
            _folder.write("viewer", "#!/bin/sh\necho \"$1\" >>'" + _folder.path("viewed") + "'\n");
        std::filesystem::permissions(viewer, std::filesystem::perms::owner_all);
        _folder.write("applications/viewer.desktop",
                      "[Desktop Entry]\nType=Application\nName=Viewer\nExec=" + viewer + " %f\n");
        _folder.write("applications/mimeapps.list",
                      "[Default Applications]\ntext/plain=viewer.desktop\ninode/directory=viewer.desktop\n");
    }
    std::string viewed() const { return _folder.read("viewed"); }

private:
    const TemporaryFolder _folder;
};

const Programs programs;

class DocumentCommands : public MainFrameFixture
{
protected:
    void SetUp() override
    {
        MainFrameFixture::SetUp();
        // No bus, so that folders are opened by their program.
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
        setenv("XDG_RUNTIME_DIR", _folder.path().c_str(), 1);
        _viewedBefore = programs.viewed();
    }
    void waitForView(const std::string& path)
    {
        _expected += path + "\n";
        tsRunUntil("the program has " + path,
                   [this] { return programs.viewed().substr(_viewedBefore.size()) == _expected; });
    }
    void chooseInContextMenu(const std::string& keys)
    {
        tsScript script;
        script.waitUntil("the menu is up", [] { return GTK_IS_MENU(gtk_grab_get_current()); })
            .perform("choose", [&] { tsPressKeys(keys); })
            .start();
        tsPressKeys("Menu");
        tsRunUntil("it is chosen", [&] { return script.isFinished(); });
    }
    static bool isPropertiesUp()
    {
        const auto* pDialog = dynamic_cast<hoPropertiesDialog*>(tsTopModalDialog());
        return pDialog != nullptr && tsHasKeyboard(*pDialog);
    }
    static std::string value(const char* pName)
    {
        const wxWindow* const pText = wxWindow::FindWindowByName(pName, tsTopModalDialog());
        return dynamic_cast<const wxTextCtrl*>(pText)->GetValue().utf8_string();
    }
    static bool isRead() { return value("sha256") != "Reading..."; }

    std::string _viewedBefore;
    std::string _expected;
};
}  // namespace

TEST_F(DocumentCommands, OpenInTheDesktopsPrograms)
{
    start({"countersign-desktop", _folder.write("a.txt", "some text\n"), _folder.write("b.txt", "some text\n")});
    openAskedFor(_folder.path("b.txt"));
    tsPressKeys("Return");
    waitForView(_folder.path("b.txt"));
    tsPressKeys("ctrl+Return");
    waitForView(_folder.path("b.txt"));
    choose("alt+f", "p");
    waitForView(_folder.path("b.txt"));
    chooseInContextMenu("o");
    waitForView(_folder.path("b.txt"));
    choose("alt+f", "f");
    waitForView(_folder.path());
    chooseInContextMenu("f");
    waitForView(_folder.path());

    const wxRect row = placeOfCell(list(), 0, 0);
    const std::string before = programs.viewed();
    tsDoubleClickAtUntil(row.GetTopLeft() + wxPoint(20, row.height / 2), "the program has the other document",
                         [&] { return programs.viewed().size() > before.size(); });
    EXPECT_THAT(programs.viewed(), EndsWith(_folder.path("a.txt") + "\n"));
}

TEST_F(DocumentCommands, SayWhatCannotBeOpened)
{
    start({"countersign-desktop", _folder.write("a.txt", "some text\n")});
    std::filesystem::remove(_folder.path("a.txt"));
    tsRunUntil("the row says so", [this] { return rows(1).front() == "Missing"; });
    list().select({0});
    tsScript script;
    script.waitUntil("the message is up", [this] { return isAnotherWindowActive(); })
        .perform("close it", [] { tsPressKeys("Escape"); })
        .start();
    tsPressKeys("ctrl+Return");
    tsRunUntil("the message is closed", [&] { return script.isFinished() && tsHasKeyboard(*_pFrame); });
}

TEST_F(DocumentCommands, AskBeforeManyProgramsAreStarted)
{
    std::vector<std::string> arguments = {"countersign-desktop"};
    for (int number = 0; number < 11; ++number)
    {
        arguments.push_back(_folder.write(std::to_string(number) + ".txt", "some text\n"));
    }
    start(arguments);
    const auto amountViewed = [this]
    {
        const std::string lines = programs.viewed().substr(_viewedBefore.size());
        return std::count(lines.begin(), lines.end(), '\n');
    };
    // Return takes the button that the keyboard is on at first.
    for (const char* pAnswer : {"Return", "Escape", "alt+o"})
    {
        std::string asked;
        tsScript script;
        script
            .waitUntil("it is asked, or they are opened",
                       [&]
                       {
                           asked = shownQuestion();
                           return !asked.empty() || amountViewed() > 0;
                       })
            .perform("answer", [=] { tsPressKeys(pAnswer); })
            .start();
        tsPressKeys("ctrl+Return");
        tsRunUntil("it is answered", [&] { return script.isFinished() && tsHasKeyboard(*_pFrame); });
        settle();
        EXPECT_EQ(asked, "Open 11 documents in their programs?") << pAnswer;
    }
    tsRunUntil("they are opened", [&] { return amountViewed() >= 11; });
    EXPECT_EQ(amountViewed(), 11);
    // Ten need no question.
    list().select({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
    settle();
    tsPressKeys("ctrl+Return");
    tsRunUntil("ten more are opened", [&] { return amountViewed() >= 21; });
}

TEST_F(DocumentCommands, ShowTheProperties)
{
    start({"countersign-desktop", _folder.write("a.txt", "some text\n"), _folder.write("b.txt", "x")});
    dropNewKey();
    openAskedFor(_folder.path("a.txt"));
    work("ctrl+s");
    settle();
    std::string text;
    tsScript script;
    script.waitUntil("the properties are up", isPropertiesUp)
        .waitUntil("the digests are there", isRead)
        .perform("copy all",
                 [&]
                 {
                     text = dynamic_cast<const hoPropertiesDialog*>(tsTopModalDialog())->text().utf8_string();
                     tsPressKeys("alt+l");
                 })
        .waitUntil("it is copied",
                   [&]
                   {
                       const wxClipboardLocker clipboard;
                       wxTextDataObject copied;
                       return wxTheClipboard->GetData(copied) && copied.GetText().utf8_string() == text;
                   })
        .perform("close it", [] { tsPressKeys("Escape"); })
        .start();
    tsPressKeys("alt+Return");
    tsRunUntil("they are closed", [&] { return script.isFinished() && tsTopModalDialog() == nullptr; });
    const hoKey& key = *_pFrame->keys()._private._pKey;
    gtString digest;
    ASSERT_TRUE(hoDigestOfFile(_folder.path("a.txt"), key, nullptr, digest).isOk());
    std::string sha256;
    tsRunProgram({"sha256sum", _folder.path("a.txt")}, &sha256);
    for (const std::string& expected : {"Path: " + _folder.path("a.txt"), std::string("Size: 10 bytes"),
                                        std::string("State: Signed by me"), std::string("Signature: Countersigned"),
                                        "Key: 1024 bits, " + hoShortFingerprint(key).asStdString() + ", mine.pem",
                                        "SHA-256: " + sha256.substr(0, 64), "Exclusive-or: " + digest.asStdString()})
    {
        EXPECT_THAT(text, HasSubstr(expected + "\n"));
    }
    // Two documents have none.
    tsPressKeys("ctrl+a");
    tsRunUntil("both are selected", [this] { return selectedRows().size() == 2; });
    tsPressKeys("alt+Return");
    handleAllKeys();
    EXPECT_EQ(tsTopModalDialog(), nullptr);
}

TEST_F(DocumentCommands, StopReadingForTheProperties)
{
    const std::string path = _folder.write("large.img", "");
    std::filesystem::resize_file(path, std::uintmax_t(1) << 40);
    start({"countersign-desktop", path});
    std::string sha256;
    std::string signature;
    tsScript script;
    script.waitUntil("the properties are up", isPropertiesUp)
        .perform("stop", [] { tsPressKeys("alt+s"); })
        .waitUntil("the reading has ended", isRead)
        .perform("look, and close them",
                 [&]
                 {
                     sha256 = value("sha256");
                     signature = value("signature");
                     tsPressKeys("Escape");
                 })
        .waitUntil("they are closed", [] { return tsTopModalDialog() == nullptr; })
        .start();
    chooseInContextMenu("p");
    tsRunUntil("they are closed", [&] { return script.isFinished(); });
    EXPECT_EQ(sha256, "Interrupted.");
    EXPECT_EQ(signature, "None");
    // Closing them stops it, too.
    tsScript again;
    again.waitUntil("the properties are up", isPropertiesUp)
        .perform("close them", [] { tsPressKeys("Escape"); })
        .waitUntil("they are closed", [] { return tsTopModalDialog() == nullptr; })
        .start();
    tsPressKeys("alt+Return");
    tsRunUntil("they are closed", [&] { return again.isFinished(); });
}
