// SPDX-License-Identifier: Apache-2.0
// Holds a window, and draws a border around it while something is dragged over it that can be dropped there.
#ifndef COUNTERSIGN_HO_DROP_FRAME_H
#define COUNTERSIGN_HO_DROP_FRAME_H

#include <wx/panel.h>

class wxSizerItem;

class hoDropFrame : public wxPanel
{
public:
    explicit hoDropFrame(wxWindow* pParent);

    // pContents: a child of this window. To be called once, before the others.
    void setContents(wxWindow* pContents);

    void showBorder(bool isShown);
    bool isBorderShown() const;

private:
    wxSizerItem* _pItem;  // belongs to the sizer
};

#endif
