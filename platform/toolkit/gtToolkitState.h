// SPDX-License-Identifier: Apache-2.0
// Whether windows can be made at all.
#ifndef GT_TOOLKIT_STATE_H
#define GT_TOOLKIT_STATE_H

// Whether there is an application object with windows whose toolkit has been started on a display. False in a test
// runner and in a program without a display, and in other programs before the toolkit starts and after it has ended.
// Main thread only.
bool gtCanShowWindows();

#endif
