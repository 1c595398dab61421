// SPDX-License-Identifier: Apache-2.0
// The catalogues of translated texts: FOLDER/LANGUAGE/LC_MESSAGES/countersign.mo, made from po/ by the build. Main
// thread only.
//
// The language is chosen as gettext does it: LANGUAGE, a list, best first; where that is empty, the locale's. A locale
// that is C or is not installed gives English whatever LANGUAGE says, and so does a language without a catalogue.
#ifndef COUNTERSIGN_HO_CATALOGUES_H
#define COUNTERSIGN_HO_CATALOGUES_H

#include "platform/baseTools/gtString.h"

#include <string_view>
#include <vector>

// The names under which catalogues are looked for, the best first. locale: the name of the locale of messages;
// languages: the variable LANGUAGE. Of "de_AT.UTF-8": "de_AT", "de". English is "en", and nothing comes after it.
std::vector<gtString> hoLanguagesWanted(std::string_view locale, std::string_view languages);

// Where this program's catalogues are, in the build tree as where it is installed. program: the absolute path of the
// program, links resolved.
gtString hoCatalogueFolder(const gtString& program);

// From now on texts are in the first of these languages that has a catalogue in this folder; in English when none has.
// The marks of numbers are those of the language.
void hoUseCatalogue(const gtString& folder, const std::vector<gtString>& languages);

// The same for this program, as the environment says: the locale of characters, sorting, messages and times becomes
// that of the user, which the toolkit leaves at C, and so do the marks of numbers where the user's locale has any.
// Where texts are translated, windows made from now on have the direction of the language. Before there are other
// threads.
void hoUseLanguageOfUser(const gtString& program);

#endif
