// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoClipboard.h"

#include <wx/clipbrd.h>
#include <wx/dataobj.h>

bool hoCopyText(const wxString& text)
{
    const wxClipboardLocker clipboard;
    if (!clipboard || !wxTheClipboard->SetData(new wxTextDataObject(text)))
    {
        return false;
    }
    wxTheClipboard->Flush();
    return true;
}
