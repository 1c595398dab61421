// SPDX-License-Identifier: Apache-2.0
// The size of all texts of the program, apart from the desktop's. Main thread, once the toolkit runs.
#ifndef GT_TEXT_SIZE_H
#define GT_TEXT_SIZE_H

// From now on texts have this size; the font's family and face stay those of the desktop. 0: as the desktop says. For
// windows that are made later: those that are there need not follow. Where the toolkit has no such setting nothing
// happens.
void gtSetTextSize(int points);

#endif
