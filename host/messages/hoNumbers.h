// SPDX-License-Identifier: Apache-2.0
// Numbers and sizes as text, in the program's language (hoLanguage.h). Plain functions; safe from any thread; only
// std::bad_alloc comes out.
#ifndef COUNTERSIGN_HO_NUMBERS_H
#define COUNTERSIGN_HO_NUMBERS_H

#include "platform/baseTools/gtString.h"

#include <cstdint>

// "12,345", with the marks of the language.
gtString hoNumberText(std::uint64_t number);

// "1 document", "2,000 documents". In English, whatever the language is.
gtString hoAmountText(std::uint64_t amount, const char* pOne, const char* pMany);

// A size with three figures: "0 bytes", "1 byte", "999 bytes", "1.23 kB", "18.4 EB". 1 kB is 1000 bytes.
gtString hoSizeText(std::uint64_t bytes);

// The exact size: "12,345,678 bytes".
gtString hoExactSizeText(std::uint64_t bytes);

#endif
