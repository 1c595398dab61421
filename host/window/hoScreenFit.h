// SPDX-License-Identifier: Apache-2.0
// Sizes of dialogs that small screens can show.
#ifndef COUNTERSIGN_HO_SCREEN_FIT_H
#define COUNTERSIGN_HO_SCREEN_FIT_H

class wxSize;
class wxTopLevelWindow;

// Gives a dialog, whose sizer is set, the least size of that and a client size of usualSize; not more than its screen
// has room for, and not less than its least size.
void hoFitOnScreen(wxTopLevelWindow& dialog, const wxSize& usualSize);

#endif
