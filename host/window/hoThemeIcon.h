// SPDX-License-Identifier: Apache-2.0
// Small pictures of one colour for commands, from the desktop's theme of icons. Main thread, once the toolkit runs.
#ifndef COUNTERSIGN_HO_THEME_ICON_H
#define COUNTERSIGN_HO_THEME_ICON_H

#include <wx/bmpbndl.h>

class wxColour;
class wxWindow;

// The theme's symbolic icon of this name in that colour, as sharp as the window's screen is. Where the theme has none:
// the fallback, shapes of SVG on a square of 16 units, which have that colour where they name none.
wxBitmapBundle hoThemeIcon(const wxWindow& window, const char* pName, const wxColour& colour, const char* pFallback);

#endif
