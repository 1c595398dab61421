// SPDX-License-Identifier: Apache-2.0
#include "tests/host/MainFrameFixture.h"

#include "host/desktop/hoUriList.h"
#include "host/window/hoCommands.h"
#include "host/window/hoDocumentDropTarget.h"

#include <gmock/gmock.h>
#include <wx/clipbrd.h>
#include <wx/dialog.h>
#include <wx/infobar.h>
#include <wx/menu.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include <atomic>
#include <cstdlib>
#include <thread>

#include <sys/stat.h>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

wxString clipboardText()
{
    const wxClipboardLocker clipboard;
    wxTextDataObject text;
    return wxTheClipboard->GetData(text) ? text.GetText() : wxString();
}

class MainWindow : public MainFrameFixture
{
protected:
    bool isEmptyLineShown() const { return wxWindow::FindWindowByName("emptyLine", _pFrame)->IsShownOnScreen(); }
    bool isBarShown() const
    {
        for (const wxWindow* pChild : _pFrame->GetChildren())
        {
            if (dynamic_cast<const wxInfoBar*>(pChild) != nullptr)
            {
                return pChild->IsShown();
            }
        }
        return false;
    }
    int columnWidth(int column) const { return list().GetColumn(static_cast<unsigned int>(column))->GetWidth(); }
    void startWithDocuments()
    {
        start({"countersign-desktop", _folder.write("b.txt", "22"), _folder.write("a.txt", "1"),
               _folder.write("c.txt", "333")});
    }
};
}  // namespace

TEST_F(MainWindow, SaysWhatToDoWhenItIsEmpty)
{
    start();
    EXPECT_EQ(_pFrame->GetTitle(), "Countersign");
    EXPECT_TRUE(isEmptyLineShown());
    EXPECT_EQ(findList(), nullptr);
    EXPECT_FALSE(isBarShown());
    EXPECT_EQ(status(2), "No documents");
    EXPECT_GE(_pFrame->GetMinSize().GetWidth(), 400);
    EXPECT_GE(_pFrame->GetMinSize().GetHeight(), 200);
    EXPECT_TRUE(_pFrame->GetIcons().GetIconCount() > 0);
}

TEST_F(MainWindow, OpensTheArguments)
{
    startWithDocuments();
    EXPECT_FALSE(isEmptyLineShown());
    EXPECT_THAT(rows(0), ElementsAre("b.txt", "a.txt", "c.txt"));
    EXPECT_THAT(rows(2), ElementsAre("2 bytes", "1 byte", "3 bytes"));
    EXPECT_THAT(rows(3)[0], testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}"));
    EXPECT_THAT(rows(4)[2], _folder.path("c.txt"));
    EXPECT_THAT(selectedRows(), ElementsAre("b.txt", "a.txt", "c.txt"));
    EXPECT_EQ(status(2), "3 documents, 6 bytes, 3 selected");
}

TEST_F(MainWindow, OpensTheDocumentThatArrivedBeforeIt)
{
    start({_folder.write("early\xc3\xa9.txt", "x")});
    EXPECT_THAT(rows(), ElementsAre("early\xc3\xa9.txt"));
}

TEST_F(MainWindow, HasAllColumnsInViewAtFirst)
{
    startWithDocuments();
    // The window may have the keyboard before it has its size.
    tsRunUntil("all columns are in view",
               [this]
               {
                   int width = 0;
                   for (int column = 0; column < static_cast<int>(list().GetColumnCount()); ++column)
                   {
                       width += columnWidth(column);
                   }
                   return width <= list().GetClientSize().GetWidth();
               });
    for (int column = 0; column < static_cast<int>(list().GetColumnCount()); ++column)
    {
        for (const std::string& text : rows(column))
        {
            EXPECT_LT(list().GetTextExtent(wxString::FromUTF8(text)).GetWidth() + 8, columnWidth(column)) << text;
        }
    }
}

TEST_F(MainWindow, OpensADocumentThatIsAskedForAndComesToTheFront)
{
    startWithDocuments();
    auto* pOther = new wxFrame(nullptr, wxID_ANY, "other");
    pOther->Show();
    pOther->Raise();
    ASSERT_TRUE(tsRunUntil("another window has the keyboard", [&] { return tsHasKeyboard(*pOther); }));

    const std::string path = _folder.write("new.txt", "x");
    _pFrame->openFilePath(path.c_str(), false);
    settle();
    EXPECT_THAT(rows(), ElementsAre("b.txt", "a.txt", "c.txt", "new.txt"));
    EXPECT_THAT(selectedRows(), ElementsAre("b.txt", "a.txt", "c.txt"));
    EXPECT_TRUE(tsHasKeyboard(*pOther));

    openAskedFor(path);
    EXPECT_EQ(rows().size(), 4U);
    EXPECT_THAT(selectedRows(), ElementsAre("new.txt"));
    tsRunUntil("the main window has the keyboard", [this] { return tsHasKeyboard(*_pFrame); });
    pOther->Destroy();
}

TEST_F(MainWindow, ComesBackFromBeingIconized)
{
    start();
    _pFrame->Iconize();
    ASSERT_TRUE(tsRunUntil("the main window is an icon", [this] { return _pFrame->IsIconized(); }));
    wxGetApp().MacOpenFile(wxString::FromUTF8(_folder.write("new.txt", "x")));
    tsRunUntil("the main window is back", [this] { return !_pFrame->IsIconized() && tsHasKeyboard(*_pFrame); });
    EXPECT_THAT(selectedRows(), ElementsAre("new.txt"));
}

TEST_F(MainWindow, SelectsTheRowOfADocumentThatIsOpen)
{
    startWithDocuments();
    openAskedFor(_folder.path("./a.txt"));
    EXPECT_THAT(rows(), ElementsAre("b.txt", "a.txt", "c.txt"));
    EXPECT_THAT(selectedRows(), ElementsAre("a.txt"));
}

TEST_F(MainWindow, SaysWhyADocumentCannotBeOpened)
{
    start();
    openAskedFor(_folder.path("missing.txt"));
    EXPECT_THAT(rows(), IsEmpty());
    EXPECT_TRUE(isBarShown());
    EXPECT_EQ(_pFrame->refusalMessage().utf8_string(),
              "Cannot open \xe2\x80\x9cmissing.txt\xe2\x80\x9d: there is no such file.");

    ASSERT_EQ(mkfifo(_folder.path("pipe").c_str(), 0600), 0);
    openAskedFor(_folder.path("pipe"));
    openAskedFor(_folder.path());
    openAskedFor("");
    EXPECT_THAT(rows(), IsEmpty());
    EXPECT_EQ(_pFrame->refusalMessage(), "4 documents could not be opened.");
    EXPECT_TRUE(isEmptyLineShown());

    // The details, by the bar's button; and with them the bar has done its work.
    tsScript script;
    wxString details;
    script.waitUntil("the details are shown", [] { return tsTopModalDialog() != nullptr; })
        .waitUntil("the details have the keyboard",
                   [] { return tsHasKeyboard(*dynamic_cast<wxTopLevelWindow*>(tsTopModalDialog())); })
        .perform("read and close them",
                 [&]
                 {
                     for (wxWindow* pChild : tsTopModalDialog()->GetChildren())
                     {
                         if (const auto* pText = dynamic_cast<wxTextCtrl*>(pChild))
                         {
                             details = pText->GetValue();
                         }
                     }
                     tsPressKeys("Escape");
                 })
        .start();
    for (const wxWindow* pChild : _pFrame->GetChildren())
    {
        if (dynamic_cast<const wxInfoBar*>(pChild) != nullptr)
        {
            const wxRect bar = pChild->GetScreenRect();
            tsClickAt(wxPoint(bar.GetRight() - 170, bar.GetTop() + bar.GetHeight() / 2));
        }
    }
    tsRunUntil("the bar is gone", [this] { return !isBarShown(); });
    EXPECT_TRUE(script.isFinished());
    EXPECT_THAT(details.utf8_string(), HasSubstr(_folder.path("missing.txt") + "\n    there is no such file"));
    EXPECT_THAT(details.utf8_string(), HasSubstr(_folder.path("pipe") + "\n    it is a pipe"));
    EXPECT_THAT(details.utf8_string(), HasSubstr(_folder.path() + "\n    it is a folder"));
    EXPECT_EQ(_pFrame->refusalMessage(), "");
}

TEST_F(MainWindow, SurvivesHostileNames)
{
    start();
    for (const char* name : {"two\nlines\r.txt", "\x01\x1b[31mred", "not \xff UTF-8", "\xe2\x80\xaegpj.exe", "%s%n&a"})
    {
        _folder.write(name, "x");
        openAskedFor(_folder.path(name));
    }
    EXPECT_THAT(rows(), ElementsAre("two\xe2\x90\x8alines\xe2\x90\x8d.txt", "\xe2\x90\x81\xe2\x90\x9b[31mred",
                                    "not \xc3\xbf UTF-8", "\xef\xbf\xbdgpj.exe", "%s%n&a"));
    openAskedFor(std::string(1000000, '\n'));
    EXPECT_LT(_pFrame->refusalMessage().length(), 200U);
    EXPECT_EQ(_pFrame->refusalMessage().find('\n'), wxString::npos);
    const wxMenuItem* pRecent = nullptr;
    const int id = _pFrame->GetMenuBar()->FindMenuItem("File", "Open recent");
    pRecent = _pFrame->GetMenuBar()->FindItem(id);
    ASSERT_NE(pRecent, nullptr);
    EXPECT_THAT(pRecent->GetSubMenu()->FindItemByPosition(0)->GetItemLabel().utf8_string(), HasSubstr("%s%n&&a"));
    EXPECT_THAT(pRecent->GetSubMenu()->FindItemByPosition(4)->GetItemLabelText().utf8_string(),
                HasSubstr("two\xe2\x90\x8alines"));
}

TEST_F(MainWindow, OpensWhatIsDropped)
{
    start();
    auto* pTarget = dynamic_cast<hoDocumentDropTarget*>(_pFrame->GetDropTarget());
    ASSERT_NE(pTarget, nullptr);
    _folder.write("a b.txt", "x");
    _folder.write("\xff.txt", "x");
    pTarget->drop("file://" + _folder.path("a%20b.txt") + "\r\nfile://" + hoThisHost().asStdString() +
                  _folder.path("%ff.txt") + "\r\nhttp://example.org/c\r\n");
    EXPECT_EQ(rowCount(), 0) << "the other program waits";
    EXPECT_EQ(_pFrame->refusalMessage(), "");
    settle();
    EXPECT_THAT(rows(), ElementsAre("a b.txt", "\xc3\xbf.txt"));
    EXPECT_EQ(selectedRows().size(), 2U);
    EXPECT_EQ(_pFrame->refusalMessage().utf8_string(),
              "Cannot open \xe2\x80\x9c"
              "c\xe2\x80\x9d: it is not on this machine; choose a file that is.");
}

TEST_F(MainWindow, OpensWhatIsInADroppedFolder)
{
    start();
    auto* pTarget = dynamic_cast<hoDocumentDropTarget*>(_pFrame->GetDropTarget());
    ASSERT_NE(pTarget, nullptr);
    std::filesystem::create_directory(_folder.path("few"));
    _folder.write("few/a", "x");
    _folder.write("few/a.sig", "00");
    _folder.write("few/b", "x");
    pTarget->drop("file://" + _folder.path("few") + "\r\n");
    settle();
    EXPECT_THAT(rows(), ElementsAre("a", "b"));
    EXPECT_EQ(_pFrame->refusalMessage(), "");

    std::filesystem::create_directory(_folder.path("many"));
    for (int number = 0; number <= 200; ++number)
    {
        _folder.write("many/" + std::to_string(number), "x");
    }
    for (const char* pAnswer : {"Escape", "alt+o"})
    {
        tsScript script;
        script.waitUntil("the question is there", [this] { return isAnotherWindowActive(); })
            .perform("answer", [&] { tsPressKeys(pAnswer); })
            .start();
        pTarget->drop("file://" + _folder.path("many") + "\r\nhttp://example.org/c\r\n");
        tsRunUntil("the question is answered", [&] { return script.isFinished() && !isAnotherWindowActive(); });
        settle();
        EXPECT_EQ(rowCount(), pAnswer == std::string("alt+o") ? 203 : 2) << pAnswer;
        EXPECT_THAT(_pFrame->refusalMessage().utf8_string(), HasSubstr("it is not on this machine")) << pAnswer;
    }
}

TEST_F(MainWindow, OpensWhatTheFileDialogGives)
{
    start();
    const std::string path = _folder.write("chosen.txt", "x");
    tsScript script;
    script
        .waitUntil("the file dialog has the keyboard",
                   []
                   {
                       // The toolkit does not count this one among its windows.
                       std::string title;
                       tsRunProgram({"xdotool", "getactivewindow", "getwindowname"}, &title);
                       return title == "Open documents\n";
                   })
        .perform("paste the path", [&] { tsPaste(path); })
        .perform("press Return", [] { tsPressKeys("Return"); })
        .start();
    tsPressKeys("ctrl+o");
    tsRunUntil("the document is open", [this] { return rows().size() == 1; });
    EXPECT_THAT(selectedRows(), ElementsAre("chosen.txt"));
}

TEST_F(MainWindow, OpensSeveralOfTheLastFolder)
{
    std::filesystem::create_directory(_folder.path("documents"));
    start({"countersign-desktop", _folder.write("documents/one.txt", "x")});
    closeWindow();
    wxGetApp().OnExit();
    _folder.write("documents/two.txt", "x");
    start();
    tsScript script;
    script.waitUntil("the file dialog is up", [] { return isActive("Open documents"); })
        .perform("choose all files",
                 []
                 {
                     tsPressKeys("ctrl+a");
                     tsPressKeys("Return");
                 })
        .start();
    tsPressKeys("ctrl+o");
    tsRunUntil("documents are open", [this] { return rowCount() > 0; });
    settle();
    EXPECT_THAT(rows(), testing::UnorderedElementsAre("one.txt", "two.txt"));
}

TEST_F(MainWindow, ForgetsRecentDocuments)
{
    startWithDocuments();
    closeWindow();
    wxGetApp().OnExit();
    std::filesystem::remove(_folder.path("a.txt"));
    const auto settings = [this] { return _folder.read("config/countersign/settings"); };
    start();
    EXPECT_THAT(settings(), HasSubstr("recent.2=" + _folder.path("a.txt") + "\n"));
    openMenu("alt+f");
    openSubmenu("r");
    tsPressKeys("2");
    tsRunUntil("it is told that it is gone", [this] { return !_pFrame->refusalMessage().empty(); });
    settle();
    EXPECT_THAT(settings(), Not(HasSubstr("a.txt")));
    EXPECT_THAT(settings(), HasSubstr("recent.2=" + _folder.path("b.txt") + "\n"));
    const auto entry = [this](int id)
    {
        const wxMenuItem* const pItem = _pFrame->GetMenuBar()->FindItem(id);
        return pItem == nullptr ? std::string() : pItem->GetItemLabelText().utf8_string();
    };
    EXPECT_EQ(entry(ID_RECENT_FIRST + 1), "2  " + _folder.path("b.txt"));
    EXPECT_EQ(entry(ID_RECENT_FIRST + 2), "");

    openMenu("alt+f");
    openSubmenu("r");
    tsPressKeys("c");
    tsRunUntil("they are forgotten", [&] { return entry(ID_RECENT_FIRST).empty(); });
    settle();
    EXPECT_THAT(settings(), Not(HasSubstr("recent.1=")));
    EXPECT_EQ(entry(ID_CLEAR_RECENT), "None yet");
}

TEST_F(MainWindow, RemembersRecentDocuments)
{
    startWithDocuments();
    closeWindow();
    wxGetApp().OnExit();

    start();
    EXPECT_THAT(rows(), IsEmpty());
    openMenu("alt+f");
    openSubmenu("r");
    tsPressKeys("2");
    tsRunUntil("the document is open", [this] { return rows().size() == 1; });
    EXPECT_THAT(rows(), ElementsAre("a.txt"));
}

TEST_F(MainWindow, RemembersItsSize)
{
    start();
    _pFrame->SetSize(700, 444);
    tsRunUntil("the window has its size", [this] { return _pFrame->GetSize() == wxSize(700, 444); });
    settle();
    closeWindow();
    wxGetApp().OnExit();
    start();
    SCOPED_TRACE(testing::Message() << "its size is " << _pFrame->GetSize().x << " by " << _pFrame->GetSize().y);
    // Give or take the frame, of which the toolkit learns from the window manager only later.
    tsRunUntil("the window has its size again",
               [this]
               {
                   const wxSize size = _pFrame->GetSize();
                   return std::abs(size.x - 700) <= 10 && std::abs(size.y - 444) <= 50;
               });
}

#ifdef COUNTERSIGN_DESKTOP
// One process knows what its window manager puts around windows; the next one has to learn it.
TEST_F(MainWindow, KeepsItsSizeFromStartToStart)
{
    const auto runAndClose = [this](const char* pNewWidth, const char* pNewHeight)
    {
        std::atomic<bool> hasEnded{false};
        std::thread program(
            [&]
            {
                EXPECT_EQ(tsRunProgram({COUNTERSIGN_DESKTOP}), 0);
                hasEnded = true;
            });
        // With the number of its window at the beginning.
        const auto line = []
        {
            std::string lines;
            tsRunProgram({"wmctrl", "-l"}, &lines);
            return lines.find(" Countersign\n") != std::string::npos ? lines : std::string();
        };
        tsRunUntil("its window is there", [&] { return !line().empty(); });
        const std::string window = line().substr(0, line().find(' '));
        tsRunUntil("it is more than a beginning",
                   [&]
                   {
                       std::string facts;
                       tsRunProgram({"xwininfo", "-id", window}, &facts);
                       const std::size_t width = facts.find("Width: ");
                       return width != std::string::npos && std::strtol(facts.c_str() + width + 7, nullptr, 10) >= 600;
                   });
        if (pNewWidth != nullptr)
        {
            tsRunProgram({"xdotool", "windowsize", window, pNewWidth, pNewHeight});
            const std::string geometry = std::string("-geometry ") + pNewWidth + "x" + pNewHeight;
            tsRunUntil("it has its new size",
                       [&]
                       {
                           std::string facts;
                           tsRunProgram({"xwininfo", "-id", window}, &facts);
                           return facts.find(geometry) != std::string::npos;
                       });
        }
        EXPECT_EQ(tsRunProgram({"wmctrl", "-c", "Countersign"}), 0);
        tsRunUntil("it has ended", [&] { return hasEnded.load(); });
        program.join();
        tsRunUntil("the window manager has taken notice", [&] { return line().empty(); });
        return _folder.read("config/countersign/settings");
    };
    const std::string first = runAndClose(nullptr, nullptr);
    const auto number = [&](const std::string& name)
    { return std::stoi(first.substr(first.find("window." + name + "=") + name.size() + 8)); };
    EXPECT_EQ(number("w") - number("decor_l") - number("decor_r"), 900) << first;
    EXPECT_EQ(runAndClose(nullptr, nullptr), first);
    EXPECT_EQ(runAndClose(nullptr, nullptr), first);
    const std::string smaller = runAndClose("650", "400");
    EXPECT_NE(smaller, first);
    EXPECT_EQ(runAndClose(nullptr, nullptr), smaller);
}
#endif

TEST_F(MainWindow, RemembersItsColumns)
{
    startWithDocuments();
    list().setColumnWidths({123});
    closeWindow();
    wxGetApp().OnExit();
    // Without documents there are no columns.
    start();
    closeWindow();
    wxGetApp().OnExit();
    startWithDocuments();
    EXPECT_EQ(columnWidth(0), 123);
}

TEST_F(MainWindow, StartsWithSettingsThatMakeNoSense)
{
    std::filesystem::create_directories(_folder.path("config/countersign"));
    _folder.write("config/countersign/settings",
                  "column.1=-5\ncolumn.2=x\nwindow.w=99999999999\nwindow.h=-1\nrecent.1=%00\nrecent.2=\n");
    startWithDocuments();
    EXPECT_GT(columnWidth(0), 20);
    EXPECT_GE(_pFrame->GetSize().GetWidth(), 400);
}

TEST_F(MainWindow, StartsWithoutReadableSettings)
{
    std::filesystem::create_directories(_folder.path("config/countersign/settings/not-a-file"));
    start();
    openAskedFor(_folder.write("a.txt", "x"));
    EXPECT_THAT(rows(), ElementsAre("a.txt"));
    EXPECT_THAT(status(0), HasSubstr("cannot be read and stays as it is"));
}

TEST_F(MainWindow, EnablesCommandsThatCanWork)
{
    const auto enabled = [this]
    {
        std::vector<std::string> names;
        for (const auto& [id, pName] :
             std::initializer_list<std::pair<int, const char*>>{{ID_VIEW_DOCUMENTS, "open in program"},
                                                                {ID_SHOW_IN_FOLDER, "show in folder"},
                                                                {ID_PROPERTIES, "properties"},
                                                                {ID_CLOSE_DOCUMENTS, "close"},
                                                                {ID_CLOSE_ALL_DOCUMENTS, "close all"},
                                                                {ID_COPY_PATH, "copy path"},
                                                                {wxID_SELECTALL, "select all"},
                                                                {ID_KEY_INFORMATION, "information"},
                                                                {ID_FORGET_KEYS, "forget"},
                                                                {ID_SIGN, "sign"},
                                                                {ID_TEST, "test"},
                                                                {ID_SIGN_ALL, "sign all"},
                                                                {ID_TEST_ALL, "test all"}})
        {
            wxUpdateUIEvent event(id);
            _pFrame->ProcessWindowEvent(event);
            EXPECT_TRUE(event.GetSetEnabled()) << pName;
            if (event.GetEnabled())
            {
                names.emplace_back(pName);
            }
        }
        return names;
    };
    const auto load = [this](const std::string& name, const std::string& text)
    {
        static_cast<hoDocumentDropTarget*>(_pFrame->GetDropTarget())
            ->drop("file://" + _folder.write(name, text) + "\r\n");
        settle();
    };
    start();
    EXPECT_THAT(enabled(), IsEmpty());
    _folder.write("a", "x");
    openAskedFor(_folder.path("a"));
    EXPECT_THAT(enabled(), ElementsAre("open in program", "show in folder", "properties", "close", "close all",
                                       "copy path", "select all"));
    openAskedFor(_folder.write("b", "x"));
    list().select({0, 1});
    EXPECT_THAT(enabled(),
                ElementsAre("open in program", "show in folder", "close", "close all", "copy path", "select all"));
    list().select({});
    EXPECT_THAT(enabled(), ElementsAre("close all", "select all"));
    load("hers.pem", newKeyText(512, true));
    EXPECT_THAT(enabled(), ElementsAre("close all", "select all", "information", "forget", "test all"));
    list().select({0});
    EXPECT_THAT(enabled(), ElementsAre("open in program", "show in folder", "properties", "close", "close all",
                                       "copy path", "select all", "information", "forget", "test", "test all"));
    dropNewKey();
    list().select({});
    EXPECT_THAT(enabled(), ElementsAre("close all", "select all", "information", "forget", "sign all", "test all"));
    list().select({0, 1});
    EXPECT_THAT(enabled(), ElementsAre("open in program", "show in folder", "close", "close all", "copy path",
                                       "select all", "information", "forget", "sign", "test", "sign all", "test all"));
    tsPressKeys("ctrl+shift+w");
    tsRunUntil("all are closed", [this] { return rowCount() == 0; });
    EXPECT_THAT(enabled(), ElementsAre("information", "forget"));
}

TEST_F(MainWindow, ClosesDocumentsByKey)
{
    startWithDocuments();
    openAskedFor(_folder.path("a.txt"));
    tsPressKeys("Delete");
    tsRunUntil("a row is gone", [this] { return rowCount() == 2; });
    EXPECT_THAT(rows(), ElementsAre("b.txt", "c.txt"));
    EXPECT_THAT(selectedRows(), ElementsAre("c.txt"));
    tsPressKeys("ctrl+w");
    tsRunUntil("another row is gone", [this] { return rowCount() == 1; });
    EXPECT_THAT(selectedRows(), ElementsAre("b.txt"));
    tsPressKeys("ctrl+shift+w");
    tsRunUntil("the window is empty", [this] { return isEmptyLineShown(); });
    EXPECT_EQ(rowCount(), 0);
    EXPECT_EQ(status(2), "No documents");
    EXPECT_TRUE(std::filesystem::exists(_folder.path("a.txt")));
}

TEST_F(MainWindow, CopiesPaths)
{
    startWithDocuments();
    openAskedFor(_folder.path("a.txt"));
    tsPressKeys("ctrl+a");
    tsRunUntil("all is selected", [this] { return selectedRows().size() == 3; });
    tsPressKeys("ctrl+c");
    tsRunUntil("something is copied", [this] { return status(0) == "3 paths copied"; });
    EXPECT_EQ(clipboardText().utf8_string(),
              _folder.path("b.txt") + "\n" + _folder.path("a.txt") + "\n" + _folder.path("c.txt"));
}

TEST_F(MainWindow, SortsByAClickOnAHeader)
{
    startWithDocuments();
    openAskedFor(_folder.path("c.txt"));
    const wxRect listRect = list().GetScreenRect();
    const wxPoint nameHeader = listRect.GetTopLeft() + wxPoint(30, 10);
    tsClickAt(nameHeader);
    tsRunUntil("the rows are sorted", [this] { return rows().front() == "a.txt"; });
    EXPECT_THAT(rows(), ElementsAre("a.txt", "b.txt", "c.txt"));
    EXPECT_THAT(selectedRows(), ElementsAre("c.txt"));
    // Elsewhere: two clicks on one spot may be a double click.
    tsClickAt(nameHeader + wxPoint(15, 2));
    tsRunUntil("the rows are sorted the other way", [this] { return rows().front() == "c.txt"; });
    EXPECT_THAT(rows(), ElementsAre("c.txt", "b.txt", "a.txt"));
    EXPECT_THAT(selectedRows(), ElementsAre("c.txt"));
}

TEST_F(MainWindow, HoldsTenThousandDocuments)
{
    std::vector<std::string> arguments = {"countersign-desktop"};
    const int amount = 10000;
    const ManyFilesFolder many;
    for (int i = 0; i < amount; ++i)
    {
        arguments.push_back(many.write(std::to_string(i) + ".txt", "x"));
    }
    start(arguments);
    EXPECT_EQ(rowCount(), amount);
    EXPECT_EQ(status(2), "10,000 documents, 10.0 kB, 10,000 selected");
    openAskedFor(many.path("7777.txt"));
    EXPECT_THAT(selectedRows(), ElementsAre("7777.txt"));
    EXPECT_FALSE(placeOfCell(list(), 7777, 0).IsEmpty());
}

TEST_F(MainWindow, EndsByItsMenu)
{
    start();
    bool isGone = false;
    _pFrame->Bind(wxEVT_CLOSE_WINDOW,
                  [&](wxCloseEvent& event)
                  {
                      isGone = true;
                      event.Skip();
                  });
    tsPressKeys("ctrl+q");
    tsRunUntil("the window is closed", [&] { return isGone; });
    _pFrame = nullptr;
    settle();
}
