// SPDX-License-Identifier: Apache-2.0
// The main window among others: its size, what is dropped on it, and its end.
#include "tests/host/MainFrameFixture.h"
#include "tests/host/NewKey.h"
#include "tests/support/tsContrast.h"

#include "host/window/hoDetailsDialog.h"
#include "host/window/hoDocumentDropTarget.h"
#include "host/window/hoEncryptionDialog.h"
#include "host/window/hoKeyInformationDialog.h"
#include "host/window/hoNewKeyDialog.h"
#include "host/window/hoPassphraseDialog.h"
#include "host/window/hoPreferencesDialog.h"

#include <gmock/gmock.h>
#include <wx/settings.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

namespace
{
const wxSize smallScreen(640, 480);
// What a usual window manager draws around a window.
const wxSize decorations(12, 34);

class WindowPlace : public MainFrameFixture
{
protected:
    // By the window manager.
    void maximise(bool isWanted)
    {
        tsRunProgram({"wmctrl", "-r", "Countersign", "-b",
                      std::string(isWanted ? "add" : "remove") + ",maximized_vert,maximized_horz"});
        tsRunUntil("the window manager has done it", [&] { return _pFrame->IsMaximized() == isWanted; });
    }
    static bool isNear(const wxSize& size, const wxSize& other)
    {
        return std::abs(size.x - other.x) <= 10 && std::abs(size.y - other.y) <= 50;
    }
    void startAtWork()
    {
        start({"countersign-desktop", _folder.write("huge", "")});
        dropNewKey();
        std::filesystem::resize_file(_folder.path("huge"), 64ULL << 30);
        settle();
        tsPressKeys("ctrl+shift+s");
        tsRunUntil("the work has begun", [this] { return _pFrame->isAtWork(); });
    }
};
}  // namespace

TEST_F(WindowPlace, IsTheOneFromBeforeMaximising)
{
    const wxSize wanted(700, 444);
    start();
    _pFrame->SetSize(wanted);
    tsRunUntil("the window has its size", [&] { return _pFrame->GetSize() == wanted; });
    settle();
    maximise(true);
    tsRunUntil("the window is large", [this] { return _pFrame->GetSize().x > 1000; });
    settle();
    closeWindow();
    wxGetApp().OnExit();

    // Once more, with nothing but what is remembered.
    for (int i = 0; i < 2; ++i)
    {
        start();
        tsRunUntil("the window is large", [this] { return _pFrame->IsMaximized() && _pFrame->GetSize().x > 1000; });
        settle();
        closeWindow();
        wxGetApp().OnExit();
    }
    start();
    tsRunUntil("the window is large", [this] { return _pFrame->IsMaximized() && _pFrame->GetSize().x > 1000; });
    maximise(false);
    SCOPED_TRACE(_folder.read("config/countersign/settings"));
    tsRunUntil("the window has its size again", [&] { return isNear(_pFrame->GetSize(), wanted); });
}

TEST_F(WindowPlace, IsEnoughOnASmallScreen)
{
    start();
    EXPECT_LE(_pFrame->GetMinSize().x, smallScreen.x);
    EXPECT_LE(_pFrame->GetMinSize().y, smallScreen.y - decorations.y);
    hoLoadedKey key;
    key._path = ("/home/somebody/" + std::string(80, 'n') + ".pem").c_str();
    hoKeyFileFacts facts;
    const std::string text = newKeyText(1024);
    key._pKey = hoLoadKey(text.data(), static_cast<int>(text.size()), nullptr, facts);
    ASSERT_NE(key._pKey, nullptr);
    const auto expectSmall = [](wxDialog& dialog, const char* pWhat)
    {
        // The least size is what a screen without room gets.
        const wxSize least = dialog.ClientToWindowSize(dialog.GetSizer()->GetMinSize());
        EXPECT_LE(least.x, smallScreen.x - decorations.x) << pWhat;
        EXPECT_LE(least.y, smallScreen.y - decorations.y) << pWhat;
        dialog.Destroy();
    };
    hoKeyRing keys;
    keys._private = key;
    keys._publics = {key, key};
    expectSmall(*new hoEncryptionDialog(_pFrame, keys), "texts");
    expectSmall(*new hoNewKeyDialog(_pFrame, gtString("/home/somebody/" + std::string(100, 'n'))), "new key pair");
    expectSmall(*new hoPreferencesDialog(_pFrame, hoPreferences()), "preferences");
    expectSmall(*new hoKeyInformationDialog(_pFrame, keys), "key information");
    expectSmall(*new hoDetailsDialog(_pFrame, "Details", wxString('n', 1000), "text"), "details");
    expectSmall(*new hoPassphraseDialog(_pFrame, "Passphrase of " + wxString('n', 60)), "passphrase");
}

TEST_F(WindowPlace, HasRoomForTheLinesOfDetails)
{
    start();
    const auto widthFor = [&](const wxString& line)
    {
        hoDetailsDialog dialog(_pFrame, "Details", "heading", "a.txt\n" + line + "\nb.txt");
        dialog.Layout();
        for (const wxWindow* pChild : dialog.GetChildren())
        {
            if (dynamic_cast<const wxTextCtrl*>(pChild) != nullptr)
            {
                return pChild->GetClientSize().x;
            }
        }
        return 0;
    };
    const wxString line('n', 90);
    EXPECT_GT(widthFor(line), _pFrame->GetTextExtent(line).x);
    EXPECT_LT(widthFor("short"), _pFrame->GetTextExtent(line).x);
    // It is scrolled.
    EXPECT_LT(widthFor(wxString('n', 100000)), 1000);
}

TEST_F(WindowPlace, ShowsWhereADropGoes)
{
    start({"countersign-desktop", _folder.write("a.txt", "x")});
    auto* pTarget = dynamic_cast<hoDocumentDropTarget*>(_pFrame->GetDropTarget());
    ASSERT_NE(pTarget, nullptr);
    wxWindow* const pDropFrame = wxWindow::FindWindowByName("dropFrame", _pFrame);
    ASSERT_NE(pDropFrame, nullptr);
    const wxColour highlight = wxSystemSettings::GetColour(wxSYS_COLOUR_HIGHLIGHT);
    const auto edge = [&]
    {
        const wxRect rect = pDropFrame->GetScreenRect();
        const wxImage picture = tsPictureOfScreen();
        return std::vector<wxColour>{tsInkOf(picture, wxRect(rect.x + 100, rect.y, 200, 3)).ground,
                                     tsInkOf(picture, wxRect(rect.x, rect.y + 60, 3, 100)).ground,
                                     tsInkOf(picture, wxRect(rect.GetRight() - 2, rect.y + 60, 3, 100)).ground,
                                     tsInkOf(picture, wxRect(rect.x + 100, rect.GetBottom() - 2, 200, 3)).ground};
    };
    EXPECT_THAT(edge(), testing::Each(testing::Ne(highlight)));
    pTarget->OnEnter(10, 10, wxDragCopy);
    tsRunUntil("the border is painted", [&] { return edge() == std::vector<wxColour>(4, highlight); });
    pTarget->OnLeave();
    tsRunUntil("the border is gone",
               [&]
               {
                   const std::vector<wxColour> colours = edge();
                   return std::count(colours.begin(), colours.end(), highlight) == 0;
               });
}

TEST_F(WindowPlace, AsksBeforeItEndsInTheMiddleOfWork)
{
    startAtWork();
    bool isGone = false;
    _pFrame->Bind(wxEVT_DESTROY,
                  [&](wxWindowDestroyEvent& event)
                  {
                      isGone = isGone || event.GetWindow() == _pFrame;
                      event.Skip();
                  });
    // Return takes the button that the keyboard is on at first.
    for (const std::string& answer : std::vector<std::string>{"Return", "Escape", "alt+q"})
    {
        tsScript script;
        script
            .waitUntil("the question is there",
                       [this]
                       {
                           std::string id;
                           tsRunProgram({"xdotool", "getactivewindow"}, &id);
                           return _pFrame->isAskingToQuit() && !id.empty() && id != _mainWindowId;
                       })
            .perform("answer", [answer] { tsPressKeys(answer); })
            .start();
        tsRunProgram({"wmctrl", "-c", "Countersign"});
        tsRunUntil("the question is answered",
                   [&] { return script.isFinished() && (isGone || !_pFrame->isAskingToQuit()); });
        tsRunEvents();
        if (answer != "alt+q")
        {
            EXPECT_FALSE(isGone) << answer;
            EXPECT_TRUE(_pFrame->isAtWork()) << answer;
        }
    }
    tsRunUntil("the window is gone", [&] { return isGone; });
    _pFrame = nullptr;
    EXPECT_FALSE(std::filesystem::exists(_folder.path("huge.sig")));
}
