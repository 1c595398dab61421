// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtReaders.h"

#include <wx/window.h>

#ifdef __WXGTK__

#include <gtk/gtk.h>

namespace
{
// By properties, so that nobody has to link the library of the readers.
const char* const nameProperty = "accessible-name";

AtkObject* readableOf(wxWindow& window)
{
    GtkWidget* pWidget = window.GetHandle();
    // A list is inside of what scrolls it, and a tool bar inside of what gets its events. What is inside of a combo box
    // has its label already.
    if (GTK_IS_BIN(pWidget) && !GTK_IS_COMBO_BOX(pWidget) && gtk_bin_get_child(GTK_BIN(pWidget)) != nullptr)
    {
        pWidget = gtk_bin_get_child(GTK_BIN(pWidget));
    }
    return gtk_widget_get_accessible(pWidget);
}
}  // namespace

void gtNameForReaders(wxWindow& window, const wxString& name)
{
    g_object_set(readableOf(window), nameProperty, name.utf8_string().c_str(), nullptr);
}

void gtReadAsStatusBar(wxWindow& window, const wxString& text)
{
    g_object_set(readableOf(window), "accessible-role", ATK_ROLE_STATUSBAR, nameProperty, text.utf8_string().c_str(),
                 nullptr);
}

#else

void gtNameForReaders(wxWindow& /*window*/, const wxString& /*name*/) {}
void gtReadAsStatusBar(wxWindow& /*window*/, const wxString& /*text*/) {}

#endif
