// SPDX-License-Identifier: Apache-2.0
// Bytes as people compare them.
#ifndef COUNTERSIGN_HO_HEX_TEXT_H
#define COUNTERSIGN_HO_HEX_TEXT_H

#include "platform/baseTools/gtString.h"

#include <cstddef>

// Two lower-case hexadecimal characters for each of the amount of bytes, the first byte first; empty for 0 bytes.
// Throws std::bad_alloc.
inline gtString hoHexText(const unsigned char* pBytes, std::size_t amount)
{
    gtString text;
    for (std::size_t i = 0; i < amount; ++i)
    {
        text.appendFormattedString("%02x", static_cast<unsigned int>(pBytes[i]));
    }
    return text;
}

#endif
