// SPDX-License-Identifier: Apache-2.0
// A dialog that shows a longer text to read, to copy and to save. Saving asks before it overwrites a file.
#ifndef COUNTERSIGN_HO_DETAILS_DIALOG_H
#define COUNTERSIGN_HO_DETAILS_DIALOG_H

#include <wx/dialog.h>

class hoDetailsDialog : public wxDialog
{
public:
    // heading: one line above the text. The text must be harmless already (hoDisplayText) and may have many lines.
    hoDetailsDialog(wxWindow* pParent, const wxString& title, const wxString& heading, const wxString& text);
};

#endif
