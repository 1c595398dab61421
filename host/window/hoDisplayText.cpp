// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoDisplayText.h"

#include <ctime>

wxString hoExactSizeText(std::uint64_t bytes)
{
    return hoNumberText(bytes) + (bytes == 1 ? " byte" : " bytes");
}

wxString hoSizeText(std::uint64_t bytes)
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
    const int decimals = value < 9.995 ? 2 : value < 99.95 ? 1 : 0;
    return wxString::FromCDouble(value, decimals) + " " + *pUnit;
}

wxString hoTimeText(std::int64_t seconds, bool isExact)
{
    const std::time_t time = static_cast<std::time_t>(seconds);
    struct tm parts;
    char text[64];
    if (localtime_r(&time, &parts) == nullptr ||
        std::strftime(text, sizeof text, isExact ? "%Y-%m-%d %H:%M:%S" : "%Y-%m-%d %H:%M", &parts) == 0)
    {
        return "?";
    }
    return wxString::FromAscii(text);
}
