// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoDropFrame.h"

#include <wx/settings.h>
#include <wx/sizer.h>

namespace
{
const int borderWidth = 4;
}  // namespace

hoDropFrame::hoDropFrame(wxWindow* pParent) : wxPanel(pParent), _pItem(nullptr)
{
    SetName("dropFrame");
    SetSizer(new wxBoxSizer(wxVERTICAL));
}

void hoDropFrame::setContents(wxWindow* pContents)
{
    _pItem = GetSizer()->Add(pContents, wxSizerFlags(1).Expand().Border(wxALL, 0));
}

void hoDropFrame::showBorder(bool isShown)
{
    if (isShown != isBorderShown())
    {
        SetBackgroundColour(isShown ? wxSystemSettings::GetColour(wxSYS_COLOUR_HIGHLIGHT) : wxNullColour);
        _pItem->SetBorder(isShown ? FromDIP(borderWidth) : 0);
        Layout();
        Refresh();
    }
}

bool hoDropFrame::isBorderShown() const
{
    return _pItem->GetBorder() > 0;
}
