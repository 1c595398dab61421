// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoDisplayText.h"

#include <ctime>

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
