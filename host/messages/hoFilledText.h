// SPDX-License-Identifier: Apache-2.0
// Sentences with values in them. A sentence is translated as a whole, so the values have places in it: "%s" takes the
// next value, "%2$s" the second one whatever came before, "%%" is a percent sign. Nothing is read past the values: a
// place for one that was not given stays empty, and what is no place stays as it is. Pure functions.
#ifndef COUNTERSIGN_HO_FILLED_TEXT_H
#define COUNTERSIGN_HO_FILLED_TEXT_H

#include "platform/baseTools/gtString.h"

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

// The same for any kind of characters.
template <class Character>
std::basic_string<Character> hoFill(std::basic_string_view<Character> format,
                                    const std::vector<std::basic_string<Character>>& values)
{
    std::basic_string<Character> text;
    std::size_t next = 0;
    for (std::size_t i = 0; i < format.size(); ++i)
    {
        const auto at = [&](std::size_t position) { return position < format.size() ? format[position] : Character(); };
        if (format[i] != '%')
        {
            text += format[i];
            continue;
        }
        const bool isNumbered = at(i + 1) >= '1' && at(i + 1) <= '9' && at(i + 2) == '$' && at(i + 3) == 's';
        if (isNumbered || at(i + 1) == 's')
        {
            const std::size_t value = isNumbered ? static_cast<std::size_t>(at(i + 1) - '1') : next++;
            text += value < values.size() ? values[value] : std::basic_string<Character>();
            i += isNumbered ? 3U : 1U;
            continue;
        }
        text += format[i];
        i += at(i + 1) == '%' ? 1U : 0U;
    }
    return text;
}

// Both are UTF-8.
gtString hoFilledText(const gtString& format, std::initializer_list<gtString> values);

#endif
