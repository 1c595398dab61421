// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtColours.h"

#include <algorithm>
#include <cmath>
#include <string>

#include <wx/infobar.h>
#include <wx/settings.h>
#include <wx/window.h>

#ifdef __WXGTK__
#include <gtk/gtk.h>
#endif

namespace
{

const double leastContrast = 4.5;
const double alternateRowPart = 0.06;  // of the text's colour

struct BarFace
{
    const char* _name;
    const char* _background;
};

// White has a contrast of 7 and more with each.
const BarFace& faceOf(gtBarColour colour)
{
    static const BarFace green = {"gtGreenBar", "#1b5e20"};
    static const BarFace red = {"gtRedBar", "#9b1c1c"};
    static const BarFace brown = {"gtBrownBar", "#6b4400"};
    static const BarFace blue = {"gtBlueBar", "#174a7e"};
    switch (colour)
    {
    case gtBarColour::Green:
        return green;
    case gtBarColour::Red:
        return red;
    case gtBarColour::Brown:
        return brown;
    case gtBarColour::Blue:
        return blue;
    }
    return brown;
}

double luminance(const wxColour& colour)
{
    const auto linear = [](unsigned char value)
    { return value <= 10 ? value / 255.0 / 12.92 : std::pow((value / 255.0 + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(colour.Red()) + 0.7152 * linear(colour.Green()) + 0.0722 * linear(colour.Blue());
}

wxColour mixed(const wxColour& one, const wxColour& other, double partOfOther)
{
    const auto mix = [&](unsigned char a, unsigned char b)
    { return static_cast<unsigned char>(a + (b - a) * partOfOther); };
    return {mix(one.Red(), other.Red()), mix(one.Green(), other.Green()), mix(one.Blue(), other.Blue())};
}

#ifdef __WXGTK__

// For the whole program, above the theme and below what the user sets.
void addStyle(GtkWidget* pWidget, const std::string& css)
{
    GtkCssProvider* const pProvider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(pProvider, css.c_str(), -1, nullptr);
    gtk_style_context_add_provider_for_screen(gtk_widget_get_screen(pWidget), GTK_STYLE_PROVIDER(pProvider),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    g_object_unref(pProvider);
}

std::string barStyle(gtBarColour colour)
{
    const std::string bar = std::string("infobar#") + faceOf(colour)._name;
    const std::string box = bar + " > revealer > box";
    const std::string button = bar + " button";
    return box + ", " + box + ":backdrop { background: " + faceOf(colour)._background +
           "; border-color: " + faceOf(colour)._background + "; color: #fff; transition: none; }\n" + bar + " label, " +
           bar + " label:backdrop { color: #fff; text-shadow: none; transition: none; }\n" + button + ", " + button +
           ":backdrop { background: transparent; color: #fff; border: 1px solid #fff; box-shadow: none;"
           " text-shadow: none; -gtk-icon-shadow: none; transition: none; }\n" +
           button + ":hover { background: rgba(0, 0, 0, 0.3); }\n" + button + ":active { background: #000; }\n";
}

void addBarStyles(GtkWidget* pWidget)
{
    static bool areThere = false;
    if (!areThere)
    {
        areThere = true;
        addStyle(pWidget, barStyle(gtBarColour::Green) + barStyle(gtBarColour::Red) + barStyle(gtBarColour::Brown) +
                              barStyle(gtBarColour::Blue));
    }
}

#endif

}  // namespace

void gtColourBar(wxInfoBar& bar, gtBarColour colour)
{
#ifdef __WXGTK__
    addBarStyles(bar.GetHandle());
    gtk_widget_set_name(bar.GetHandle(), faceOf(colour)._name);
#else
    bar.SetForegroundColour(*wxWHITE);
    bar.SetBackgroundColour(wxColour(faceOf(colour)._background));
#endif
}

wxColour gtAlternateRowColour()
{
    return mixed(wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOX),
                 wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOXTEXT), alternateRowPart);
}

void gtMakeSelectedRowsLegible(wxWindow& list)
{
#ifdef __WXGTK__
    const wxColour text = wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOXHIGHLIGHTTEXT);
    const wxColour ground = wxSystemSettings::GetColour(wxSYS_COLOUR_HIGHLIGHT);
    const wxColour& away = luminance(text) > luminance(ground) ? *wxBLACK : *wxWHITE;
    wxColour legible = ground;
    for (int part = 1; part <= 10 && gtContrast(text, legible) < leastContrast; ++part)
    {
        legible = mixed(ground, away, part / 10.0);
    }
    if (legible != ground)
    {
        const std::string row = "treeview.view:selected";
        addStyle(list.GetHandle(), row + ", " + row + ":focus, " + row + ":backdrop { background-color: " +
                                       legible.GetAsString(wxC2S_HTML_SYNTAX).utf8_string() + "; }\n");
    }
#else
    static_cast<void>(list);
#endif
}

void gtMakeColumnHeadsLegible(wxWindow& list)
{
#ifdef __WXGTK__
    const std::string head = "treeview.view header button";
    addStyle(list.GetHandle(),
             head + ", " + head + ":hover, " + head + ":backdrop { color: " +
                 wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOXTEXT).GetAsString(wxC2S_HTML_SYNTAX).utf8_string() +
                 "; }\n");
#else
    static_cast<void>(list);
#endif
}

double gtContrast(const wxColour& one, const wxColour& other)
{
    const double first = luminance(one) + 0.05;
    const double second = luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}
