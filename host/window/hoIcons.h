// SPDX-License-Identifier: Apache-2.0
// The application's own icon, which travels inside the program.
#ifndef COUNTERSIGN_HO_ICONS_H
#define COUNTERSIGN_HO_ICONS_H

#include <wx/bmpbndl.h>
#include <wx/iconbndl.h>

// In all its sizes. Main thread, once the toolkit runs.
wxIconBundle hoApplicationIcons();
wxBitmapBundle hoApplicationPicture();

#endif
