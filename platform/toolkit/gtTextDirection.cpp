// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtTextDirection.h"

#include <wx/defs.h>

#ifdef __WXGTK__
#include <gtk/gtk.h>
#endif

void gtFollowDirectionOfLocale()
{
#ifdef __WXGTK__
    gtk_widget_set_default_direction(gtk_get_locale_direction());
#endif
}
