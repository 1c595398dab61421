// SPDX-License-Identifier: Apache-2.0
// Foreign texts and times as the windows show them.
//
// A document's name can hold anything but NUL and '/': line breaks, terminal commands, marks that turn the direction of
// what follows, bytes that are no text at all. Whatever of that reaches a window goes through here, so that one row
// stays one row and nobody can make a name look like another by invisible characters. Pure functions of their
// arguments and the locale; safe from any thread.
#ifndef COUNTERSIGN_HO_DISPLAY_TEXT_H
#define COUNTERSIGN_HO_DISPLAY_TEXT_H

#include "platform/baseTools/gtString.h"
#include "platform/toolkit/gtDisplayText.h"

#include <wx/string.h>

#include <cstddef>
#include <cstdint>

constexpr std::size_t hoMostCharactersShown = gtMostCharactersShown;

// The bytes, or a text that is one already, as one harmless line: see gtDisplayText.
inline wxString hoDisplayText(const gtString& bytes, std::size_t mostCharacters = hoMostCharactersShown)
{
    return gtDisplayText(bytes, mostCharacters);
}
inline wxString hoHarmlessText(const wxString& text, std::size_t mostCharacters = hoMostCharactersShown)
{
    return gtHarmlessText(text, mostCharacters);
}

// Seconds since 1970 as local time in the shape of the program's locale; in the locale C in one that sorts: "2026-11-21
// 01:43" or, exact, "2026-11-21 01:43:07". A time that the calendar does not hold gives "?".
wxString hoTimeText(std::int64_t seconds, bool isExact = false);

#endif
