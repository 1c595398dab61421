// SPDX-License-Identifier: Apache-2.0
// Asks for a passphrase. Other than the toolkit's dialog, it keeps no copy of it.
#ifndef COUNTERSIGN_HO_PASSPHRASE_DIALOG_H
#define COUNTERSIGN_HO_PASSPHRASE_DIALOG_H

#include "host/window/hoTypedSecret.h"

#include <wx/dialog.h>

class wxTextCtrl;

// Ends with wxID_OK when a passphrase, perhaps an empty one, was given.
class hoPassphraseDialog : public wxDialog
{
public:
    hoPassphraseDialog(wxWindow* pParent, const wxString& question);

    hoTypedSecret passphrase() const;

private:
    wxTextCtrl* _pPassphrase;
};

#endif
