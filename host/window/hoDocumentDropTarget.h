// SPDX-License-Identifier: Apache-2.0
// Takes the files that another program drops on a window, with the bytes of their paths as they are.
#ifndef COUNTERSIGN_HO_DOCUMENT_DROP_TARGET_H
#define COUNTERSIGN_HO_DOCUMENT_DROP_TARGET_H

#include "host/desktop/hoUriList.h"

#include <wx/dnd.h>

#include <functional>

class hoDocumentDropTarget : public wxDropTarget
{
public:
    using DropFunction = std::function<void(const hoUriList& list)>;

    // onDrop is called once the other program's drag has ended, on the main thread; never after window is gone.
    // onHover: something is over the window that can be dropped, or no longer. For wxWindow::SetDropTarget, which takes
    // the target over.
    hoDocumentDropTarget(wxWindow& window, DropFunction onDrop, std::function<void(bool isOver)> onHover);

    wxDragResult OnEnter(wxCoord x, wxCoord y, wxDragResult proposed) override;
    void OnLeave() override;
    wxDragResult OnData(wxCoord x, wxCoord y, wxDragResult proposed) override;

    // What a drop of this text (text/uri-list) does.
    void drop(const gtString& text);

private:
    wxWindow& _window;
    const DropFunction _onDrop;
    const std::function<void(bool isOver)> _onHover;
    wxCustomDataObject* _pData;  // belongs to the base
};

#endif
