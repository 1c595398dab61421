// SPDX-License-Identifier: Apache-2.0
// The same bytes as the platform's text and as the standard library's, embedded NULs included.
#ifndef GT_BYTES_H
#define GT_BYTES_H

#include "platform/baseTools/gtString.h"

#include <string>

#pragma GCC visibility push(default)

inline std::string hoToBytes(const gtString& text)
{
    return std::string(text.asCharArray(), static_cast<std::size_t>(text.length()));
}

inline gtString hoToText(const std::string& bytes)
{
    return gtString(bytes.data(), static_cast<int>(bytes.size()));
}

#pragma GCC visibility pop

#endif
