// SPDX-License-Identifier: Apache-2.0
// The menus of the main window. They send the commands of hoCommands.h; what a command does is for the window that has
// the bar.
#ifndef COUNTERSIGN_HO_MENU_BAR_H
#define COUNTERSIGN_HO_MENU_BAR_H

#include "host/documents/hoRecentDocuments.h"
#include "host/keys/hoKeyRing.h"

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
        std::function<bool()> _hasOneSelected;
        std::function<bool()> _hasKeys;
        std::function<bool()> _canSign;
        std::function<bool()> _canTest;
        std::function<bool()> _hasAssertionDialogs;
    };

    // For wxFrame::SetMenuBar, which takes the bar over. The lists of recent documents and keys are empty.
    hoMenuBar();

    // Fills File > Open recent, where the n-th path has the id ID_RECENT_FIRST + n, and Key > Load recent key, from
    // ID_RECENT_KEY_FIRST on. At most hoRecentDocuments::mostDocuments of each.
    void showRecentPaths(const std::vector<gtString>& documents, const std::vector<gtString>& keys);

    // Fills Key > Forget one key, where the key with this number (hoKeyRing) has the id ID_FORGET_KEY_FIRST + number;
    // at most hoMostKeysToForget. Not to be called while an event of this menu is dealt with.
    void showKeys(const hoKeyRing& keys);

    // From now on the commands of this frame are enabled and checked as the conditions say.
    static void followConditions(wxFrame& frame, const Conditions& conditions);

    // From now on the frame's commands of a list of recent paths do what they say. firstId: ID_RECENT_FIRST or
    // ID_RECENT_KEY_FIRST. open gets the path that is chosen. onClear is called when the list has been cleared. The
    // list must outlive the frame's commands.
    static void followRecentPaths(wxFrame& frame, hoRecentDocuments& recent, int firstId, int clearId,
                                  const std::function<void(const gtString& path)>& open,
                                  const std::function<void()>& onClear);

private:
    wxMenu* _pRecentMenu;  // these three belong to the bar
    wxMenu* _pRecentKeysMenu;
    wxMenu* _pForgetMenu;
};

// What a right click on the documents brings up.
void hoFillContextMenu(wxMenu& menu);

#endif
