// SPDX-License-Identifier: Apache-2.0
// The tool bar of the main window: a few commands of the menus, which are enabled as they are there. View > Tool bar
// takes it away and brings it back, and the settings keep which. The tooltip of a grey tool says why it is grey. Main
// thread only.
#ifndef COUNTERSIGN_HO_TOOL_BAR_H
#define COUNTERSIGN_HO_TOOL_BAR_H

#include "host/documents/hoSettings.h"

#include <wx/string.h>

#include <functional>

class wxFrame;
class wxToolBar;

class hoToolBar
{
public:
    // From now on the command ID_SHOW_TOOL_BAR of this frame does what it says. whyGrey says why a command is grey, and
    // is empty when it is not (see hoWhyGrey); it is asked from the event loop. The settings must outlive this object,
    // and the frame goes together with it.
    hoToolBar(wxFrame& frame, hoSettings& settings, std::function<wxString(int command)> whyGrey);
    hoToolBar(const hoToolBar&) = delete;
    hoToolBar& operator=(const hoToolBar&) = delete;

    // Shows the bar if the settings, which are loaded by now, do not say otherwise. For once, when the frame is shown:
    // it comes up earlier that way.
    void showIfWanted();

private:
    bool isShown() const;
    void show(bool isWanted);
    void drawIcons();
    void explain(int command);

    wxFrame& _frame;
    hoSettings& _settings;
    const std::function<wxString(int command)> _whyGrey;
    wxToolBar* _pBar;  // belongs to the frame; null until it is needed
};

#endif
