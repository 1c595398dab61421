// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoScreenFit.h"

#include <wx/display.h>
#include <wx/sizer.h>
#include <wx/toplevel.h>

namespace
{
// What the desktop draws around a window, of which the toolkit does not know yet.
const wxSize usualDecorations(12, 40);
}  // namespace

void hoFitOnScreen(wxTopLevelWindow& dialog, const wxSize& usualSize)
{
    dialog.GetSizer()->SetSizeHints(&dialog);
    const wxWindow* const pWindow = dialog.GetParent() != nullptr ? dialog.GetParent() : &dialog;
    const wxSize room = wxDisplay(pWindow).GetClientArea().GetSize() - dialog.FromDIP(usualDecorations);
    wxSize size = usualSize;
    size.DecTo(room);
    size.IncTo(dialog.GetSizer()->GetMinSize());
    dialog.SetClientSize(size);
}
