// SPDX-License-Identifier: Apache-2.0
// Right-to-left languages. Main thread only.
#ifndef GT_TEXT_DIRECTION_H
#define GT_TEXT_DIRECTION_H

// Windows that are made from now on have the direction of the locale's language. The toolkit looks at the locale when it
// starts, at which time it is still C. Does nothing where the system cares for it by itself.
void gtFollowDirectionOfLocale();

#endif
