// SPDX-License-Identifier: Apache-2.0
// Tells the user something where no window of the program is in front: by the desktop's notifications.
#ifndef COUNTERSIGN_HO_NOTIFICATION_H
#define COUNTERSIGN_HO_NOTIFICATION_H

#include "platform/baseTools/gtString.h"

// Shows the line, UTF-8 and no markup, until the desktop takes it away. Returns at once; where there is no session bus,
// or nothing on it that shows notifications, nothing happens. Main thread only, and it comes while the main loop runs.
void hoNotify(const gtString& line);

#endif
