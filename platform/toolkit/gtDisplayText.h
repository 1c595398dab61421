// SPDX-License-Identifier: Apache-2.0
// Text as windows show it.
//
// A name can hold anything but NUL: line breaks, terminal commands, marks that turn the direction of what follows,
// bytes that are no text at all. Whatever of that reaches a window goes through here, so that one row stays one row and
// nobody can make a name look like another by invisible characters. Pure functions of their arguments and the locale;
// safe from any thread.
#ifndef GT_DISPLAY_TEXT_H
#define GT_DISPLAY_TEXT_H

#include "platform/baseTools/gtString.h"

#include <wx/string.h>

#include <cstddef>

constexpr std::size_t gtMostCharactersShown = 300;

// The bytes as one harmless line: ASCII's control characters as their pictures (a line feed as U+240A), U+2028 and
// U+2029 as U+2424, other control characters (U+0080 to U+009F) and invisible ones that change the direction or take no
// room as U+FFFD, everything else as it is. A text longer than mostCharacters (at
// least 3) loses its middle: it keeps that length with U+2026 in the gap, and most of what is kept is its beginning.
// Not empty unless bytes is; not reversible.
wxString gtDisplayText(const gtString& bytes, std::size_t mostCharacters = gtMostCharactersShown);

// The same of a text that is one already.
wxString gtHarmlessText(const wxString& text, std::size_t mostCharacters = gtMostCharactersShown);

#endif
