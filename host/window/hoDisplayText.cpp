// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoDisplayText.h"

#include <wx/datetime.h>

#include <clocale>
#include <cstdlib>
#include <ctime>
#include <string_view>

#include <langinfo.h>

namespace
{
const int mostYears = 8000;  // around 1900: beyond, the toolkit's calendar ends

// Whether the locale has a shape of days and of hours.
bool hasShapeOfTimes()
{
    const std::string_view locale = std::setlocale(LC_TIME, nullptr);
    return locale != "C" && locale != "POSIX" && locale.substr(0, 2) != "C.";
}

// As the locale has it, without its seconds.
const char* formatOfHours()
{
    const std::string_view hours = nl_langinfo(T_FMT);
    const bool areHalved = hours.find("%r") != std::string_view::npos || hours.find("%p") != std::string_view::npos;
    return areHalved ? "%I:%M %p" : "%H:%M";
}
}  // namespace

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
    if (hasShapeOfTimes() && std::abs(parts.tm_year) < mostYears)
    {
        return wxDateTime(parts).Format(wxString("%x ") + (isExact ? "%X" : formatOfHours()));
    }
    return wxString::FromAscii(text);
}
