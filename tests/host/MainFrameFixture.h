// SPDX-License-Identifier: Apache-2.0
// Starts the application with its real main window and ends it again, in a settings folder of the test's own.
#ifndef COUNTERSIGN_TESTS_HOST_MAIN_FRAME_FIXTURE_H
#define COUNTERSIGN_TESTS_HOST_MAIN_FRAME_FIXTURE_H

#include "tests/support/TemporaryFolder.h"

#include "app/ApplicationShell.h"
#include "host/MainFrame.h"
#include "host/window/hoDocumentDropTarget.h"
#include "tests/host/DocumentRows.h"
#include "tests/host/NewKey.h"
#include "tests/support/tsWindowTest.h"

#include <gtest/gtest.h>
#include <wx/menu.h>
#include <wx/statusbr.h>

#include <stdexcept>
#include <string>
#include <vector>

class MainFrameFixture : public testing::Test
{
protected:
    void SetUp() override { setenv("XDG_CONFIG_HOME", _folder.path("config").c_str(), 1); }

    void TearDown() override
    {
        if (_pFrame != nullptr)
        {
            closeWindow();
        }
        wxGetApp().OnExit();
    }

    // arguments: the application's, the program's name included.
    void start(const std::vector<std::string>& arguments = {"countersign-desktop"})
    {
        ASSERT_NO_FATAL_FAILURE(startUnwatched(arguments));
        ASSERT_TRUE(tsRunUntil("the main window has the keyboard", [this] { return tsHasKeyboard(*_pFrame); }));
        settle();
        tsRunProgram({"xdotool", "getactivewindow"}, &_mainWindowId);
    }

    // The window is made and its documents are open; nobody waits for it to appear.
    void startUnwatched(const std::vector<std::string>& arguments)
    {
        std::vector<std::wstring> texts;
        std::vector<wchar_t*> pointers;
        for (const std::string& argument : arguments)
        {
            texts.push_back(wxString::FromUTF8(argument).ToStdWstring());
        }
        for (std::wstring& text : texts)
        {
            pointers.push_back(text.data());
        }
        wxGetApp().argc = static_cast<int>(texts.size());
        wxGetApp().argv.Init(wxGetApp().argc, pointers.data());
        _mainWindowId.clear();
        ASSERT_TRUE(wxGetApp().OnInit());
        _pFrame = dynamic_cast<MainFrame*>(wxGetApp().GetTopWindow());
        ASSERT_NE(_pFrame, nullptr);
        settle();
    }

    // Opens a menu by its key, and waits until it takes the next one.
    void openMenu(const std::string& keys)
    {
        tsRunUntil("the main window has the keyboard", [this] { return tsHasKeyboard(*_pFrame); });
        openSubmenu(keys);
    }
    // The same where another menu is open already.
    void openSubmenu(const std::string& keys)
    {
        bool isOpen = false;
        const auto onOpen = [&](wxMenuEvent& event)
        {
            isOpen = true;
            event.Skip();
        };
        _pFrame->Bind(wxEVT_MENU_OPEN, onOpen);
        tsPressKeys(keys);
        tsRunUntil("the menu is open", [&] { return isOpen; });
        _pFrame->Unbind(wxEVT_MENU_OPEN, onOpen);
    }
    // Waits until the keys that were pressed have been handled, for those that are to do nothing: a menu opens after
    // them, and is closed again.
    void handleAllKeys()
    {
        openMenu("alt+f");
        bool isClosed = false;
        const auto onClose = [&](wxMenuEvent& event)
        {
            isClosed = true;
            event.Skip();
        };
        _pFrame->Bind(wxEVT_MENU_CLOSE, onClose);
        tsPressKeys("Escape");
        tsRunUntil("the menu is closed", [&] { return isClosed; });
        _pFrame->Unbind(wxEVT_MENU_CLOSE, onClose);
    }
    // By the menu's key and the item's.
    void choose(const std::string& menuKeys, const std::string& itemKeys)
    {
        openMenu(menuKeys);
        tsPressKeys(itemKeys);
    }

    // Signs a document in a new window, which takes longer than any test; endLongWork ends it.
    void beginLongWork()
    {
        start({"countersign-desktop", _folder.write("huge", "")});
        dropNewKey();
        // Of holes alone.
        std::filesystem::resize_file(_folder.path("huge"), 1ULL << 40);
        settle();
        tsPressKeys("ctrl+shift+s");
    }
    void endLongWork() const { std::filesystem::resize_file(_folder.path("huge"), 10); }

    // Whether a window other than the main one has the keyboard, also one that the toolkit does not count among its
    // own: the desktop's file and message dialogs.
    bool isAnotherWindowActive() const
    {
        std::string id;
        return tsRunProgram({"xdotool", "getactivewindow"}, &id) == 0 && !id.empty() && id != _mainWindowId;
    }

    // Everything that is to be done now has been done, what was put off by CallAfter too.
    void settle()
    {
        bool isDone = false;
        wxEvtHandler& queue = _pFrame != nullptr ? static_cast<wxEvtHandler&>(*_pFrame) : wxGetApp();
        queue.CallAfter([&] { isDone = true; });
        tsRunUntil("events are handled", [&] { return isDone; });
        tsRunEvents();
    }

    void closeWindow()
    {
        bool isGone = false;
        _pFrame->Bind(wxEVT_DESTROY,
                      [&](wxWindowDestroyEvent& event)
                      {
                          isGone = isGone || event.GetWindow() == _pFrame;
                          event.Skip();
                      });
        // Without the question that comes in the middle of work.
        _pFrame->Close(_pFrame->isAtWork());
        tsRunUntil("the main window is gone", [&] { return isGone; });
        _pFrame = nullptr;
    }

    // Null as long as there has been no document.
    hoDocumentListCtrl* findList() const { return findDocumentRows(_pFrame); }
    hoDocumentListCtrl& list() const
    {
        if (findList() == nullptr)
        {
            throw std::logic_error("there is no list of documents yet");
        }
        return *findList();
    }
    int rowCount() const { return findList() != nullptr ? static_cast<int>(amountOfRows(*findList())) : 0; }
    std::vector<std::string> rows(int column = 0) const
    {
        std::vector<std::string> texts;
        for (int row = 0; row < rowCount(); ++row)
        {
            texts.push_back(textOfRow(list(), row, column));
        }
        return texts;
    }
    std::vector<std::string> selectedRows() const
    {
        std::vector<std::string> texts;
        for (const std::size_t row : findList() != nullptr ? findList()->selected() : std::vector<std::size_t>())
        {
            texts.push_back(textOfRow(list(), static_cast<int>(row), 0));
        }
        return texts;
    }
    std::string status(int field) const { return _pFrame->GetStatusBar()->GetStatusText(field).utf8_string(); }

    void openAskedFor(const std::string& path)
    {
        _pFrame->openFilePath(gtString(path.data(), static_cast<int>(path.size())), true);
        settle();
    }

    // Makes a private key of 1024 bits in mine.pem, and loads it as a drop of its file does.
    void dropNewKey()
    {
        const std::string path = _folder.write("mine.pem", newKeyText(1024));
        std::filesystem::permissions(path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
        static_cast<hoDocumentDropTarget*>(_pFrame->GetDropTarget())->drop("file://" + path + "\r\n");
        tsRunUntil("the key is loaded", [this] { return _pFrame->keys().canSign(); });
        settle();
    }

    // Presses keys that sign or test, and waits for the result.
    void work(const std::string& keys)
    {
        // The result of the work before is there until the key arrives.
        bool isChosen = false;
        const auto onMenu = [&](wxCommandEvent& event)
        {
            isChosen = true;
            event.Skip();
        };
        _pFrame->Bind(wxEVT_MENU, onMenu);
        tsPressKeys(keys);
        tsRunUntil("the work is done",
                   [&] { return isChosen && !_pFrame->isAtWork() && !_pFrame->workMessage()._line.empty(); });
        _pFrame->Unbind(wxEVT_MENU, onMenu);
    }

    // Whether the window with this title has the keyboard, also one of the desktop's own.
    static bool isActive(const std::string& title)
    {
        std::string found;
        tsRunProgram({"xdotool", "getactivewindow", "getwindowname"}, &found);
        return found == title + "\n";
    }

    const TemporaryFolder _folder;
    MainFrame* _pFrame = nullptr;
    std::string _mainWindowId;
};

#endif
