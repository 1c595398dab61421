// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtToolkitState.h"

#include <wx/app.h>

#ifdef __WXGTK__
#include <gtk/gtk.h>
#endif

bool gtCanShowWindows()
{
    const wxAppConsole* const pApplication = wxAppConsole::GetInstance();
    if (pApplication == nullptr || !pApplication->IsGUI())
    {
        return false;
    }
#ifdef __WXGTK__
    // The application object is there before the toolkit has opened the display, and stays when it cannot.
    return gtk_settings_get_default() != nullptr;
#else
    return true;
#endif
}
