// SPDX-License-Identifier: Apache-2.0
#ifndef GT_COME_TO_FRONT_H
#define GT_COME_TO_FRONT_H

class wxTopLevelWindow;

// Shows the window, also one that is an icon, and asks the desktop to put it in front. Main thread only.
void gtComeToFront(wxTopLevelWindow& window);

#endif
