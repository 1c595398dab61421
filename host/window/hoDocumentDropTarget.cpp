// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoDocumentDropTarget.h"

#include <wx/window.h>

#include <utility>

hoDocumentDropTarget::hoDocumentDropTarget(wxWindow& window, DropFunction onDrop)
    : wxDropTarget(new wxCustomDataObject(wxDF_FILENAME)),
      _window(window),
      _onDrop(std::move(onDrop)),
      _pData(static_cast<wxCustomDataObject*>(GetDataObject()))
{
}

wxDragResult hoDocumentDropTarget::OnData(wxCoord, wxCoord, wxDragResult proposed)
{
    if (!GetData())
    {
        return wxDragNone;
    }
    drop(std::string_view(static_cast<const char*>(_pData->GetData()), _pData->GetSize()));
    return proposed;
}

void hoDocumentDropTarget::drop(const gtString& text)
{
    // The other program waits for this drop to end: no message may come up before that.
    _window.CallAfter([onDrop = _onDrop, list = hoReadUriList(text, hoThisHost())] { onDrop(list); });
}
