// SPDX-License-Identifier: Apache-2.0
// Why commands of the menus cannot be chosen now.
#ifndef COUNTERSIGN_HO_GREY_COMMANDS_H
#define COUNTERSIGN_HO_GREY_COMMANDS_H

#include "host/documents/hoDocumentList.h"
#include "host/keys/hoKeyRing.h"

#include <wx/string.h>

#include <functional>

class wxFrame;

// Why the command (see hoCommands.h) is grey, a sentence; empty when it is not, or needs no reason.
wxString hoWhyGrey(int command, const hoDocumentList& documents, std::size_t amountSelected, const hoKeyRing& keys,
                   bool isAtWork);

// From now on each menu of the frame's bar that opens has tooltips that say why commands are grey, by whyGrey. When it
// is the one with the commands that sign and test, showReason gets the reason of Sign, which may be empty.
void hoExplainGreyCommands(wxFrame& frame, const std::function<wxString(int command)>& whyGrey,
                           const std::function<void(const wxString& reason)>& showReason);

#endif
