// SPDX-License-Identifier: Apache-2.0
// Documents that nobody would make on purpose, and more of them than anybody needs: the window says what they are,
// shows nothing that could deceive, and stays usable.
#include "tests/host/MainFrameFixture.h"
#include "tests/host/NewKey.h"

#include "host/documents/hoPercentText.h"
#include "host/signing/hoOrderedWork.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoDocumentDropTarget.h"
#include "host/window/hoEncryptionDialog.h"
#include "host/window/hoProgressDialog.h"

#include <gmock/gmock.h>
#include <wx/clipbrd.h>
#include <wx/menu.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include <algorithm>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace
{
using testing::Each;
using testing::HasSubstr;

// A label as it is seen, without its marks.
std::string seenLabel(const wxWindow* pWindow)
{
    const auto* pText = dynamic_cast<const wxStaticText*>(pWindow);
    return pText == nullptr ? std::string() : pText->GetLabelText().utf8_string();
}

class HostileDocuments : public MainFrameFixture
{
protected:
    void drop(const std::vector<std::string>& paths) const
    {
        std::string text;
        for (const std::string& path : paths)
        {
            text += "file://" + hoToPercentText(path).asStdString() + "\r\n";
        }
        dynamic_cast<hoDocumentDropTarget&>(*_pFrame->GetDropTarget()).drop(text);
    }
    void useKey()
    {
        hoKeyRing keys;
        keys._private._pKey = newKey(1024);
        _pFrame->setKeys(keys);
        settle();
    }
    void workWith(const std::string& key)
    {
        const std::string before = message();
        tsPressKeys(key);
        tsRunUntil("the work has begun", [&] { return _pFrame->isAtWork() || message() != before; });
        // Patience is for a thousand at a time.
        for (std::size_t next = 999; next < _pFrame->documents().size(); next += 1000)
        {
            const hoDocumentState state = _pFrame->documents()[next]._verdict._state;
            tsRunUntil("a thousand more are done",
                       [&] { return !_pFrame->isAtWork() || _pFrame->documents()[next]._verdict._state != state; });
        }
        tsRunUntil("the work has ended", [this] { return !_pFrame->isAtWork(); });
        settle();
    }
    std::string message() const { return _pFrame->workMessage()._line.utf8_string(); }
    const ManyFilesFolder _many;

    // As many documents, each in one of so many folders.
    std::vector<std::string> manyDocuments(int amount, int folders) const
    {
        std::vector<std::string> paths;
        for (int i = 0; i < amount; ++i)
        {
            const std::string folder = std::to_string(i % folders);
            std::filesystem::create_directory(_many.path(folder));
            paths.push_back(_many.write(folder + "/" + std::to_string(i) + ".txt", "x"));
        }
        return paths;
    }
};

// The address sanitizer takes many times as long for each.
#if defined(__SANITIZE_ADDRESS__)
constexpr int thousands = 2;
constexpr const char* sizeOfAll = "2.00 kB";
#else
constexpr int thousands = 10;
constexpr const char* sizeOfAll = "10.0 kB";
#endif
}  // namespace

// None of it takes time with the square of their number: that would be a thousand times what the test has patience for.
TEST_F(HostileDocuments, TenThousandAreOpenedWorkedOnAndClosed)
{
    start();
    useKey();
    const int amount = thousands * 1000;
    const std::string all = std::to_string(thousands) + ",000";
    const std::string allButOne = std::to_string(thousands - 1) + ",999";
    const std::vector<std::string> paths = manyDocuments(amount, 10);
    drop(paths);
    tsRunUntil("all are open", [&] { return rowCount() == amount; });
    settle();
    EXPECT_EQ(status(2), all + " documents, " + sizeOfAll + ", " + all + " selected");
    workWith("ctrl+shift+s");
    EXPECT_EQ(message(), all + " documents: " + all + " signed.");
    _many.write("5/1555.txt", "y");
    workWith("ctrl+shift+t");
    EXPECT_EQ(message(), all + " documents: " + allButOne + " good, 1 bad.");
    EXPECT_THAT(_pFrame->workMessage()._details.utf8_string(), HasSubstr("/5/1555.txt\n    bad: "));
    tsPressKeys("ctrl+a");
    settle();
    tsPressKeys("ctrl+c");
    tsRunUntil("all paths are copied", [&] { return status(0) == all + " paths copied"; });

    // The desktop asks for them one by one.
    for (const std::string& path : paths)
    {
        wxGetApp().MacOpenFile(wxString::FromUTF8(path));
    }
    settle();
    EXPECT_EQ(rowCount(), amount);

    // Their folders disappear while they are listed.
    for (int folder = 0; folder < 10; ++folder)
    {
        std::filesystem::remove_all(_many.path(std::to_string(folder)));
    }
    tsRunUntil("all are gone", [this] { return textOfRow(list(), 0, 1) == "Missing"; });
    EXPECT_THAT(rows(1), Each("Missing"));
    drop(paths);
    tsRunUntil("all are refused", [this] { return !_pFrame->refusalMessage().empty(); });
    EXPECT_EQ(_pFrame->refusalMessage(), all + " documents could not be opened.");
    settle();
    tsPressKeys("ctrl+shift+w");
    tsRunUntil("all are closed", [this] { return rowCount() == 0; });
}

TEST_F(HostileDocuments, TenThousandMayBeInAsManyFolders)
{
    start();
    const int amount = thousands * 1000;
    drop(manyDocuments(amount, amount));
    tsRunUntil("all are open", [&] { return rowCount() == amount; });
    settle();
    _many.write("1/1.txt", "longer");
    wxActivateEvent activation(wxEVT_ACTIVATE, true);
    _pFrame->ProcessWindowEvent(activation);
    tsRunUntil("a change is seen", [this] { return textOfRow(list(), 1, 2) == "6 bytes"; });
}

TEST_F(HostileDocuments, OnAFolderThatDisappearsAreSaidToBeGone)
{
    start();
    useKey();
    const std::vector<std::string> paths = manyDocuments(20, 2);
    drop(paths);
    tsRunUntil("all are open", [&] { return rowCount() == 20; });
    settle();
    // Each thread gets one that takes long.
    for (std::size_t i = 0; i < std::min<std::size_t>(paths.size(), hoOrderedWork::amountOfProcessors()); ++i)
    {
        std::filesystem::resize_file(paths[i], 4ULL << 30);
    }
    tsPressKeys("ctrl+shift+s");
    tsRunUntil("the work has begun", [this] { return _pFrame->isAtWork(); });
    std::filesystem::remove_all(_many.path("0"));
    std::filesystem::remove_all(_many.path("1"));
    // The first ones are being read; they are gone all the same when they are finished.
    tsRunUntil("the work has ended", [this] { return !_pFrame->isAtWork(); });
    settle();
    EXPECT_EQ(message(), "20 documents: 20 could not be signed.");
    EXPECT_THAT(rows(1), Each("Missing"));
    EXPECT_FALSE(std::filesystem::exists(_many.path("0")));
    std::filesystem::create_directory(_many.path("0"));
    _many.write("0/2.txt", "back");
    wxActivateEvent activation(wxEVT_ACTIVATE, true);
    _pFrame->ProcessWindowEvent(activation);
    tsRunUntil("a return is seen", [this] { return rows(1)[2] == "Not signed"; });
}

// The watch of the folders tells of what it has not told yet while it is taken down with the window.
TEST_F(HostileDocuments, MayDisappearJustBeforeTheWindow)
{
    start();
    drop(manyDocuments(20, 2));
    tsRunUntil("all are open", [&] { return rowCount() == 20; });
    settle();
    std::filesystem::remove_all(_many.path("0"));
    _many.write("1/1.txt", "longer");
    delete _pFrame;
    _pFrame = nullptr;
    settle();
}

TEST_F(HostileDocuments, ThatAreNoFilesAreRefusedWithoutWaiting)
{
    start();
    useKey();
    const std::string pipe = _many.path("pipe.txt");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::filesystem::create_directory(_many.path("folder.txt"));
    const std::string socketPath = _many.path("socket.txt");
    const int socketFile = socket(AF_UNIX, SOCK_STREAM, 0);
    struct sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    socketPath.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(socketFile, reinterpret_cast<struct sockaddr*>(&address), sizeof address), 0);
    std::filesystem::create_symlink("/dev/zero", _many.path("zero.txt"));
    std::filesystem::create_symlink(pipe, _many.path("link to a pipe.txt"));
    std::filesystem::create_symlink("loop.txt", _many.path("loop.txt"));
    std::filesystem::create_symlink("nowhere", _many.path("dangling.txt"));
    const std::vector<std::pair<std::string, const char*>> refused = {
        {pipe, "it is a pipe, a socket or a device, not a file"},
        {_many.path("link to a pipe.txt"), "it is a pipe, a socket or a device, not a file"},
        {socketPath, "it is a pipe, a socket or a device, not a file"},
        {"/dev/zero", "it is a pipe, a socket or a device, not a file"},
        {_many.path("zero.txt"), "it is a pipe, a socket or a device, not a file"},
        {_many.path("folder.txt"), "it is a folder; choose the files in it"},
        {_many.path("loop.txt"), "its symbolic links lead in a circle"},
        {_many.path("dangling.txt"), "there is no such file"},
    };
    for (const auto& [path, reason] : refused)
    {
        drop({path});
        tsRunUntil(path + " is refused", [&, text = reason]
                   { return _pFrame->refusalMessage().utf8_string().find(text) != std::string::npos; });
    }
    EXPECT_EQ(rowCount(), 0);
    close(socketFile);

    // A link to a file is a document of its own.
    _many.write("file.txt", "x");
    std::filesystem::create_symlink("file.txt", _many.path("link.txt"));
    drop({_many.path("link.txt")});
    tsRunUntil("the link is open", [this] { return rowCount() == 1; });
    workWith("ctrl+shift+s");
    EXPECT_EQ(message(), "1 document: 1 signed.");
    EXPECT_TRUE(std::filesystem::is_regular_file(_many.path("link.txt.sig")));
}

TEST_F(HostileDocuments, ThatBecomeSomethingElseAreNotWaitedFor)
{
    start();
    useKey();
    for (const char* pName : {"a", "b", "c", "d"})
    {
        _many.write(pName, "x");
    }
    drop({_many.path("a"), _many.path("b"), _many.path("c"), _many.path("d")});
    tsRunUntil("all are open", [this] { return rowCount() == 4; });
    settle();
    std::filesystem::remove(_many.path("a"));
    ASSERT_EQ(mkfifo(_many.path("a").c_str(), 0600), 0);
    std::filesystem::remove(_many.path("b"));
    std::filesystem::create_symlink("/dev/zero", _many.path("b"));
    // What has the signature's name is no file.
    ASSERT_EQ(mkfifo(_many.path("c.sig").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/zero", _many.path("d.sig"));
    workWith("ctrl+shift+s");
    EXPECT_EQ(message(), "4 documents: 4 could not be signed.");
    workWith("ctrl+shift+t");
    EXPECT_EQ(message(), "4 documents: 2 not signed, 2 could not be tested.");
    EXPECT_TRUE(std::filesystem::is_fifo(_many.path("c.sig")));
    EXPECT_TRUE(std::filesystem::is_symlink(_many.path("d.sig")));
}

TEST_F(HostileDocuments, OfEndlessFilesCanBeCancelled)
{
    // As good as endless: eight exabytes, which no disk holds and no machine reads.
    start();
    useKey();
    _many.write("endless", "");
    std::error_code error;
    std::filesystem::resize_file(_many.path("endless"), (8ULL << 60) - 4096, error);
    if (error)
    {
        std::filesystem::resize_file(_many.path("endless"), 1ULL << 40);
    }
    drop({_many.path("endless")});
    tsRunUntil("it is open", [this] { return rowCount() == 1; });
    settle();
    tsPressKeys("ctrl+s");
    tsRunUntil("the progress is shown", [this] { return isAnotherWindowActive(); });
    tsPressKeys("Escape");
    tsRunUntil("the work has ended", [this] { return !_pFrame->isAtWork(); });
    EXPECT_EQ(message(), "Cancelled after 0 documents.");
}

TEST_F(HostileDocuments, HaveNamesThatDoNotLie)
{
    start();
    useKey();
    const std::string longest(255, 'n');
    const std::vector<std::pair<std::string, std::string>> names = {
        {"a\nb.txt", "a\xe2\x90\x8a"
                     "b.txt"},
        {"<b>&amp;<b>&x %s%n", "<b>&amp;<b>&x %s%n"},
        {"\xe2\x80\xaetxt.exe", "\xef\xbf\xbdtxt.exe"},
        {"\xe2\x81\xa6txt\xe2\x81\xa9.exe", "\xef\xbf\xbdtxt\xef\xbf\xbd.exe"},
        {"plain\xe3\x85\xa4.txt", "plain\xef\xbf\xbd.txt"},                // a letter without a shape
        {"plain\xcd\x8f.txt", "plain\xef\xbf\xbd.txt"},                    // joins, and is not seen
        {"plain\xef\xb8\x8f.txt", "plain\xef\xbf\xbd.txt"},                // another look of a letter
        {"\xe2\x9d\xa4\xef\xb8\x8f.txt", "\xe2\x9d\xa4\xef\xb8\x8f.txt"},  // a red heart
        {"\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d.txt", "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d.txt"},
        {"e\xcc\x81\xcc\x81.txt", "e\xcc\x81\xcc\x81.txt"},
        {"\xff\xfe", "\xc3\xbf\xc3\xbe"},
        {"tab\there", "tab\xe2\x90\x89here"},
        {longest, longest},
    };
    std::vector<std::string> paths;
    for (const auto& [name, shown] : names)
    {
        paths.push_back(_many.write(name, "x"));
    }
    drop(paths);
    tsRunUntil("all are open", [&] { return rows().size() == names.size(); });
    settle();
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        EXPECT_EQ(rows()[i], names[i].second);
        EXPECT_EQ(rows(4)[i].find('\n'), std::string::npos);
    }
    workWith("ctrl+shift+s");
    EXPECT_EQ(message(),
              "13 documents: 12 signed, 1 could not be signed.");  // there is no longer name for the signature
    EXPECT_THAT(_pFrame->workMessage()._details.utf8_string(), HasSubstr("File name too long"));
    for (std::size_t i = 0; i + 1 < paths.size(); ++i)
    {
        EXPECT_TRUE(std::filesystem::exists(paths[i] + ".sig"));
    }
}

TEST_F(HostileDocuments, MayBeNamedByAMegabyte)
{
    start();
    const std::string megabyte(1000000, 'm');
    drop({"/" + megabyte, "/\xff" + std::string(1000000, '\n'), "/" + std::string(1000000, '/')});
    tsRunUntil("they are refused", [this] { return _pFrame->refusalMessage() == "3 documents could not be opened."; });
    drop({"/" + megabyte});
    tsRunUntil("it is refused", [this] { return _pFrame->refusalMessage().Contains("longer than the system allows"); });
    EXPECT_LT(_pFrame->refusalMessage().length(), 200U);
    settle();
    EXPECT_EQ(rowCount(), 0);
}

// A label takes "&" for the mark of a key unless it is told otherwise.
TEST_F(HostileDocuments, HaveKeysWithNamesOfAnyKind)
{
    start();
    const std::string name = "<i>a&b&&c%s\xe2\x80\xae.pem";
    _many.write(name, newKeyText(512, false, "x"));
    const std::string shown = "<i>a&b&&c%s\xef\xbf\xbd.pem";
    tsScript script;
    std::string labels;
    script
        .waitUntil("the passphrase is asked for",
                   []
                   {
                       const auto* pDialog = dynamic_cast<wxTopLevelWindow*>(tsTopModalDialog());
                       return pDialog != nullptr && tsHasKeyboard(*pDialog);
                   })
        .perform("answer",
                 [&]
                 {
                     for (const wxWindow* pChild : tsTopModalDialog()->GetChildren())
                     {
                         labels += seenLabel(pChild);
                     }
                     tsType("x");
                 })
        .perform("press Return", [] { tsPressKeys("Return"); })
        .start();
    drop({_many.path(name)});
    tsRunUntil("the key is loaded", [this] { return _pFrame->keys().canSign(); });
    EXPECT_TRUE(script.isFinished());
    EXPECT_THAT(labels, HasSubstr(shown));
    settle();
    EXPECT_THAT(status(1), HasSubstr(shown.substr(0, 20)));

    hoEncryptionDialog texts(_pFrame, _pFrame->keys());
    EXPECT_THAT(seenLabel(wxWindow::FindWindowByName("keys", &texts)), HasSubstr(", " + shown + "."));
}

TEST_F(HostileDocuments, LeaveTheTextsAlone)
{
    start();
    useKey();
    hoEncryptionDialog texts(_pFrame, _pFrame->keys());
    auto* pPlain = dynamic_cast<wxTextCtrl*>(wxWindow::FindWindowByName("plain", &texts));
    auto* pCipher = dynamic_cast<wxTextCtrl*>(wxWindow::FindWindowByName("cipher", &texts));
    tsScript script;
    script.waitUntil("the texts have the keyboard", [&] { return tsHasKeyboard(texts); })
        .perform("write far too much into each",
                 [&]
                 {
                     pPlain->SetValue(wxString('p', 400000));
                     pCipher->SetValue(wxString('0', 400000));
                     tsRunEvents();
                     tsPressKeys("alt+d");
                 })
        .waitUntil(
            "it is told",
            [&] { return wxWindow::FindWindowByName("said", &texts)->GetLabel().StartsWith("The cipher text has "); })
        .perform("leave", [] { tsPressKeys("Escape"); })
        .start();
    texts.ShowModal();
    EXPECT_TRUE(script.isFinished());
    EXPECT_THAT(wxWindow::FindWindowByName("count", &texts)->GetLabel().utf8_string(),
                HasSubstr("400,000 of 127 bytes: too long"));
    EXPECT_EQ(pPlain->GetValue().length(), 400000U);
}
