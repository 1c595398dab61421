// SPDX-License-Identifier: Apache-2.0
// Asks for what a new key pair takes, makes it with progress and Cancel, and writes it down.
#ifndef COUNTERSIGN_HO_NEW_KEY_DIALOG_H
#define COUNTERSIGN_HO_NEW_KEY_DIALOG_H

#include "host/keys/hoNewKeyPair.h"
#include "platform/toolkit/gtMainThreadCall.h"

#include <wx/dialog.h>
#include <wx/timer.h>

class wxButton;
class wxComboBox;
class wxGauge;
class wxStaticText;
class wxTextCtrl;

// Ends with wxID_OK when both files are written. A file that is there is replaced only after asking.
class hoNewKeyDialog : public wxDialog
{
public:
    // folder: where the files are proposed to go; may be empty.
    hoNewKeyDialog(wxWindow* pParent, const gtString& folder);

    // The files, bytes, as far as they are chosen. The public key's name is the private one's with ".pub" before
    // ".pem".
    gtString privateKeyPath() const;
    gtString publicKeyPath() const;

private:
    void OnBrowse(wxCommandEvent& event);
    void OnCreate(wxCommandEvent& event);
    void onFinished();
    void cancel();
    // The size that is chosen or typed, with or without the word behind it; 0 when it is no number.
    int typedBits() const;
    // False, and the dialog says why, when the input cannot be used.
    bool isInputUsable();
    // Whether the file may be written: it is not there, or the user agrees to replace it.
    bool askToReplace(const gtString& path);
    void writeFiles();
    void say(const wxString& text);
    void setBusy(bool isBusy);

    bool _mayOverwrite;
    wxTimer _pulse;  // moves the gauge while the pair is being made
    wxComboBox* _pBits;
    wxTextCtrl* _pFile;
    wxTextCtrl* _pPassphrase;
    wxTextCtrl* _pAgain;
    wxGauge* _pGauge;
    wxStaticText* _pSaid;
    wxButton* _pCreate;
    gtMainThreadCall _call;                // when the pair is finished
    std::unique_ptr<hoNewKeyPair> _pPair;  // while it is being made; the last member, its thread uses _call
};

#endif
