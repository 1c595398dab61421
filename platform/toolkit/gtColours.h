// SPDX-License-Identifier: Apache-2.0
// Colours for what a theme leaves alike or hard to read. A text has a contrast of at least 4.5 to 1 (WCAG 2.1) with
// what it is written on. Main thread, once the toolkit runs.
#ifndef GT_COLOURS_H
#define GT_COLOURS_H

#include <wx/colour.h>

class wxInfoBar;
class wxWindow;

enum class gtBarColour
{
    Green,
    Red,
    Brown,
    Blue
};

// Gives the bar this background, and white text and buttons, whatever the theme. Where the toolkit draws bars by
// itself, the buttons stay as they are.
void gtColourBar(wxInfoBar& bar, gtBarColour colour);

// The background of every other row of a list, on which the list's text stays legible.
wxColour gtAlternateRowColour();

// Makes the selected rows of this list, and of all others, legible where the theme's colours are not: their background
// becomes darker under a light text, and lighter under a dark one.
void gtMakeSelectedRowsLegible(wxWindow& list);

// Writes the heads of the columns of this list, and of all others, in the colour of the list's text: themes make them
// pale.
void gtMakeColumnHeadsLegible(wxWindow& list);

// By WCAG 2.1, from 1 to 21.
double gtContrast(const wxColour& one, const wxColour& other);

#endif
