// SPDX-License-Identifier: Apache-2.0
// What a screen reader is told of windows of which it would not know enough. Does nothing where the toolkit tells it by
// itself. Main thread only.
#ifndef GT_READERS_H
#define GT_READERS_H

#include <wx/string.h>

class wxWindow;

// The name of a window, in the user's language.
void gtNameForReaders(wxWindow& window, const wxString& name);

// That a window which the toolkit draws is a status bar, and what it says now.
void gtReadAsStatusBar(wxWindow& window, const wxString& text);

#endif
