#include "automation/Date.h"

#include <cmath>
#include <cstdio>

#include "automation/AutomationError.h"

namespace kestrelon {
namespace {

constexpr int64_t kSecondsPerDay = 86400;
constexpr double kFirstDay = -657434;  // 0100-01-01
constexpr double kLastDay = 2958466;   // 10000-01-01, no longer in range

// Days since 1899-12-30 of a date of the proleptic Gregorian calendar.
int64_t DayNumber(int64_t year, int64_t month, int64_t day) {
  if (month <= 2) --year;
  const int64_t era = year / 400;
  const int64_t year_of_era = year - era * 400;
  const int64_t day_of_year = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const int64_t day_of_era = year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year;
  constexpr int64_t kEpoch = 693899;  // 0000-03-01 to 1899-12-30
  return era * 146097 + day_of_era - kEpoch;
}

bool IsLeapYear(int32_t year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int32_t DaysInMonth(int32_t year, int32_t month) {
  if (month == 2) return IsLeapYear(year) ? 29 : 28;
  return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

}  // namespace

Date MakeDate(const DateParts& parts) {
  const bool valid = parts.year >= 100 && parts.year <= 9999 && parts.month >= 1 &&
                     parts.month <= 12 && parts.day >= 1 &&
                     parts.day <= DaysInMonth(parts.year, parts.month) && parts.hour >= 0 &&
                     parts.hour <= 23 && parts.minute >= 0 && parts.minute <= 59 &&
                     parts.second >= 0 && parts.second <= 59;
  if (!valid) throw AutomationError(kInvalidProcedureCall);
  const auto day = static_cast<double>(DayNumber(parts.year, parts.month, parts.day));
  const double time = (parts.hour * 3600.0 + parts.minute * 60.0 + parts.second) / kSecondsPerDay;
  return Date{day < 0 ? day - time : day + time};
}

DateParts TakeApart(Date date) {
  if (!(date.days >= kFirstDay - 1 && date.days < kLastDay)) throw AutomationError(kOverflow);
  auto day = static_cast<int64_t>(std::trunc(date.days));
  auto seconds = static_cast<int64_t>(
      std::llround(std::fabs(date.days - std::trunc(date.days)) * kSecondsPerDay));
  if (seconds == kSecondsPerDay) {
    seconds = 0;
    ++day;
  }
  DateParts parts;
  parts.hour = static_cast<int32_t>(seconds / 3600);
  parts.minute = static_cast<int32_t>(seconds / 60 % 60);
  parts.second = static_cast<int32_t>(seconds % 60);
  parts.year = static_cast<int32_t>(1900 + day / 366) - (day < 0 ? 2 : 0);
  while (DayNumber(parts.year + 1, 1, 1) <= day) ++parts.year;
  while (DayNumber(parts.year, 1, 1) > day) --parts.year;
  parts.month = 1;
  while (parts.month < 12 && DayNumber(parts.year, parts.month + 1, 1) <= day) ++parts.month;
  parts.day = static_cast<int32_t>(day - DayNumber(parts.year, parts.month, 1) + 1);
  return parts;
}

String FormatDate(Date date) {
  const DateParts parts = TakeApart(date);
  char day[16] = "";
  char time[16] = "";
  std::snprintf(day, sizeof day, "%04d-%02d-%02d", parts.year % 10000, parts.month, parts.day);
  std::snprintf(time, sizeof time, "%02d:%02d:%02d", parts.hour, parts.minute, parts.second);
  const bool has_day = std::trunc(date.days) != 0;
  const bool has_time = parts.hour != 0 || parts.minute != 0 || parts.second != 0;
  if (!has_day) return FromUtf8(time);
  return FromUtf8(has_time ? std::string(day) + " " + time : std::string(day));
}

Date ParseDate(StringView text) {
  const std::string ascii = ToAnsi(text);
  DateParts parts;
  int read = 0;
  char separator = 0;
  const int fields =
      std::sscanf(ascii.c_str(), "%4d-%2d-%2d%n%c%2d:%2d:%2d%n", &parts.year, &parts.month,
                  &parts.day, &read, &separator, &parts.hour, &parts.minute, &parts.second, &read);
  const bool complete = read == static_cast<int>(ascii.size());
  const bool valid =
      complete && (fields == 3 || (fields == 7 && (separator == ' ' || separator == 'T')));
  if (!valid) throw AutomationError(kTypeMismatch);
  try {
    return MakeDate(parts);
  } catch (const AutomationError&) {
    throw AutomationError(kTypeMismatch);
  }
}

}  // namespace kestrelon
