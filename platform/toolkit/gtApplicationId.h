// SPDX-License-Identifier: Apache-2.0
// By what the desktop knows whose windows these are.
#ifndef GT_APPLICATION_ID_H
#define GT_APPLICATION_ID_H

// pId: the name of the application's desktop entry, without ".desktop"; it is copied. It becomes the application id
// under Wayland of all windows that are made later, and the first half of their class under X11. Where the toolkit has
// no such id nothing happens. Main thread only.
void gtSetApplicationId(const char* pId);

#endif
