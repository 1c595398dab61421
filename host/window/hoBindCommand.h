// SPDX-License-Identifier: Apache-2.0
// Commands of menus and tool bars, which look at nothing of their event.
#ifndef COUNTERSIGN_HO_BIND_COMMAND_H
#define COUNTERSIGN_HO_BIND_COMMAND_H

#include <wx/event.h>

// From now on the command with this id (hoCommands.h, or one of the toolkit's) does this.
template <class Action>
void hoBindCommand(wxEvtHandler& handler, int id, Action action)
{
    handler.Bind(
        wxEVT_MENU, [action](wxCommandEvent&) { action(); }, id);
}

#endif
