// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoThemeIcon.h"

#include <wx/bitmap.h>
#include <wx/colour.h>
#include <wx/window.h>

#include <string>

#ifdef __WXGTK__
#include <gtk/gtk.h>
#endif

namespace
{
const int width = 16;

#ifdef __WXGTK__
wxBitmap iconOfTheme(const char* pName, const wxColour& colour, int scale)
{
    wxBitmap bitmap;
    GtkIconInfo* const pInfo = gtk_icon_theme_lookup_icon_for_scale(gtk_icon_theme_get_default(), pName, width, scale,
                                                                    GTK_ICON_LOOKUP_FORCE_SIZE);
    if (pInfo != nullptr)
    {
        const GdkRGBA foreground = *static_cast<const GdkRGBA*>(colour);
        GdkPixbuf* const pPicture =
            gtk_icon_info_load_symbolic(pInfo, &foreground, nullptr, nullptr, nullptr, nullptr, nullptr);
        if (pPicture != nullptr)
        {
            bitmap = wxBitmap(pPicture);
        }
        g_object_unref(pInfo);
    }
    return bitmap;
}
#else
wxBitmap iconOfTheme(const char*, const wxColour&, int)
{
    return wxBitmap();
}
#endif
}  // namespace

wxBitmapBundle hoThemeIcon(const wxWindow& window, const char* pName, const wxColour& colour, const char* pFallback)
{
    const wxBitmap plain = iconOfTheme(pName, colour, 1);
    if (plain.IsOk())
    {
        const double scale = window.GetContentScaleFactor();
        return scale > 1 ? wxBitmapBundle::FromBitmaps(plain, iconOfTheme(pName, colour, static_cast<int>(scale)))
                         : wxBitmapBundle(plain);
    }
    const std::string picture =
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16"><g fill="none" stroke-width="2" stroke=")" +
        colour.GetAsString(wxC2S_HTML_SYNTAX).utf8_string() + "\">" + pFallback + "</g></svg>";
    return wxBitmapBundle::FromSVG(picture.c_str(), wxSize(width, width));
}
