// SPDX-License-Identifier: Apache-2.0
#include "platform/osWrappers/osTime.h"

#include <ctime>
#include <limits>
#include <utility>

namespace
{
bool brokenDown(long long secondsSince1970, osTime::TimeZone timeZone, std::tm& result)
{
    static_assert(std::numeric_limits<std::time_t>::is_integer, "seconds are counted in whole numbers");
    const std::time_t seconds = static_cast<std::time_t>(secondsSince1970);
    if (seconds != secondsSince1970)
    {
        return false;
    }
    // The variants that write where they are told: the others share one record between all threads.
    return (timeZone == osTime::LOCAL ? ::localtime_r(&seconds, &result) : ::gmtime_r(&seconds, &result)) != nullptr;
}
}  // namespace

osTime& osTime::setFromCurrentTime() noexcept
{
    _secondsSince1970 = static_cast<long long>(std::time(nullptr));
    return *this;
}

void osTime::timeAsString(gtString& timeText, TimeFormat timeFormat, TimeZone timeZone) const
{
    gtString result;
    std::tm parts = {};
    if (brokenDown(_secondsSince1970, timeZone, parts))
    {
        const long long year = 1900LL + parts.tm_year;
        const char* const pSign = year < 0 ? "-" : "";
        const long long digits = year < 0 ? -year : year;
        const int month = parts.tm_mon + 1;
        switch (timeFormat)
        {
        case DATE_ONLY:
            result.appendFormattedString("%s%04lld-%02d-%02d", pSign, digits, month, parts.tm_mday);
            break;
        case TIME_ONLY:
            result.appendFormattedString("%02d:%02d:%02d", parts.tm_hour, parts.tm_min, parts.tm_sec);
            break;
        case FOR_FILE_NAME:
            result.appendFormattedString("%s%04lld-%02d-%02d_%02d-%02d-%02d", pSign, digits, month, parts.tm_mday,
                                         parts.tm_hour, parts.tm_min, parts.tm_sec);
            break;
        case DATE_AND_TIME:
        default:
            result.appendFormattedString("%s%04lld-%02d-%02d %02d:%02d:%02d", pSign, digits, month, parts.tm_mday,
                                         parts.tm_hour, parts.tm_min, parts.tm_sec);
            break;
        }
    }
    timeText = std::move(result);
}
