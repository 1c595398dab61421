// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoDocumentDropTarget.h"

#include <wx/window.h>

#include <utility>

hoDocumentDropTarget::hoDocumentDropTarget(wxWindow& window, DropFunction onDrop,
                                           std::function<void(bool isOver)> onHover)
    : wxDropTarget(new wxCustomDataObject(wxDF_FILENAME)),
      _window(window),
      _onDrop(std::move(onDrop)),
      _onHover(std::move(onHover)),
      _pData(static_cast<wxCustomDataObject*>(GetDataObject()))
{
}

wxDragResult hoDocumentDropTarget::OnEnter(wxCoord x, wxCoord y, wxDragResult proposed)
{
    _onHover(true);
    return wxDropTarget::OnEnter(x, y, proposed);
}

void hoDocumentDropTarget::OnLeave()
{
    _onHover(false);
}

wxDragResult hoDocumentDropTarget::OnData(wxCoord, wxCoord, wxDragResult proposed)
{
    _onHover(false);
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
