// SPDX-License-Identifier: Apache-2.0
// The assertion dialog's window icon: an XPM image of 16 x 16 pixels in 40 colours, one character a pixel. A red square
// with a white exclamation mark in its middle.
#ifndef AH_ASSERT_DIALOG_ICON_H
#define AH_ASSERT_DIALOG_ICON_H

// The header line, 40 colours, 16 rows.
extern const char* const ahAssertDialogIcon[57];

#endif
