// SPDX-License-Identifier: Apache-2.0
// Help > About and Help > Manual. Main thread only.
#ifndef COUNTERSIGN_HO_HELP_H
#define COUNTERSIGN_HO_HELP_H

#include "platform/baseTools/gtString.h"

#include <wx/string.h>

class wxWindow;

// What the application is, and what it is not.
wxString hoAboutText();

void hoShowAbout(wxWindow* pParent);

// Opens the manual in the desktop's default program. When there is none, or no program for it, a message says so.
// program: the absolute path of this program, links resolved.
void hoShowManual(wxWindow* pParent, const gtString& program);

#endif
