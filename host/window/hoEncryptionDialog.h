// SPDX-License-Identifier: Apache-2.0
// Encrypts and decrypts short texts with the loaded keys: the plain text above, the cipher text below.
// Nothing that is typed or decrypted here is kept anywhere.
#ifndef COUNTERSIGN_HO_ENCRYPTION_DIALOG_H
#define COUNTERSIGN_HO_ENCRYPTION_DIALOG_H

#include "host/keys/hoKeyRing.h"

#include <wx/dialog.h>

class wxStaticText;
class wxTextCtrl;

class hoEncryptionDialog : public wxDialog
{
public:
    // The public key encrypts, and without one the private key's partner; the private key decrypts.
    hoEncryptionDialog(wxWindow* pParent, const hoKeyRing& keys);

private:
    const crRSAEncryptionKey* encryptingKey() const;
    const crRSAEncryptionKey* decryptingKey() const;
    void encrypt();
    void decrypt();
    void copy(const wxTextCtrl* pText, const wxString& done);
    void showCount();
    void say(const wxString& text);
    void sayWithBytes(const wxString& text, const wxString& heading, const gtString& bytes);

    const hoKeyRing _keys;
    wxTextCtrl* _pPlain;
    wxStaticText* _pCount;
    wxTextCtrl* _pCipher;
    wxStaticText* _pSaid;
};

#endif
