// SPDX-License-Identifier: Apache-2.0
// The window's texts in the user's language. A text that is shown stands in English where it is used, between the
// parentheses of
//
//     _("...")                                  a text by itself
//     wxTRANSLATE("...")                        a text of a table, which is given to wxGetTranslation later
//     wxGETTEXT_IN_CONTEXT("context", "...")    a text that another language has two translations of
//     hoCounted("...", "...", amount, {...})    a text that depends on an amount
//
// where scripts/translations.sh finds it for the catalogues. A sentence is one text: values are put in by hoFilledText
// or hoCounted, since other languages have another order. Main thread only.
#ifndef COUNTERSIGN_HO_TEXTS_H
#define COUNTERSIGN_HO_TEXTS_H

#include <wx/string.h>
#include <wx/translation.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

// The values in the places of the text: see hoFill. What is in a value is no place.
wxString hoFilledText(const wxString& format, std::initializer_list<wxString> values);

// A number with the marks of the user's language, and one without any between its digits, such as a key's size.
wxString hoNumber(std::uint64_t number);
wxString hoPlainNumber(int number);

// An amount as the toolkit takes it to choose a plural.
unsigned int hoAmountForPlural(std::uint64_t amount);

// The text for this amount. Its first place is that of the amount, the others are those of the further values.
wxString hoCounted(const char* pOne, const char* pMany, std::size_t amount,
                   std::initializer_list<wxString> others = {});

// The texts that are not empty, one after the other: "3 good, 2 bad".
wxString hoListed(const std::vector<wxString>& texts);

#endif
