// SPDX-License-Identifier: Apache-2.0
// Which characters of a foreign text may reach a window or a terminal as they are. One table for both. Plain functions;
// safe from any thread.
#ifndef GT_CHARACTERS_H
#define GT_CHARACTERS_H

#include <cstdint>

#pragma GCC visibility push(default)

enum class gtCharacterKind
{
    Harmless,
    Control,        // U+0000 to U+001F, U+007F to U+009F
    LineSeparator,  // U+2028 and U+2029
    Invisible       // takes no room, or changes how its neighbours are seen, such as marks of direction
};

// before: the code point in front of it, 0 for none. A variation selector is harmless behind U+203C and all above,
// where pictures are and it says whether they are coloured; behind anything below it is invisible.
gtCharacterKind gtKindOfCharacter(std::uint32_t codePoint, std::uint32_t before);

#pragma GCC visibility pop

#endif
