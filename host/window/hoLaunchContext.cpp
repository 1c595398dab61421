// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoLaunchContext.h"

#include <wx/defs.h>

#ifdef __WXGTK__
#include <gtk/gtk.h>
#endif

hoLaunchContext::hoLaunchContext() : _pContext(nullptr)
{
#ifdef __WXGTK__
    GdkAppLaunchContext* const pContext = gdk_display_get_app_launch_context(gdk_display_get_default());
    gdk_app_launch_context_set_timestamp(pContext, gtk_get_current_event_time());
    _pContext = G_APP_LAUNCH_CONTEXT(pContext);
#endif
}

hoLaunchContext::~hoLaunchContext()
{
#ifdef __WXGTK__
    g_object_unref(_pContext);
#endif
}
