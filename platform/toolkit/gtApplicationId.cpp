// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtApplicationId.h"

#include <wx/defs.h>

#ifdef __WXGTK__

#include <gtk/gtk.h>

void gtSetApplicationId(const char* pId)
{
    // The toolkit has no other name for it.
    g_set_prgname(pId);
}

#else

void gtSetApplicationId(const char* /*pId*/) {}

#endif
