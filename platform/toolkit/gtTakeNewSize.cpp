// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtTakeNewSize.h"

#include <wx/toplevel.h>

#ifdef __WXGTK__
#include <gtk/gtk.h>
#endif

void gtTakeNewSize(const wxTopLevelWindow& window)
{
#ifdef __WXGTK__
    gtk_container_check_resize(GTK_CONTAINER(window.GetHandle()));
#else
    static_cast<void>(window);
#endif
}
