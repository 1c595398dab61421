// SPDX-License-Identifier: Apache-2.0
// Shows what is known of the loaded keys: size, file and full fingerprint. Copies that, and exports the public half of
// a key.
#ifndef COUNTERSIGN_HO_KEY_INFORMATION_DIALOG_H
#define COUNTERSIGN_HO_KEY_INFORMATION_DIALOG_H

#include "host/keys/hoKeyRing.h"

#include <wx/dialog.h>

class hoKeyInformationDialog : public wxDialog
{
public:
    // One key at least is loaded. With a private one its partner is exported; of several public ones the user chooses.
    hoKeyInformationDialog(wxWindow* pParent, const hoKeyRing& keys);

private:
    void exportPublicHalf();
    // The number of the key, or a number that no key has when the user cancels.
    std::size_t chooseKey();

    const hoKeyRing _keys;
};

#endif
