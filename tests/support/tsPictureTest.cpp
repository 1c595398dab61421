// SPDX-License-Identifier: Apache-2.0
#include "tests/support/tsContrast.h"
#include "tests/support/tsWindowTest.h"

#include <gtest/gtest.h>
#include <wx/frame.h>
#include <wx/panel.h>

#ifdef __WXGTK__
#include <gtk/gtk.h>
#endif

namespace
{

class PictureAtRest : public testing::Test
{
protected:
    PictureAtRest()
    {
        _frame.SetSize(100, 100, 400, 300);
        colour(*wxBLUE);
        _frame.Show();
        tsRunUntil("the window has the keyboard", [this] { return tsHasKeyboard(_frame); });
    }
    static std::string nameOf(const wxColour& colour) { return colour.GetAsString(wxC2S_HTML_SYNTAX).utf8_string(); }
    void colour(const wxColour& colour)
    {
        _panel.SetBackgroundColour(colour);
        _panel.Refresh();
    }
    std::string colourIn(const wxImage& picture) const
    {
        return nameOf(tsInkOf(picture, _panel.GetScreenRect().Deflate(50)).ground);
    }

    wxFrame _frame{nullptr, wxID_ANY, "busy"};
    wxPanel _panel{&_frame};
};

#ifdef __WXGTK__

gboolean isBusyFor(gpointer pTurns)
{
    // In each turn there is something to do that comes before painting.
    return --*static_cast<int*>(pTurns) > 0;
}

#endif

}  // namespace

TEST_F(PictureAtRest, ShowsEachColourAtOnce)
{
    for (const wxColour& one : {*wxRED, *wxGREEN, *wxYELLOW, *wxBLUE})
    {
        colour(one);
        EXPECT_EQ(colourIn(tsPictureAtRest()), nameOf(one));
    }
}

#ifdef __WXGTK__

TEST_F(PictureAtRest, ShowsWhatABusyProgramHasStillToPaint)
{
    EXPECT_EQ(colourIn(tsPictureAtRest()), nameOf(*wxBLUE));
    colour(*wxRED);
    int turns = 100000;
    g_idle_add_full(G_PRIORITY_DEFAULT, isBusyFor, &turns, nullptr);
    EXPECT_EQ(colourIn(tsPictureAtRest()), nameOf(*wxRED));
    EXPECT_EQ(turns, 0);
}

#endif
