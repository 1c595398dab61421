// SPDX-License-Identifier: Apache-2.0
// The list of the documents: its menu, why commands are grey, and its order while states change.
#include "tests/host/MainFrameFixture.h"
#include "tests/host/Tooltip.h"

#include <gmock/gmock.h>

#include <gtk/gtk.h>

namespace
{
using testing::ElementsAre;

class DocumentsMenu : public MainFrameFixture
{
protected:
    // Where the menu is that is up, or an empty place.
    static wxRect menuPlace()
    {
        wxRect place;
        GList* const pWindows = gtk_window_list_toplevels();
        for (GList* pWindow = pWindows; pWindow != nullptr; pWindow = pWindow->next)
        {
            GtkWidget* const pWidget = GTK_WIDGET(pWindow->data);
            if (GTK_IS_MENU(gtk_bin_get_child(GTK_BIN(pWidget))) && gtk_widget_get_mapped(pWidget) != FALSE)
            {
                int x = 0;
                int y = 0;
                gdk_window_get_origin(gtk_widget_get_window(pWidget), &x, &y);
                place = wxRect(x, y, gtk_widget_get_allocated_width(pWidget), gtk_widget_get_allocated_height(pWidget));
            }
        }
        g_list_free(pWindows);
        return place;
    }
};
}  // namespace

TEST_F(DocumentsMenu, OpensAtTheRowWhenTheKeyboardCallsIt)
{
    start({"countersign-desktop", _folder.write("a.txt", "x"), _folder.write("b.txt", "x"), _folder.write("c.txt", "x"),
           _folder.write("d.txt", "x")});
    openAskedFor(_folder.path("c.txt"));
    // The pointer is elsewhere.
    const wxRect listRect = list().GetScreenRect();
    tsRunProgram(
        {"xdotool", "mousemove", std::to_string(listRect.GetRight() - 20), std::to_string(listRect.GetBottom() - 20)});
    for (const char* pKeys : {"Menu", "shift+F10"})
    {
        wxRect menu;
        tsScript script;
        script
            .waitUntil("the menu is up",
                       [&]
                       {
                           menu = menuPlace();
                           return !menu.IsEmpty();
                       })
            .perform("close it", [] { tsPressKeys("Escape"); })
            .start();
        tsPressKeys(pKeys);
        tsRunUntil("the menu is closed", [&] { return script.isFinished() && menuPlace().IsEmpty(); });
        const wxRect row = placeOfCell(list(), 2, 0);
        // Give or take a border and the head of the columns.
        EXPECT_NEAR(menu.y, row.GetBottom(), 32) << pKeys;
        EXPECT_NEAR(menu.x, row.x, 16) << pKeys;
    }
}

TEST_F(DocumentsMenu, KeepsTheOrderTrueWhileStatesChange)
{
    start({"countersign-desktop", _folder.write("file-10", "x"), _folder.write("file-2", "x"),
           _folder.write("file-1", "x")});
    dropNewKey();
    const wxRect head = list().GetScreenRect();
    // By state, then by name.
    tsClickAt(head.GetTopLeft() + wxPoint(list().GetColumn(0)->GetWidth() + 30, 10));
    tsRunUntil("the rows are sorted", [this] { return rows().front() == "file-1"; });
    EXPECT_THAT(rows(), ElementsAre("file-1", "file-2", "file-10"));
    openAskedFor(_folder.path("file-1"));
    work("ctrl+s");
    // Not signed comes before signed.
    EXPECT_THAT(rows(), ElementsAre("file-2", "file-10", "file-1"));
    EXPECT_THAT(rows(1), ElementsAre("Not signed", "Not signed", "Signed by me"));
    EXPECT_THAT(selectedRows(), ElementsAre("file-1"));
    openAskedFor(_folder.path("file-2"));
    work("ctrl+s");
    EXPECT_THAT(rows(), ElementsAre("file-10", "file-1", "file-2"));
    EXPECT_THAT(selectedRows(), ElementsAre("file-2"));
}

TEST_F(DocumentsMenu, WorksOnTheSelectedDocuments)
{
    start({"countersign-desktop", _folder.write("a.txt", "x"), _folder.write("b.txt", "x")});
    dropNewKey();
    openAskedFor(_folder.path("a.txt"));
    const auto chooseThere = [](const std::string& key)
    {
        tsScript script;
        script.waitUntil("the menu is up", [] { return !menuPlace().IsEmpty(); })
            .perform("choose", [&] { tsPressKeys(key); })
            .waitUntil("the menu is closed", [] { return menuPlace().IsEmpty(); })
            .start();
        tsPressKeys("Menu");
        tsRunUntil("it is chosen", [&] { return script.isFinished(); });
    };
    const auto waitForWork = [this] {
        tsRunUntil("the work is done",
                   [this] { return !_pFrame->isAtWork() && !_pFrame->workMessage()._line.empty(); });
    };
    chooseThere("s");
    waitForWork();
    EXPECT_THAT(rows(1), ElementsAre("Signed by me", "Not signed"));
    _folder.write("a.txt", "y");
    tsRunUntil("the change is seen", [this] { return rows(1)[0] == "Changed since"; });
    chooseThere("t");
    waitForWork();
    EXPECT_THAT(rows(1), ElementsAre("Bad", "Not signed"));
    chooseThere("c");
    tsRunUntil("its path is copied", [this] { return status(0) == "1 path copied"; });
    chooseThere("l");
    tsRunUntil("one is closed", [this] { return rowCount() < 2; });
    EXPECT_THAT(rows(), ElementsAre("b.txt"));
}

TEST_F(DocumentsMenu, SaysWhyCommandsAreGrey)
{
    start();
    // What the tooltip of an entry says once its menu is open.
    const auto tooltip = [this](const char* pMenuKeys, const char* pMenu, const char* pItem)
    {
        openMenu(pMenuKeys);
        const wxMenuItem* const pFound =
            _pFrame->GetMenuBar()->FindItem(_pFrame->GetMenuBar()->FindMenuItem(pMenu, pItem));
        char* const pText = gtk_widget_get_tooltip_text(pFound->GetMenuItem());
        std::string text = pText == nullptr ? "" : pText;
        g_free(pText);
        tsPressKeys("Escape");
        tsPressKeys("Escape");
        settle();
        return text;
    };
    EXPECT_EQ(tooltip("alt+f", "File", "Close all"), "No document is open.");
    EXPECT_EQ(tooltip("alt+e", "Edit", "Copy path"), "No document is open.");
    EXPECT_EQ(tooltip("alt+k", "Key", "Forget all keys"), "No key is loaded.");
    EXPECT_EQ(tooltip("alt+s", "Signature", "Test all"), "Nothing to sign or test: open documents first.");
    openAskedFor(_folder.write("a.txt", "x"));
    EXPECT_EQ(tooltip("alt+s", "Signature", "Test"), "Signing and testing take a key: load one first.");
    static_cast<hoDocumentDropTarget*>(_pFrame->GetDropTarget())
        ->drop("file://" + _folder.write("hers.pem", newKeyText(512, true)) + "\r\n");
    tsRunUntil("the public key is loaded", [this] { return _pFrame->keys().canTest(); });
    settle();
    EXPECT_EQ(tooltip("alt+s", "Signature", "Sign"), "Signing takes a private key.");
    EXPECT_EQ(tooltip("alt+s", "Signature", "Test"), "");
    EXPECT_EQ(tooltip("alt+s", "Signature", "Test all"), "");
    dropNewKey();
    EXPECT_EQ(tooltip("alt+s", "Signature", "Sign"), "");
    EXPECT_EQ(tooltip("alt+f", "File", "Close"), "");
    EXPECT_EQ(tooltip("alt+k", "Key", "Forget all keys"), "");
    list().select({});
    settle();
    EXPECT_EQ(tooltip("alt+e", "Edit", "Copy path"), "No document is selected.");
    EXPECT_EQ(tooltip("alt+s", "Signature", "Sign"), "No document is selected.");
    EXPECT_EQ(tooltip("alt+s", "Signature", "Sign all"), "");
}

TEST_F(DocumentsMenu, ShowsTheTooltipOfAGreyCommand)
{
    start();
    openMenu("alt+k");
    tsRunUntil("the menu is up", [] { return !menuPlace().IsEmpty(); });
    const wxRect menu = menuPlace();
    EXPECT_EQ(shownTooltip(), "");
    // The last entry, Forget all keys.
    for (const int distance : {0, 3})
    {
        tsRunProgram({"xdotool", "mousemove", std::to_string(menu.x + menu.width / 2 + distance),
                      std::to_string(menu.GetBottom() - 18)});
        tsRunEvents();
    }
    tsRunUntil("the tooltip is up", [] { return shownTooltip() == "No key is loaded."; });
    tsPressKeys("Escape");
    tsPressKeys("Escape");
    settle();
}

TEST_F(DocumentsMenu, ListsADocumentThatIsGoneAsMissing)
{
    start({"countersign-desktop", _folder.write("a.txt", "x"), _folder.write("b.txt", "x")});
    std::filesystem::remove(_folder.path("a.txt"));
    tsRunUntil("the state says so", [this] { return rows(1).front() == "Missing"; });
    EXPECT_THAT(rows(1), ElementsAre("Missing", "Not signed"));
}
