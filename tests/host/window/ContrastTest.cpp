// SPDX-License-Identifier: Apache-2.0
// That everything in the main window can be read, by its pixels, and that the bars differ.
#include "tests/host/MainFrameFixture.h"
#include "tests/support/tsContrast.h"

#include <wx/infobar.h>
#include <wx/toolbar.h>
#include <wx/utils.h>

#include <functional>

namespace
{
const double leastContrast = 4.5;
const int rowMargin = 3;

class Contrast : public MainFrameFixture
{
protected:
    // A picture of the main window at rest, with the mouse elsewhere.
    wxImage picture() const
    {
        tsRunProgram({"xdotool", "mousemove", "1270", "890"});
        return tsPictureAtRest();
    }
    void expectLegible(const wxImage& screen, const wxRect& rect, const std::string& what) const
    {
        const tsInk ink = tsInkOf(screen, rect);
        EXPECT_GE(tsContrast(ink), leastContrast)
            << what << ": " << ink.letters.GetAsString(wxC2S_HTML_SYNTAX).utf8_string() << " on "
            << ink.ground.GetAsString(wxC2S_HTML_SYNTAX).utf8_string();
    }
    // The text of a row's cell, without the state's picture.
    wxRect cell(int row, int column) const
    {
        const wxRect rect = placeOfCell(list(), row, column);
        const int picture = column == 1 ? 24 : 0;
        return wxRect(rect.x + picture + rowMargin, rect.y + rowMargin, rect.width - picture - 2 * rowMargin,
                      rect.height - 2 * rowMargin);
    }
    void expectRowsLegible(const std::string& what) const
    {
        const wxImage screen = picture();
        for (int row = 0; row < rowCount(); ++row)
        {
            for (const int column : {0, 1, 2, 3})
            {
                expectLegible(screen, cell(row, column),
                              what + ", row " + std::to_string(row) + ", column " + std::to_string(column));
            }
        }
    }
    wxWindow* bar() const
    {
        for (wxWindow* pChild : _pFrame->GetChildren())
        {
            if (dynamic_cast<const wxInfoBar*>(pChild) != nullptr)
            {
                return pChild;
            }
        }
        return nullptr;
    }
    // Gives its background.
    wxColour expectBarLegible(const std::string& what) const
    {
        tsRunUntil("the bar is shown", [this] { return bar() != nullptr && bar()->IsShownOnScreen(); });
        const wxImage screen = picture();
        const wxRect rect = bar()->GetScreenRect();
        const wxRect text(rect.x + 6, rect.y + 8, 300, rect.height - 16);
        expectLegible(screen, text, what + ", text");
        const int middle = rect.y + rect.height / 2;
        expectLegible(screen, wxRect(rect.GetRight() - 185, middle - 7, 40, 14), what + ", Details");
        expectLegible(screen, wxRect(rect.GetRight() - 70, middle - 7, 40, 14), what + ", Dismiss");
        return tsInkOf(screen, text).ground;
    }
};
}  // namespace

// By itself in the theme that the tests have anyhow; ContrastInThemes.IsEnough runs it in others.
TEST_F(Contrast, IsEnoughOnTheScreen)
{
    start();
    expectLegible(picture(), wxWindow::FindWindowByName("emptyLine", _pFrame)->GetScreenRect(), "the empty page");
    // The first tool can be used: its icon, and the word beside it.
    const wxRect tools = _pFrame->GetToolBar()->GetScreenRect();
    expectLegible(picture(), wxRect(tools.x + 10, tools.y + 8, 22, tools.height - 16), "the tool's icon");
    expectLegible(picture(), wxRect(tools.x + 38, tools.y + 8, 40, tools.height - 16), "the tool's word");
    openAskedFor(_folder.path("missing.txt"));
    const wxColour cannotOpen = expectBarLegible("cannot open");

    for (const char* name : {"a.txt", "b.txt", "c.txt", "d.txt"})
    {
        openAskedFor(_folder.write(name, "text"));
    }
    dropNewKey();
    work("ctrl+shift+s");
    const wxColour good = expectBarLegible("good");
    _folder.write("b.txt", "other text");
    work("ctrl+shift+t");
    const wxColour bad = expectBarLegible("bad");

    EXPECT_NE(good, bad);
    EXPECT_NE(good, cannotOpen);
    EXPECT_NE(bad, cannotOpen);

    list().SetFocus();
    settle();
    expectRowsLegible("one selected");
    tsPressKeys("ctrl+a");
    tsRunUntil("all is selected", [this] { return selectedRows().size() == 4; });
    expectRowsLegible("all selected");
    // Without the keyboard.
    bar()->SetFocus();
    settle();
    expectRowsLegible("all selected, the bar has the keyboard");

    const wxImage screen = picture();
    for (int field = 1; field <= 2; ++field)
    {
        wxRect rect;
        _pFrame->GetStatusBar()->GetFieldRect(field, rect);
        rect.SetPosition(_pFrame->GetStatusBar()->ClientToScreen(rect.GetPosition()));
        expectLegible(screen, wxRect(rect.x + 4, rect.y + 3, 60, rect.height - 6), "status bar");
    }
    wxRect head = list().GetScreenRect();
    expectLegible(screen, wxRect(head.x + 4, head.y + 4, 50, 14), "column head");
}

TEST(ContrastInThemes, IsEnough)
{
    for (const std::string theme : {"Adwaita", "Adwaita:dark", "HighContrast", "HighContrastInverse"})
    {
        std::string output;
        EXPECT_EQ(tsRunProgram({"env", "GTK_THEME=" + theme, "/proc/" + std::to_string(wxGetProcessId()) + "/exe",
                                "--gtest_filter=Contrast.IsEnoughOnTheScreen"},
                               &output),
                  0)
            << theme << ":\n"
            << output;
        EXPECT_NE(output.find("[  PASSED  ] 1 test"), std::string::npos) << output;
    }
}
