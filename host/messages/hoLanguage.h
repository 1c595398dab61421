// SPDX-License-Identifier: Apache-2.0
// The language of this room's texts: English, until the program sets another one. The window does so when it starts, by
// the toolkit's catalogues. The command line does not: its output is read by scripts, and its manual shows it in
// English.
//
// Every text is written in English where it is used, and is its own key in the catalogues: scripts/translations.sh
// finds the texts between the parentheses of hoTranslated and hoTranslatedPlural.
#ifndef COUNTERSIGN_HO_LANGUAGE_H
#define COUNTERSIGN_HO_LANGUAGE_H

#include "platform/baseTools/gtString.h"

#include <cstdint>

// How numbers are written.
struct hoNumberMarks
{
    gtString _group = ",";    // between groups of digits; empty: digits stand together
    gtString _decimal = ".";  // before the first decimal
    gtString _sizes = "\3";   // of the groups, from the right, one a char; the last one is that of all further ones
};

struct hoLanguage
{
    // The translation of a text; null: the text itself. UTF-8, as the result.
    gtString (*_translate)(const char* pText) = nullptr;
    // The same for texts that depend on an amount. pOne is the English one for 1.
    gtString (*_translatePlural)(const char* pOne, const char* pMany, std::uint64_t amount) = nullptr;
    hoNumberMarks _marks;
};

// Before other threads use this room.
void hoSetLanguage(const hoLanguage& language);

const hoNumberMarks& hoMarksOfNumbers();

gtString hoTranslated(const char* pText);
gtString hoTranslatedPlural(const char* pOne, const char* pMany, std::uint64_t amount);

#endif
