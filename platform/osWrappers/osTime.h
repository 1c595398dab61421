// SPDX-License-Identifier: Apache-2.0
// A moment, to the second, and how it reads.
//
// Days follow the Gregorian calendar, seconds are counted as POSIX does it (every day has 86,400). Threads may read one
// moment together, and format moments at the same time as long as none changes the process's time zone (TZ, tzset).
#ifndef OS_TIME_H
#define OS_TIME_H

#include "platform/baseTools/gtString.h"

#pragma GCC visibility push(default)

class osTime
{
public:
    enum TimeFormat : int
    {
        DATE_AND_TIME = 0,  // "2026-11-21 00:31:07"
        DATE_ONLY = 1,      // "2026-11-21"
        TIME_ONLY = 2,      // "00:31:07"
        FOR_FILE_NAME = 3   // "2026-11-21_00-31-07", which is a file name everywhere
    };

    enum TimeZone : int
    {
        UTC = 0,
        LOCAL = 1  // the process's time zone, summer time included; after a change of TZ, call tzset
    };

    // The beginning of 1970, UTC.
    osTime() noexcept = default;

    // A moment given in seconds since then; earlier ones are negative.
    explicit osTime(long long secondsSince1970) noexcept : _secondsSince1970(secondsSince1970) {}

    osTime& setFromCurrentTime() noexcept;

    long long secondsSince1970() const noexcept { return _secondsSince1970; }

    // Puts the moment's text in the place of what timeText holds. All numbers have fixed widths, years four digits
    // (0007), those from 10000 on as many as they need; years before the year 0, which is the one before the year 1,
    // have a minus in front of theirs (-0001). From the year 0 to 9999 texts of one format with a date sort as their
    // moments do, in local time but for the hour that is repeated when summer time ends. A format or zone that is
    // none of the above counts as the one of value 0. A moment whose year the system cannot express gives the empty
    // text. Throws std::bad_alloc, with timeText unchanged, without memory.
    void timeAsString(gtString& timeText, TimeFormat timeFormat, TimeZone timeZone) const;

private:
    long long _secondsSince1970 = 0;
};

#pragma GCC visibility pop

#endif
