// SPDX-License-Identifier: Apache-2.0
// Loads a key from a file that the user has named, asking for its passphrase as often as it takes.
#ifndef COUNTERSIGN_HO_KEY_LOADING_H
#define COUNTERSIGN_HO_KEY_LOADING_H

#include "host/keys/hoKeyRing.h"

class wxWindow;

// The key, or one whose _pKey is null when it could not be loaded; then facts tell why, and PassphraseNeeded that the
// user gave no passphrase or did not want to wait any longer. Shows dialogs above pParent.
hoLoadedKey hoLoadKeyAsking(wxWindow* pParent, const gtString& path, hoKeyNeed need, hoKeyFileFacts& facts);

#endif
