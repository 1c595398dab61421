// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtComeToFront.h"

#include <wx/toplevel.h>

void gtComeToFront(wxTopLevelWindow& window)
{
    if (window.IsIconized())
    {
        window.Iconize(false);
    }
    window.Show();
    window.Raise();
}
