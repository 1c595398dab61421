// SPDX-License-Identifier: Apache-2.0
// Right-to-left languages. Main thread only.
#ifndef GT_TEXT_DIRECTION_H
#define GT_TEXT_DIRECTION_H

class wxTopLevelWindow;
class wxWindow;

// Windows that are made from now on have the direction of the locale's language. The toolkit looks at the locale when
// it starts, at which time it is still C. Does nothing where the system cares for it by itself.
void gtFollowDirectionOfLocale();

// Gives a window without a parent that direction, for those that are made inside it or with it as parent: the toolkit
// lays these out by its own.
void gtTakeDirection(wxTopLevelWindow& window);

// The static texts within a window, which are there already, begin at the side where their language begins. In a
// right-to-left window the toolkit turns them, and what is below it turns them back.
void gtAlignTexts(wxWindow& window);

#endif
