// SPDX-License-Identifier: Apache-2.0
// Asks what the window remembers, what Sign does with documents that are signed already, how many documents are worked
// on at once, and for the size of the text.
#ifndef COUNTERSIGN_HO_PREFERENCES_DIALOG_H
#define COUNTERSIGN_HO_PREFERENCES_DIALOG_H

#include "host/documents/hoPreferences.h"

#include <wx/dialog.h>

#include <vector>

class wxCheckBox;
class wxChoice;

class hoPreferencesDialog : public wxDialog
{
public:
    // Shows these first.
    hoPreferencesDialog(wxWindow* pParent, const hoPreferences& preferences);

    // What is chosen now.
    hoPreferences preferences() const;

private:
    wxCheckBox* addBox(wxSizer& sizer, const wxString& label, const char* pName, bool isChecked);
    wxChoice* addChoice(wxSizer& sizer, const wxString& label, const char* pName, const std::vector<wxString>& texts,
                        int chosen);

    std::vector<int> _jobs;    // the values of the choices
    std::vector<int> _points;  // the same
    wxCheckBox* _pPlace;
    wxCheckBox* _pRecent;
    wxCheckBox* _pOffer;
    wxChoice* _pSigned;
    wxChoice* _pJobs;
    wxChoice* _pPoints;
};

#endif
