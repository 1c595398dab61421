// SPDX-License-Identifier: Apache-2.0
// Overwriting what was secret. Plain functions; safe from any thread that is alone with the bytes.
#ifndef GT_WIPE_H
#define GT_WIPE_H

#include <cstddef>

#pragma GCC visibility push(default)

class gtString;

// Overwrites the bytes with zeros in a way that the optimiser cannot drop. A null pointer is left alone.
void gtWipe(void* pBytes, std::size_t amountOfBytes);

// Overwrites the characters of a text, and makes it empty. What the text held before is out of reach: memory that it
// gave up by growing, so reserve what is needed before a secret goes in; and characters behind its present end, so wipe
// a secret before another, shorter text takes its place.
void gtWipe(gtString& text);

#pragma GCC visibility pop

#endif
