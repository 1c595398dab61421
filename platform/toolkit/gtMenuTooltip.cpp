// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtMenuTooltip.h"

#include <wx/menu.h>

#ifdef __WXGTK__

#include <gtk/gtk.h>

void gtSetMenuTooltip(wxMenuItem& item, const wxString& text)
{
    if (item.GetMenuItem() != nullptr)
    {
        gtk_widget_set_tooltip_text(item.GetMenuItem(), text.empty() ? nullptr : text.utf8_str().data());
    }
}

#else

void gtSetMenuTooltip(wxMenuItem& /*item*/, const wxString& /*text*/) {}

#endif
