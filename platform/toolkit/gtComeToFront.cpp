// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtComeToFront.h"

#include <wx/toplevel.h>

#ifdef __WXGTK__
#include <gtk/gtk.h>
#ifdef GDK_WINDOWING_WAYLAND
#include <gdk/gdkwayland.h>
#endif
#ifdef GDK_WINDOWING_X11
#include <gdk/gdkx.h>
#endif
#endif

void gtComeToFront(wxTopLevelWindow& window)
{
    if (window.IsIconized())
    {
        window.Iconize(false);
    }
    window.Show();
    window.Raise();
}

#ifdef __WXGTK__

void gtTakeStartupId(const gtString& id)
{
    GdkDisplay* const pDisplay = gdk_display_get_default();
#ifdef GDK_WINDOWING_WAYLAND
    if (GDK_IS_WAYLAND_DISPLAY(pDisplay))
    {
        gdk_wayland_display_set_startup_notification_id(pDisplay, id.asCharArray());
    }
#endif
#ifdef GDK_WINDOWING_X11
    if (GDK_IS_X11_DISPLAY(pDisplay))
    {
        gdk_x11_display_set_startup_notification_id(pDisplay, id.asCharArray());
    }
#endif
}

gtString gtStartupId()
{
    const char* pId = nullptr;
#ifdef GDK_WINDOWING_X11
    GdkDisplay* const pDisplay = gdk_display_get_default();
    if (GDK_IS_X11_DISPLAY(pDisplay))
    {
        pId = gdk_x11_display_get_startup_notification_id(pDisplay);
    }
#endif
    return pId == nullptr ? gtString() : gtString(pId);
}

#else

void gtTakeStartupId(const gtString& /*id*/) {}

gtString gtStartupId()
{
    return gtString();
}

#endif
