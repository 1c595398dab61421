// SPDX-License-Identifier: Apache-2.0
#include "platform/baseTools/gtNumberText.h"

#include <string>

gtString gtNumberText(std::uint64_t number)
{
    std::string digits = std::to_string(number);
    for (std::size_t end = digits.length(); end > 3; end -= 3)
    {
        digits.insert(end - 3, ",");
    }
    return digits;
}
