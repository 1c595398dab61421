// SPDX-License-Identifier: Apache-2.0
// The menus of the main window. They send the commands of hoCommands.h; what a command does is for the window that has
// the bar.
#ifndef COUNTERSIGN_HO_MENU_BAR_H
#define COUNTERSIGN_HO_MENU_BAR_H

#include "platform/baseTools/gtString.h"

#include <wx/menu.h>

#include <functional>
#include <vector>

class wxFrame;

class hoMenuBar : public wxMenuBar
{
public:
    // What the commands depend on, asked each time when the menus are about to be shown or a key is pressed.
    struct Conditions
    {
        std::function<bool()> _hasDocuments;
        std::function<bool()> _hasSelection;
        std::function<bool()> _hasKeys;
        std::function<bool()> _canSign;
        std::function<bool()> _canTest;
        std::function<bool()> _hasAssertionDialogs;
    };

    // For wxFrame::SetMenuBar, which takes the bar over. The lists of recent documents and keys are empty.
    hoMenuBar();

    // Fills File > Open recent: the n-th path has the id ID_RECENT_FIRST + n. At most hoRecentDocuments::mostDocuments.
    void showRecentDocuments(const std::vector<gtString>& paths);

    // The same of Key > Load recent key, from ID_RECENT_KEY_FIRST on.
    void showRecentKeys(const std::vector<gtString>& paths);

    // From now on the commands of this frame are enabled and checked as the conditions say.
    static void followConditions(wxFrame& frame, const Conditions& conditions);

private:
    wxMenu* _pRecentMenu;  // these two belong to the bar
    wxMenu* _pRecentKeysMenu;
};

// What a right click on the documents brings up.
void hoFillContextMenu(wxMenu& menu);

#endif
