// SPDX-License-Identifier: Apache-2.0
// The tool bar: real clicks, grey like the menus, and gone where it is not wanted.
#include "tests/host/MainFrameFixture.h"
#include "tests/host/Tooltip.h"

#include "host/window/hoCommands.h"
#include "host/window/hoThemeIcon.h"

#include <gmock/gmock.h>
#include <wx/toolbar.h>

#include <gtk/gtk.h>

namespace
{
using testing::HasSubstr;

class ToolBar : public MainFrameFixture
{
protected:
    wxToolBar& bar() const { return *_pFrame->GetToolBar(); }
    bool isShown() const { return _pFrame->GetToolBar() != nullptr && bar().IsShownOnScreen(); }

    // Of all tools on the screen, in their order.
    std::vector<wxRect> toolPlaces() const
    {
        std::vector<wxRect> places;
        addToolPlaces(bar().GetHandle(), places);
        return places;
    }
    void addToolPlaces(GtkWidget* pWidget, std::vector<wxRect>& places) const
    {
        if (GTK_IS_TOOL_ITEM(pWidget))
        {
            int x = 0;
            int y = 0;
            gtk_widget_translate_coordinates(pWidget, bar().GetHandle(), 0, 0, &x, &y);
            places.emplace_back(
                bar().GetScreenPosition() + wxPoint(x, y),
                wxSize(gtk_widget_get_allocated_width(pWidget), gtk_widget_get_allocated_height(pWidget)));
        }
        else if (GTK_IS_CONTAINER(pWidget))
        {
            GList* const pChildren = gtk_container_get_children(GTK_CONTAINER(pWidget));
            for (GList* pChild = pChildren; pChild != nullptr; pChild = pChild->next)
            {
                addToolPlaces(GTK_WIDGET(pChild->data), places);
            }
            g_list_free(pChildren);
        }
    }
    void clickTool(int command)
    {
        const int position = bar().GetToolPos(command);
        ASSERT_GE(position, 0);
        tsClickAt(toolPlaces().at(static_cast<std::size_t>(position)).GetTopLeft() + wxPoint(16, 16));
    }
    void clickAndClose(int command, const std::string& title)
    {
        tsScript script;
        script
            .waitUntil(title + " is up",
                       [&]
                       {
                           std::string found;
                           tsRunProgram({"xdotool", "getactivewindow", "getwindowname"}, &found);
                           return found == title + "\n";
                       })
            .perform("close it", [] { tsPressKeys("Escape"); })
            .start();
        clickTool(command);
        tsRunUntil("it is closed", [&] { return script.isFinished() && tsHasKeyboard(*_pFrame); });
    }
    std::string help(int command) const { return bar().GetToolShortHelp(command).utf8_string(); }
    std::vector<bool> enabled() const
    {
        std::vector<bool> answers;
        for (const int command : {static_cast<int>(wxID_OPEN), static_cast<int>(ID_LOAD_PRIVATE_KEY),
                                  static_cast<int>(ID_SIGN), static_cast<int>(ID_TEST)})
        {
            answers.push_back(bar().GetToolEnabled(command));
        }
        return answers;
    }
    void waitForEnabled(const std::vector<bool>& expected)
    {
        tsRunUntil("the tools are grey as they should be", [&] { return enabled() == expected; });
    }
};
}  // namespace

TEST_F(ToolBar, DoesWhatTheMenusDo)
{
    start();
    waitForEnabled({true, true, false, false});
    clickAndClose(wxID_OPEN, "Open documents");
    clickAndClose(ID_LOAD_PRIVATE_KEY, "Load a private key");
    openAskedFor(_folder.write("a.txt", "x"));
    dropNewKey();
    waitForEnabled({true, true, true, true});
    clickTool(ID_SIGN);
    tsRunUntil("it is signed", [this] { return rows(1).front() == "Signed by me"; });
    _folder.write("a.txt", "y");
    tsRunUntil("it has changed", [this] { return rows(1).front() != "Signed by me"; });
    clickTool(ID_TEST);
    tsRunUntil("it is tested", [this] { return rows(1).front() == "Bad"; });
    EXPECT_THAT(help(ID_SIGN), HasSubstr("Ctrl+S"));
}

TEST_F(ToolBar, SaysWhyAToolIsGrey)
{
    const std::string sign = "Sign the selected documents (Ctrl+S)";
    const std::string test = "Test the signatures of the selected documents (Ctrl+T)";
    const auto waitForHelp = [this](int command, const std::string& expected)
    {
        const bool isFound = tsRunUntil("the tool says " + expected, [&] { return help(command) == expected; });
        EXPECT_TRUE(isFound) << "it says " << help(command);
    };
    start();
    waitForHelp(ID_SIGN, sign + "\nNothing to sign or test: open documents first.");
    waitForHelp(ID_TEST, test + "\nNothing to sign or test: open documents first.");
    EXPECT_EQ(help(wxID_OPEN), "Open documents, several at once (Ctrl+O)");
    openAskedFor(_folder.write("a.txt", "x"));
    waitForHelp(ID_SIGN, sign + "\nSigning and testing take a key: load one first.");
    dropNewKey();
    waitForHelp(ID_SIGN, sign);
    waitForHelp(ID_TEST, test);
    list().select({});
    waitForHelp(ID_SIGN, sign + "\nNo document is selected.");
}

// Also one that takes no click.
TEST_F(ToolBar, ShowsTheTooltipOfAGreyTool)
{
    start();
    waitForEnabled({true, true, false, false});
    EXPECT_EQ(shownTooltip(), "");
    const wxPoint place = toolPlaces().at(static_cast<std::size_t>(bar().GetToolPos(ID_SIGN))).GetTopLeft();
    for (const int distance : {16, 19})
    {
        tsRunProgram({"xdotool", "mousemove", std::to_string(place.x + distance), std::to_string(place.y + 16)});
        tsRunEvents();
    }
    tsRunUntil("the tooltip is up", [] { return !shownTooltip().empty(); });
    EXPECT_THAT(shownTooltip(), HasSubstr("open documents first"));
}

TEST_F(ToolBar, GoesWhereItIsNotWanted)
{
    start();
    ASSERT_TRUE(isShown());
    const int heightWith = _pFrame->GetClientSize().GetHeight();
    choose("alt+v", "t");
    tsRunUntil("it is gone", [this] { return !isShown(); });
    tsRunUntil("there is more room", [&] { return _pFrame->GetClientSize().GetHeight() > heightWith; });
    closeWindow();
    wxGetApp().OnExit();
    EXPECT_THAT(_folder.read("config/countersign/settings"), HasSubstr("toolBar=0\n"));

    start();
    EXPECT_FALSE(isShown());
    choose("alt+v", "t");
    tsRunUntil("it is back", [this] { return isShown(); });
    waitForEnabled({true, true, false, false});
    closeWindow();
    wxGetApp().OnExit();
    EXPECT_THAT(_folder.read("config/countersign/settings"), HasSubstr("toolBar=1\n"));
}

TEST_F(ToolBar, LeavesRoomOnASmallScreen)
{
    start();
    _pFrame->SetSize(_pFrame->GetMinSize());
    tsRunUntil("it is small", [this] { return _pFrame->GetSize() == _pFrame->GetMinSize(); });
    // All tools, and a good part of the window below them.
    EXPECT_GE(_pFrame->GetClientSize().GetHeight(), _pFrame->GetMinSize().GetHeight() / 2);
    const std::vector<wxRect> places = toolPlaces();
    ASSERT_EQ(places.size(), 4U);
    EXPECT_LE(places.back().GetRight(), _pFrame->GetScreenRect().GetRight());
    EXPECT_GT(places.back().width, 40);
}

// What the theme does not have is drawn by ourselves, in the same colour.
TEST_F(ToolBar, HasIconsOfItsOwn)
{
    start();
    for (const char* pName : {"document-open-symbolic", "countersign-no-such-icon"})
    {
        wxBitmap icon =
            hoThemeIcon(*_pFrame, pName, wxColour(200, 30, 40), R"(<path d="M2 8H14"/>)").GetBitmap({16, 16});
        ASSERT_TRUE(icon.IsOk()) << pName;
        const wxImage image = icon.ConvertToImage();
        int coloured = 0;
        for (int i = 0; i < 16 * 16; ++i)
        {
            const unsigned char* const pPixel = image.GetData() + 3 * i;
            coloured += image.GetAlpha(i % 16, i / 16) > 200 && pPixel[0] > 180 && pPixel[1] < 60 ? 1 : 0;
        }
        EXPECT_GT(coloured, 10) << pName;
    }
}
