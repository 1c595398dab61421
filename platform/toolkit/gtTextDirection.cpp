// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtTextDirection.h"

#include <wx/stattext.h>
#include <wx/toplevel.h>

#ifdef __WXGTK__
#include <gtk/gtk.h>
#endif

void gtFollowDirectionOfLocale()
{
#ifdef __WXGTK__
    gtk_widget_set_default_direction(gtk_get_locale_direction());
#endif
}

void gtTakeDirection([[maybe_unused]] wxTopLevelWindow& window)
{
#ifdef __WXGTK__
    if (gtk_widget_get_default_direction() == GTK_TEXT_DIR_RTL)
    {
        window.SetLayoutDirection(wxLayout_RightToLeft);
    }
#endif
}

void gtAlignTexts([[maybe_unused]] wxWindow& window)
{
#ifdef __WXGTK__
    if (dynamic_cast<wxStaticText*>(&window) != nullptr && window.GetLayoutDirection() == wxLayout_RightToLeft &&
        GTK_IS_LABEL(window.GetHandle()))
    {
        GtkLabel* const pLabel = GTK_LABEL(window.GetHandle());
        gtk_label_set_justify(pLabel, GTK_JUSTIFY_LEFT);
        gtk_label_set_xalign(pLabel, 0);
    }
    for (wxWindow* const pChild : window.GetChildren())
    {
        if (pChild != nullptr)
        {
            gtAlignTexts(*pChild);
        }
    }
#endif
}
