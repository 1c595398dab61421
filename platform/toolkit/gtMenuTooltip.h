// SPDX-License-Identifier: Apache-2.0
// What a menu's entry says when the pointer rests on it. The status bar says nothing of entries that are grey.
#ifndef GT_MENU_TOOLTIP_H
#define GT_MENU_TOOLTIP_H

class wxMenuItem;
class wxString;

// An empty text takes the tooltip away. Where the toolkit's menus have no tooltips nothing happens. Main thread only.
void gtSetMenuTooltip(wxMenuItem& item, const wxString& text);

#endif
