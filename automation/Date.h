// Dates of the automation world.
#pragma once

#include <cstdint>

#include "automation/Text.h"

namespace kestrelon {

// Days since 1899-12-30 00:00 local time, with the time of day as a fraction (for dates before it,
// the fraction still counts forward from midnight). Range: years 100 to 9999.
struct Date {
  double days = 0;
  friend bool operator==(Date a, Date b) { return a.days == b.days; }
};

// A date taken apart. month 1..12, day 1..31, hour 0..23, minute and second 0..59.
struct DateParts {
  int32_t year = 1899;
  int32_t month = 12;
  int32_t day = 30;
  int32_t hour = 0;
  int32_t minute = 0;
  int32_t second = 0;
};

// Error 5 when a part is out of range.
Date MakeDate(const DateParts& parts);
// Rounds to the nearest second. Error 6 when the date is out of range.
DateParts TakeApart(Date date);

// "YYYY-MM-DD hh:mm:ss"; the time part is left out at midnight, the date part on day 0.
String FormatDate(Date date);
// Reads what FormatDate writes, also with "T" between date and time. Error 13 otherwise.
Date ParseDate(StringView text);

}  // namespace kestrelon
