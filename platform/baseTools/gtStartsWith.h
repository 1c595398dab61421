// SPDX-License-Identifier: Apache-2.0
// How texts start and end, as std::string_view has it from C++20 on. The empty text starts and ends every text.
#ifndef GT_STARTS_WITH_H
#define GT_STARTS_WITH_H

#include <string_view>

inline bool gtStartsWith(std::string_view text, std::string_view start) noexcept
{
    return text.substr(0, start.size()) == start;
}

inline bool gtEndsWith(std::string_view text, std::string_view end) noexcept
{
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

#endif
