// SPDX-License-Identifier: Apache-2.0
// Keeps long texts quick to lay out in a multi-line text control.
#ifndef GT_TEXT_LAYOUT_H
#define GT_TEXT_LAYOUT_H

class wxTextCtrl;

// A word of more characters than this may be broken anywhere, with all of its line.
constexpr int gtLongestUnbrokenWord = 1000;

// To be called whenever the text of the control has been written. On some platforms a text control takes time that
// grows with the square of a word's length to find out where the word can be broken, and shows nothing at all of a line
// of some 300,000 characters. Lines that hold so long a word are broken at the margin there, wherever in a word that
// is, and very long lines are laid out piece by piece. Text, styles, insertion point and whatever the control gives
// back of them stay as they are. Takes no longer than writing the text did; a text without long lines costs next to
// nothing.
void gtAllowBreaksInLongWords(wxTextCtrl* pTextCtrl);

#endif
