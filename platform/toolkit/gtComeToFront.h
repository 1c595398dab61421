// SPDX-License-Identifier: Apache-2.0
#ifndef GT_COME_TO_FRONT_H
#define GT_COME_TO_FRONT_H

#include "platform/baseTools/gtString.h"

class wxTopLevelWindow;

// Shows the window, also one that is an icon, and asks the desktop to put it in front. Main thread only.
void gtComeToFront(wxTopLevelWindow& window);

// Takes what the desktop says about a request, by which it lets the next window that asks for it come to the front: an
// activation token, or a startup id with its time. Where the toolkit knows no such thing nothing happens. Main thread
// only.
void gtTakeStartupId(const gtString& id);

// The startup id that the desktop gave this program with its start, empty where it gave none. Under X11: the toolkit
// takes it out of the environment (DESKTOP_STARTUP_ID) before main is reached. Main thread only, once the toolkit is
// initialised.
gtString gtStartupId();

#endif
