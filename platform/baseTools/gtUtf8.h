// SPDX-License-Identifier: Apache-2.0
// UTF-8 as RFC 3629 has it: no overlong forms, no surrogates, nothing above U+10FFFF. Plain functions of their
// arguments; allocate nothing; safe from any thread.
#ifndef GT_UTF8_H
#define GT_UTF8_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#pragma GCC visibility push(default)

// The bytes of the character that the text begins with; 0 if it begins with none. NUL is a character.
std::size_t gtLengthOfUtf8Character(std::string_view text);

// The code point of one whole character, as gtLengthOfUtf8Character measures it. The caller must give no other bytes.
std::uint32_t gtCodePointOfUtf8Character(std::string_view character);

bool gtIsUtf8(std::string_view text);

// The beginning of the text, of mostBytes at most, without half a character at its end. Bytes that are no UTF-8 are cut
// anywhere.
std::string_view gtBeginningOfUtf8(std::string_view text, std::size_t mostBytes);

#pragma GCC visibility pop

#endif
