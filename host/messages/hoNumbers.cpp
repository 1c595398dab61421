// SPDX-License-Identifier: Apache-2.0
#include "host/messages/hoNumbers.h"

#include "platform/baseTools/gtNumberText.h"

#include <string>

gtString hoAmountText(std::uint64_t amount, const char* pOne, const char* pMany)
{
    return gtNumberText(amount).append(' ').append(amount == 1 ? pOne : pMany);
}

gtString hoExactSizeText(std::uint64_t bytes)
{
    return hoAmountText(bytes, "byte", "bytes");
}

gtString hoSizeText(std::uint64_t bytes)
{
    const std::uint64_t step = 1000;
    if (bytes < step)
    {
        return hoExactSizeText(bytes);
    }
    const char* const units[] = {"kB", "MB", "GB", "TB", "PB", "EB"};
    const char* const* pUnit = units;
    std::uint64_t unit = step;
    // Half of the last figure is added by rounding: 999,500 bytes are 1.00 MB and not 1000 kB.
    while (unit < step * step * step * step * step * step && bytes >= unit * step - unit / 2)
    {
        unit *= step;
        ++pUnit;
    }
    const double value = static_cast<double>(bytes) / static_cast<double>(unit);
    const int decimals = value < 9.995 ? 2 : (value < 99.95 ? 1 : 0);
    // Not printf, which takes the decimal point from the locale.
    const std::uint64_t scale = decimals == 2 ? 100 : (decimals == 1 ? 10 : 1);
    const auto scaled = static_cast<std::uint64_t>(value * static_cast<double>(scale) + 0.5);
    gtString text(std::to_string(scaled / scale));
    if (decimals > 0)
    {
        const std::string fraction = std::to_string(scale + scaled % scale).substr(1);
        text.append('.').append(fraction);
    }
    return text.append(' ').append(*pUnit);
}
