// SPDX-License-Identifier: Apache-2.0
// Between bytes (gtString, const char*) and the toolkit's text (wxString).
//
// Everywhere outside the toolkit text is bytes whose encoding nobody knows for sure: a path is any bytes but NUL, a
// function's name comes from a compiler, a reason from whoever wrote the check. The toolkit's own conversions follow
// the locale and give an *empty* text for bytes that do not fit it. These never do, in any locale:
//
// - text to be read by people: gtTextFromBytes, and back gtBytesFromText. UTF-8 first, then whatever works.
//   Bytes that are not UTF-8 do not come back the same.
// - a path that is going to be opened: gtPathTextFromBytes and gtPathBytesFromText, the exact inverse of each other.
//   Show the user gtTextFromBytes(gtPathBytesFromText(pathText)), not the path text itself.
//
// All are pure functions of their arguments and the locale: they allocate what they return and nothing else, and may be
// called from any thread. They throw std::bad_alloc without memory, and std::length_error where the bytes are more than
// a gtString holds; nothing else.
#ifndef GT_TEXT_CONVERSION_H
#define GT_TEXT_CONVERSION_H

#include <cstddef>

#include <wx/string.h>

#include "platform/baseTools/gtString.h"

// The text of bytes[0..length): read as UTF-8 when the toolkit takes all of it for that (which it does of overlong
// forms of three and four bytes and of surrogates, too), else by wxConvWhateverWorks (the locale's encoding, at last
// one character a byte). Embedded NULs stay. Empty for no bytes only.
// pBytes may be null when length is 0.
wxString gtTextFromBytes(const char* pBytes, std::size_t length);

// The same for a NUL-terminated text; null counts as empty.
wxString gtTextFromBytes(const char* pText);

// The same for the whole string, embedded NULs included.
wxString gtTextFromBytes(const gtString& bytes);

// The text as UTF-8, whatever the locale. A code point that UTF-8 does not have (half a surrogate pair, beyond
// U+10FFFF) becomes U+FFFD, so that nothing around it is lost.
gtString gtBytesFromText(const wxString& text);

// The text with those characters replaced that a window's controls refuse together with all the text around them:
// NUL by its picture U+2400, and half surrogate pairs and code points beyond U+10FFFF by U+FFFD. Everything else,
// control characters too, stays as it is, and the text keeps its length.
wxString gtShowableText(const wxString& text);

// The path as text that gtPathBytesFromText turns into the same bytes again: valid UTF-8 as the characters it means,
// every other byte b as the private-use code point U+100000 + b (so is a byte of U+100000..U+1000FF itself, which
// keeps the way back unambiguous). This is also how the toolkit's file dialogs and wxFileName write such a path when
// the file names are taken for UTF-8.
wxString gtPathTextFromBytes(const gtString& path);

// The bytes of a path that gtPathTextFromBytes, a file dialog or a drop of files gave. Any other text counts as a path
// in UTF-8, and half a surrogate pair in it becomes the three bytes that it would have there: no text gives no bytes.
gtString gtPathBytesFromText(const wxString& pathText);

// The bytes of one element of the application object's argument array, which the toolkit's entry made by the locale's
// conversion at that time: in the C locale one character a byte, elsewhere the locale's encoding. Not for a path that
// MacOpenFile kept there: that is a path text.
// An argument whose bytes the locale's encoding does not have is not in the array at all: the toolkit drops it with a
// warning on standard error.
gtString gtBytesFromArgument(const wxString& argument);

#endif
