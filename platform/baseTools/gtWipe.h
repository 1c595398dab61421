// SPDX-License-Identifier: Apache-2.0
// Overwriting what was secret. Plain functions; safe from any thread that is alone with the bytes.
#ifndef GT_WIPE_H
#define GT_WIPE_H

#include "platform/baseTools/gtString.h"

#include <cstddef>

#pragma GCC visibility push(default)

// Overwrites the bytes with zeros in a way that the optimiser cannot drop. A null pointer is left alone.
void gtWipe(void* pBytes, std::size_t amountOfBytes);

// Overwrites the characters of a text, and makes it empty. What the text held before is out of reach: memory that it
// gave up by growing, so reserve what is needed before a secret goes in; and characters behind its present end, so wipe
// a secret before another, shorter text takes its place.
void gtWipe(gtString& text);

// A text that is wiped so when it goes away, however that comes. Not to be copied. Made of a function's result in
// braces, gtWipedText text{function()}, it leaves no second text behind.
struct gtWipedText
{
    gtString _text;

    ~gtWipedText() { gtWipe(_text); }
};

#pragma GCC visibility pop

#endif
