// SPDX-License-Identifier: Apache-2.0
// The list of the documents under the mouse and the keyboard.
#include "tests/host/MainFrameFixture.h"
#include "tests/host/Tooltip.h"

#include <gmock/gmock.h>

#include <algorithm>

#include <gtk/gtk.h>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DocumentRows : public MainFrameFixture
{
protected:
    // Documents with these names, none of them selected.
    void startWith(const std::vector<std::string>& names)
    {
        std::vector<std::string> arguments = {"countersign-desktop"};
        for (const std::string& name : names)
        {
            arguments.push_back(_folder.write(name, "x"));
        }
        start(arguments);
        list().select({});
        tsRunUntil("the rows are painted", [this] { return !placeOfCell(list(), 0, 0).IsEmpty(); });
    }
    wxPoint pointOn(int row) const
    {
        const wxRect place = placeOfCell(list(), row, 0);
        return place.GetTopLeft() + wxPoint(20, place.height / 2);
    }
    void click(const wxPoint& where, const char* pButton = "1", const char* pModifier = nullptr) const
    {
        const std::string x = std::to_string(where.x);
        const std::string y = std::to_string(where.y);
        if (pModifier == nullptr)
        {
            tsRunProgram({"xdotool", "mousemove", x, y, "click", pButton});
        }
        else
        {
            tsRunProgram({"xdotool", "mousemove", x, y, "keydown", pModifier, "click", pButton, "keyup", pModifier});
        }
    }
    void waitForSelection(const std::vector<std::string>& names) const
    {
        tsRunUntil(testing::PrintToString(names) + " are selected", [&] { return selectedRows() == names; });
    }
    void press(const char* pKeys, const std::vector<std::string>& selectedThen) const
    {
        tsPressKeys(pKeys);
        waitForSelection(selectedThen);
    }
};
}  // namespace

TEST_F(DocumentRows, AreSelectedByTheMouse)
{
    startWith({"a", "b", "c", "d", "e"});
    click(pointOn(1));
    waitForSelection({"b"});
    tsRunUntil("one is counted", [this] { return status(2) == "5 documents, 5 bytes, 1 selected"; });
    click(pointOn(3), "1", "shift");
    waitForSelection({"b", "c", "d"});
    click(pointOn(2), "1", "ctrl");
    waitForSelection({"b", "d"});
    tsRunUntil("it is counted", [this] { return status(2) == "5 documents, 5 bytes, 2 selected"; });
    // The menu is for what is selected, and a row that is not becomes it.
    for (const auto& [row, names] : std::vector<std::pair<int, std::vector<std::string>>>{{3, {"b", "d"}}, {4, {"e"}}})
    {
        tsScript script;
        script.waitUntil("the menu is up", [] { return GTK_IS_MENU(gtk_grab_get_current()); })
            .perform("close it", [] { tsPressKeys("Escape"); })
            .start();
        click(pointOn(row), "3");
        tsRunUntil("the menu is closed", [&] { return script.isFinished() && !GTK_IS_MENU(gtk_grab_get_current()); });
        EXPECT_EQ(selectedRows(), names);
    }
}

TEST_F(DocumentRows, AreSelectedByTheKeyboard)
{
    startWith({"a", "b", "c", "delta", "e"});
    list().select({0});
    list().SetFocus();
    press("Down", {"b"});
    press("shift+Down", {"b", "c"});
    press("End", {"e"});
    // Selects, and opens nothing.
    press("space", {});
    press("space", {"e"});
    press("ctrl+a", {"a", "b", "c", "delta", "e"});
    press("Home", {"a"});
    // By the beginning of a name.
    tsType("del");
    waitForSelection({"delta"});
    tsPressKeys("Escape");
    tsRunUntil("the main window has the keyboard", [this] { return tsHasKeyboard(*_pFrame); });
    tsPressKeys("KP_Delete");
    tsRunUntil("a row is gone", [this] { return rowCount() == 4; });
    EXPECT_THAT(rows(), ElementsAre("a", "b", "c", "e"));
    EXPECT_THAT(selectedRows(), ElementsAre("e"));
}

TEST_F(DocumentRows, KeepTheirSelectionInAnotherOrder)
{
    startWith({"c", "a", "d", "b"});
    list().select({2, 3});
    EXPECT_EQ(list().current(), 2U);
    EXPECT_FALSE(list().GetColumn(0)->IsSortKey());
    // As the keyboard does when it is on the head of the column.
    gtk_tree_view_column_clicked(GTK_TREE_VIEW_COLUMN(list().GetColumn(0)->GetGtkHandle()));
    EXPECT_THAT(rows(), ElementsAre("a", "b", "c", "d"));
    EXPECT_THAT(selectedRows(), ElementsAre("b", "d"));
    EXPECT_EQ(list().current(), 3U);
    EXPECT_TRUE(list().GetColumn(0)->IsSortKey());
    EXPECT_TRUE(list().GetColumn(0)->IsSortOrderAscending());
    tsClickAt(list().GetScreenRect().GetTopLeft() + wxPoint(30, 10));
    tsRunUntil("the order is the other one", [this] { return rows().front() == "d"; });
    EXPECT_THAT(rows(), ElementsAre("d", "c", "b", "a"));
    EXPECT_THAT(selectedRows(), ElementsAre("d", "b"));
    EXPECT_FALSE(list().GetColumn(0)->IsSortOrderAscending());
    // New ones come last, out of any order.
    openAskedFor(_folder.write("z", "x"));
    EXPECT_THAT(rows(), ElementsAre("d", "c", "b", "a", "z"));
    EXPECT_FALSE(list().GetColumn(0)->IsSortKey());
    EXPECT_THAT(selectedRows(), ElementsAre("z"));
    // Also when something changes later.
    _folder.write("a", "longer");
    tsRunUntil("it is seen",
               [this]
               {
                   const std::vector<std::string> sizes = rows(2);
                   return std::count(sizes.begin(), sizes.end(), "6 bytes") == 1;
               });
    EXPECT_THAT(rows(), ElementsAre("d", "c", "b", "a", "z"));
}

TEST_F(DocumentRows, AreClosedOneByOneAndManyTogether)
{
    std::vector<std::string> names;
    for (int i = 0; i < 500; ++i)
    {
        names.push_back(std::to_string(i));
    }
    startWith(names);
    list().select({1, 3});
    tsPressKeys("ctrl+w");
    tsRunUntil("two are closed", [this] { return rowCount() == 498; });
    EXPECT_EQ(rows()[0], "0");
    EXPECT_EQ(rows()[1], "2");
    EXPECT_EQ(rows()[2], "4");
    EXPECT_THAT(selectedRows(), ElementsAre("2"));
    std::vector<std::size_t> most;
    for (std::size_t row = 0; row < 497; ++row)
    {
        most.push_back(row);
    }
    list().select(most);
    EXPECT_EQ(list().amountSelected(), 497U);
    tsPressKeys("ctrl+w");
    tsRunUntil("the others are closed", [this] { return rowCount() == 1; });
    EXPECT_THAT(rows(), ElementsAre("499"));
    EXPECT_THAT(selectedRows(), ElementsAre("499"));
    tsPressKeys("Delete");
    tsRunUntil("all are closed", [this] { return rowCount() == 0; });
    EXPECT_THAT(selectedRows(), IsEmpty());
}

TEST_F(DocumentRows, TellAllInATooltip)
{
    startWith({"a", "b"});
    // Until it comes: the mouse must rest, and a busy machine may take it for moving.
    int distance = 0;
    tsRunUntil("the tooltip is up",
               [&]
               {
                   if (shownTooltip().empty() && ++distance % 200 == 1)
                   {
                       const wxPoint where = pointOn(1) + wxPoint(distance % 7, 0);
                       tsRunProgram({"xdotool", "mousemove", std::to_string(where.x), std::to_string(where.y)});
                   }
                   return !shownTooltip().empty();
               });
    EXPECT_THAT(shownTooltip(), HasSubstr(_folder.path("b") + "\nNot signed, 1 byte, modified "));
}
