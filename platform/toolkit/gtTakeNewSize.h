// SPDX-License-Identifier: Apache-2.0
#ifndef GT_TAKE_NEW_SIZE_H
#define GT_TAKE_NEW_SIZE_H

class wxTopLevelWindow;

// Takes over the size that the window manager has given to the window a moment ago. Without that the toolkit does it
// when it paints next, and tells the size from before until then. Main thread only.
void gtTakeNewSize(const wxTopLevelWindow& window);

#endif
