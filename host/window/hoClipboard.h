// SPDX-License-Identifier: Apache-2.0
#ifndef COUNTERSIGN_HO_CLIPBOARD_H
#define COUNTERSIGN_HO_CLIPBOARD_H

class wxString;

// Puts a text on the clipboard, where it stays when the application ends. False when the clipboard is not available.
// Main thread only.
bool hoCopyText(const wxString& text);

#endif
