// SPDX-License-Identifier: Apache-2.0
// Asks for what a new key pair takes, makes it with progress and Cancel, and writes it down.
//
// What stands in the dialog when Create is pressed is agreed: nothing can be changed while the pair is being made, and
// what is written goes where it was agreed. A pair that is made and cannot be written stays in the dialog until it is
// saved elsewhere, or the user says that it is not wanted.
#ifndef COUNTERSIGN_HO_NEW_KEY_DIALOG_H
#define COUNTERSIGN_HO_NEW_KEY_DIALOG_H

#include "host/keys/hoNewKeyPair.h"
#include "platform/toolkit/gtMainThreadCall.h"

#include <wx/dialog.h>
#include <wx/timer.h>

class wxButton;
class wxCheckBox;
class wxComboBox;
class wxGauge;
class wxStaticText;
class wxTextCtrl;

// Ends with wxID_OK when both files are written. A file that is there is replaced only after asking.
class hoNewKeyDialog : public wxDialog
{
public:
    // folder: where the files are proposed to go, and where a relative name begins; ends in '/'.
    hoNewKeyDialog(wxWindow* pParent, const gtString& folder);

    // The private key's file, absolute, bytes: the one that was agreed last; empty before that.
    gtString privateKeyPath() const { return _agreed._privatePath; }

private:
    enum class Stage
    {
        Input,
        Making,
        Unsaved  // the pair is made and could not be written
    };
    struct Files
    {
        gtString _privatePath;
        gtString _publicPath;
        bool _mayReplacePrivate = false;
        bool _mayReplacePublic = false;
    };

    void OnBrowse(wxCommandEvent& event);
    void OnCreate(wxCommandEvent& event);
    void onFinished();
    void cancel();
    // The private key's file as it is typed, made absolute; empty when no file is named.
    gtString typedPath() const;
    // The size that is chosen or typed, with or without the word behind it; 0 when it is no number.
    int typedBits() const;
    // False, and the dialog says why, when the input cannot be used or the user does not agree to replace a file.
    bool agree();
    // Whether the file may be written: it is not there, or the user agrees to replace it, which mayReplace tells.
    bool askToReplace(const gtString& path, bool& mayReplace);
    void beginMaking();
    void writeFiles();
    void say(const wxString& text);
    void showPublicFile();
    void showStage(Stage stage);

    const gtString _folder;
    Stage _stage;
    Files _agreed;
    wxTimer _pulse;  // moves the gauge while the pair is being made
    wxComboBox* _pBits;
    wxTextCtrl* _pFile;
    wxButton* _pBrowse;
    wxStaticText* _pPublicFile;
    wxTextCtrl* _pPassphrase;
    wxTextCtrl* _pAgain;
    wxCheckBox* _pShow;
    wxStaticText* _pSaid;
    wxGauge* _pGauge;
    wxButton* _pCreate;
    gtMainThreadCall _call;                // when the pair is finished
    std::unique_ptr<hoNewKeyPair> _pPair;  // null at the stage Input; the last member, its thread uses _call
};

#endif
