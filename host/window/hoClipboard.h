// SPDX-License-Identifier: Apache-2.0
#ifndef COUNTERSIGN_HO_CLIPBOARD_H
#define COUNTERSIGN_HO_CLIPBOARD_H

class wxString;

// Puts a text on the clipboard. It stays there when the application ends if the desktop keeps it, which not all do.
// False when the clipboard is not available.
// Main thread only.
bool hoCopyText(const wxString& text);

#endif
