// SPDX-License-Identifier: Apache-2.0
// What the window says and leaves behind when the system fails it. That the engines under it come through every failing
// call is FaultsTest.cpp's subject.
#include "tests/host/MainFrameFixture.h"
#include "tests/host/NewKey.h"
#include "tests/support/tsSystemFault.h"

#include "assertionReporting/arAssertionReport.h"
#include "assertionReporting/arAssertionReportWindow.h"
#include "host/window/hoNewKeyDialog.h"

#include <gmock/gmock.h>
#include <wx/button.h>
#include <wx/menu.h>
#include <wx/textctrl.h>

#include <cerrno>
#include <sys/stat.h>

namespace
{
using testing::HasSubstr;

class WindowFaults : public MainFrameFixture
{
protected:
    void SetUp() override
    {
        MainFrameFixture::SetUp();
        std::filesystem::create_directory(_folder.path("documents"));
        _large = _folder.write("documents/large", std::string(1200000, 'l'));
    }
    void startWithDocument()
    {
        start({"countersign-desktop", _large});
        hoKeyRing keys;
        keys._private._pKey = newKey(1024);
        _pFrame->setKeys(keys);
        settle();
    }
    void workWith(const std::string& key)
    {
        const wxString before = _pFrame->workMessage()._line;
        tsPressKeys(key);
        tsRunUntil("the work has ended",
                   [&] { return !_pFrame->isAtWork() && _pFrame->workMessage()._line != before; });
        settle();
    }
    std::string message() const { return _pFrame->workMessage()._line.utf8_string(); }
    std::string details() const { return _pFrame->workMessage()._details.utf8_string(); }
    std::size_t amountOfFiles() const
    {
        const std::filesystem::directory_iterator files(_folder.path("documents"));
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }
    // Leaves the message that comes up meanwhile, and says whether there was one.
    bool hasMessageDuring(const std::function<void()>& action) const
    {
        bool isLeft = false;
        tsScript script;
        script.waitUntil("a message is there", [this] { return isAnotherWindowActive(); })
            .perform("leave it",
                     [&]
                     {
                         isLeft = true;
                         tsPressKeys("Escape");
                     })
            .start();
        action();
        tsRunUntil("the message is gone", [&] { return script.isFinished() && !isAnotherWindowActive(); });
        return isLeft;
    }

    std::string _large;
};
}  // namespace

TEST_F(WindowFaults, SaysThatADocumentCouldNotBeRead)
{
    startWithDocument();
    {
        const tsSystemFault broken(_folder.path("documents"), "read", 2, EIO);
        workWith("ctrl+s");
        EXPECT_TRUE(broken.hasHappened());
    }
    EXPECT_EQ(message(), "1 document: 1 could not be signed.");
    EXPECT_THAT(details(), HasSubstr("it cannot be read: Input/output error"));
    EXPECT_EQ(amountOfFiles(), 1U);

    workWith("ctrl+s");
    EXPECT_EQ(message(), "1 document: 1 signed.");
    {
        const tsSystemFault broken(_folder.path("documents"), "read", 3, EIO);
        workWith("ctrl+t");
        EXPECT_TRUE(broken.hasHappened());
    }
    EXPECT_EQ(message(), "1 document: 1 could not be tested.");
    EXPECT_THAT(details(), HasSubstr("cannot be read: Input/output error"));
    EXPECT_THAT(rows(1)[0], testing::AnyOf("Not tested", "Cannot be read"));
}

TEST_F(WindowFaults, SaysThatASignatureCouldNotBeWritten)
{
    startWithDocument();
    for (const char* pCall : {"write", "fsync"})
    {
        const tsSystemFault broken(_folder.path("documents"), pCall, 1, ENOSPC);
        workWith("ctrl+s");
        EXPECT_TRUE(broken.hasHappened()) << pCall;
        EXPECT_EQ(message(), "1 document: 1 could not be signed.") << pCall;
        EXPECT_THAT(details(), HasSubstr("large.sig: the signature cannot be written: No space left on device"))
            << pCall;
        EXPECT_EQ(amountOfFiles(), 1U) << pCall;
        EXPECT_EQ(rows(1)[0], "Not signed") << pCall;
        workWith("ctrl+t");
        EXPECT_EQ(message(), "1 document: 1 not signed.");
    }
}

TEST_F(WindowFaults, SaysThatADocumentChangedWhileItWasSigned)
{
    startWithDocument();
    for (const std::uintmax_t size : {std::uintmax_t(1000), std::uintmax_t(5000000)})
    {
        std::filesystem::resize_file(_large, 1200000);
        workWith("ctrl+t");
        const tsSystemFault meanwhile(_folder.path("documents"), "read", 2,
                                      [&] { std::filesystem::resize_file(_large, size); });
        workWith("ctrl+s");
        EXPECT_TRUE(meanwhile.hasHappened());
        EXPECT_EQ(message(), "1 document: 1 could not be signed.");
        EXPECT_THAT(details(), HasSubstr("it was changed while it was being read"));
        EXPECT_EQ(amountOfFiles(), 1U);
    }
}

TEST_F(WindowFaults, SaysThatWorkCouldNotBegin)
{
    startWithDocument();
    EXPECT_TRUE(hasMessageDuring(
        [this]
        {
            const tsSystemFault broken(_folder.path("documents"), "thread", 1, EAGAIN);
            const int id = _pFrame->GetMenuBar()->FindMenuItem("Signature", "Sign");
            wxCommandEvent sign(wxEVT_MENU, id);
            _pFrame->ProcessWindowEvent(sign);
            EXPECT_TRUE(broken.hasHappened());
        }));
    EXPECT_FALSE(_pFrame->isAtWork());
    workWith("ctrl+s");
    EXPECT_EQ(message(), "1 document: 1 signed.");
}

TEST_F(WindowFaults, SaysThatAReportCouldNotBeWritten)
{
    startWithDocument();
    const auto pReport = std::make_shared<arAssertionReport>();
    pReport->record("f", "/a.c", 1, "m", 1, 1);
    arAssertionReportWindow window(_pFrame, pReport);
    const std::string path = _folder.write("documents/report", "old");
    EXPECT_TRUE(hasMessageDuring(
        [&]
        {
            const tsSystemFault broken(_folder.path("documents"), "write", 1, ENOSPC);
            EXPECT_FALSE(window.saveAs(path));
            EXPECT_TRUE(broken.hasHappened());
        }));
    EXPECT_EQ(_folder.read("documents/report"), "old");
    EXPECT_EQ(amountOfFiles(), 2U);
    EXPECT_TRUE(window.saveAs(path));
    EXPECT_THAT(_folder.read("documents/report"), HasSubstr("/a.c\t1\t1\t"));
}

TEST_F(WindowFaults, KeepsSettingsThatCannotBeRead)
{
    startWithDocument();
    closeWindow();
    wxGetApp().OnExit();
    const std::string before = _folder.read("config/countersign/settings");
    ASSERT_THAT(before, HasSubstr("documents/large"));
    {
        const tsSystemFault broken(_folder.path("config"), "read", 1, EIO);
        start();
        EXPECT_TRUE(broken.hasHappened());
    }
    EXPECT_THAT(status(0), HasSubstr("cannot be read and stays as it is"));
    openAskedFor(_folder.write("documents/other", "x"));
    closeWindow();
    EXPECT_EQ(_folder.read("config/countersign/settings"), before);
    wxGetApp().OnExit();

    // The other way round: what cannot be written is told, and the old file stays.
    start();
    {
        const tsSystemFault broken(_folder.path("config"), "write", 1, ENOSPC);
        openAskedFor(_folder.path("documents/other"));
        EXPECT_TRUE(broken.hasHappened());
    }
    EXPECT_THAT(status(0), HasSubstr("could not be written"));
    EXPECT_EQ(_folder.read("config/countersign/settings"), before);
}

TEST_F(WindowFaults, SaysWhyAKeyPairIsNotMade)
{
    startWithDocument();
    hoNewKeyDialog dialog(_pFrame, (_folder.path("documents") + "/").c_str());
    const auto said = [&]
    {
        // The dialog breaks long lines.
        wxString label = wxWindow::FindWindowByName("said", &dialog)->GetLabel();
        label.Replace("\n", " ");
        return label.utf8_string();
    };
    auto* pFile = dynamic_cast<wxTextCtrl*>(wxWindow::FindWindowByName("file", &dialog));
    const std::string pipe = _folder.path("documents/pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::unique_ptr<tsSystemFault> pBroken;
    const auto create = [&]
    {
        wxCommandEvent press(wxEVT_BUTTON, wxID_OK);
        press.SetEventObject(dialog.FindWindow(wxID_OK));
        dialog.FindWindow(wxID_OK)->ProcessWindowEvent(press);
    };
    tsScript script;
    script.waitUntil("the dialog has the keyboard", [&] { return tsHasKeyboard(dialog); })
        .perform("let the system refuse a thread",
                 [&]
                 {
                     pBroken = std::make_unique<tsSystemFault>(_folder.path("documents"), "thread", 1, EAGAIN);
                     create();
                 })
        .waitUntil("it is told", [&] { return said().find("cannot be made now: Resource") != std::string::npos; })
        .perform("let the disk be full",
                 [&]
                 {
                     pBroken.reset();
                     pBroken = std::make_unique<tsSystemFault>(_folder.path("documents"), "write", 1, ENOSPC);
                     create();
                 })
        .waitUntil("it is told", [&] { return said().find("No space left on device") != std::string::npos; })
        .perform("name a pipe",
                 [&]
                 {
                     pBroken.reset();
                     EXPECT_EQ(amountOfFiles(), 2U);
                     pFile->SetValue(wxString::FromUTF8(pipe));
                     create();
                 })
        .waitUntil("it is told", [&] { return said().find("is a pipe, a socket or a device") != std::string::npos; })
        .perform("name another place",
                 [&]
                 {
                     pFile->SetValue(wxString::FromUTF8(_folder.path("documents/saved.pem")));
                     create();
                 })
        .waitUntil("it is gone", [&] { return !dialog.IsModal(); })
        .start();
    EXPECT_EQ(dialog.ShowModal(), wxID_OK);
    tsRunUntil("the script has seen it", [&] { return script.isFinished(); });
    EXPECT_TRUE(script.isFinished());
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
    EXPECT_EQ(amountOfFiles(), 4U) << "the document, the pipe and the key pair";
    EXPECT_TRUE(std::filesystem::exists(_folder.path("documents/saved.pub.pem")));
}
