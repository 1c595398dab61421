// SPDX-License-Identifier: Apache-2.0
// Asks where a text is to be saved, and writes it there.
#ifndef COUNTERSIGN_HO_SAVE_FILE_H
#define COUNTERSIGN_HO_SAVE_FILE_H

#include "platform/baseTools/gtString.h"

#include <wx/string.h>

#include <vector>

class wxWindow;

struct hoSaveFileQuestion
{
    wxString _title;
    wxString _name;   // is proposed
    wxString _types;  // as a file dialog takes them
    // The message when the file cannot be written, with places for its name and the reason (hoFilledText).
    wxString _failure;
    unsigned int _rights = 0;  // of the file; 0: those of the replaced one, or as the umask gives them
    // These are refused, by whatever path they are reached.
    std::vector<gtString> _filesOfKeys;
};

// Asks before it replaces a file, writes the whole text or nothing, and tells a failure in a dialog above the parent.
void hoSaveFile(wxWindow& parent, const hoSaveFileQuestion& question, const gtString& text);

#endif
