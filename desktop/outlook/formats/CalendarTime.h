// Times of iCalendar objects and the user's local time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "automation/Date.h"
#include "desktop/outlook/formats/ContentLines.h"

namespace kestrelon::desktop {

struct CalendarTime {
  Date local;           // the user's
  bool is_day = false;  // a DATE: midnight
};

// The time of a line: a day, UTC, a time of the zone that TZID names (described in `calendar`, else
// known to the system), or a floating time. A zone that nobody knows is taken for the user's.
// Nothing for what is no time.
std::optional<CalendarTime> ReadTime(const ContentLines& lines, const Component& calendar,
                                     size_t line);

// "20261121", "20261121T100000Z". Error 6 for a date out of range.
std::string FormatDay(Date local);
std::string FormatUtc(Date local);

// Days and weeks as the calendar counts them, hours as the clock does.
struct CalendarDuration {
  int64_t days = 0;
  int64_t seconds = 0;
};
std::optional<CalendarDuration> ReadDuration(std::string_view value);  // "P1DT2H"
// Nothing when the result is out of range.
std::optional<Date> AddDuration(Date local, const CalendarDuration& duration);

// Seconds since 1970 of a local time and back; nothing when it is out of range.
int64_t ToUnixTime(Date local);
std::optional<Date> FromUnixTime(int64_t seconds);

// Rounded to the second, so that equal times compare equal.
Date ToWholeSeconds(Date date);
Date DayOf(Date date);

}  // namespace kestrelon::desktop
