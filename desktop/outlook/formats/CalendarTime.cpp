#include "desktop/outlook/formats/CalendarTime.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "automation/AutomationError.h"
#include "desktop/outlook/formats/CalendarZone.h"

namespace kestrelon::desktop {
namespace {

std::optional<Date> TryMakeDate(const DateParts& parts) {
  std::optional<Date> date;
  IgnoreFailures([&] { date = MakeDate(parts); });
  return date;
}

// The basic form of a time, or the extended one that some programs write ("2026-11-21T10:00:00Z").
struct WrittenTime {
  DateParts parts;
  bool is_day;
  bool is_utc;
};

std::optional<WrittenTime> ParseTime(std::string_view text) {
  std::string digits;
  bool has_time = false;
  bool is_utc = false;
  for (const char c : text) {
    if (c >= '0' && c <= '9') {
      digits += c;
    } else if ((c == 'T' || c == 't') && digits.size() == 8 && !has_time) {
      has_time = true;
    } else if ((c == 'Z' || c == 'z') && has_time) {
      is_utc = true;
    } else if (c != '-' && c != ':' && c != ' ') {
      return std::nullopt;
    }
  }
  const size_t size = digits.size();
  if (has_time ? size != 14 && size != 12 : size != 8) return std::nullopt;
  digits.resize(14, '0');
  const auto number = [&digits](size_t at, size_t count) {
    return std::stoi(digits.substr(at, count));
  };
  // A leap second is none here.
  const DateParts parts{number(0, 4), number(4, 2),  number(6, 2),
                        number(8, 2), number(10, 2), std::min(number(12, 2), 59)};
  if (!TryMakeDate(parts)) return std::nullopt;
  return WrittenTime{parts, !has_time, is_utc};
}

std::shared_ptr<const CalendarZone> ZoneOf(const ContentLines& lines, const Component& calendar,
                                           const std::string& name) {
  for (auto zone = lines.FindComponent("VTIMEZONE", calendar); zone;
       zone = lines.FindComponent("VTIMEZONE", calendar, zone->end)) {
    const auto id = lines.Find("TZID", *zone);
    if (!id || lines.RawValue(*id) != name) continue;
    const size_t end = std::min(zone->end + 1, lines.size());
    if (auto described = DescribedZone(lines.Bytes(zone->begin, end))) return described;
  }
  return SystemZone(name);
}

}  // namespace

std::optional<CalendarTime> ReadTime(const ContentLines& lines, const Component& calendar,
                                     size_t line) {
  const std::optional<WrittenTime> written = ParseTime(lines.RawValue(line));
  if (!written) return std::nullopt;
  std::optional<Date> local = MakeDate(written->parts);
  if (written->is_utc) {
    std::tm time = ToTm(written->parts);
    local = FromUnixTime(timegm(&time));
  } else if (!written->is_day && lines.HasParameters(line)) {
    const std::vector<Parameter> parameters = lines.Parameters(line);
    const Parameter* const name = FindParameter(parameters, "TZID");
    const auto zone = name == nullptr ? nullptr : ZoneOf(lines, calendar, name->values.front());
    if (zone != nullptr) local = FromUnixTime(zone->ToUnixTime(written->parts));
  }
  if (!local) return std::nullopt;
  return CalendarTime{*local, written->is_day};
}

std::string FormatDay(Date local) {
  const DateParts parts = TakeApart(local);
  char text[32];
  std::snprintf(text, sizeof text, "%04d%02d%02d", parts.year, parts.month, parts.day);
  return text;
}

std::string FormatUtc(Date local) {
  const std::time_t seconds = ToUnixTime(local);
  std::tm time{};
  gmtime_r(&seconds, &time);
  if (time.tm_year < 100 - 1900 || time.tm_year > 9999 - 1900) throw AutomationError(kOverflow);
  char text[64];
  std::snprintf(text, sizeof text, "%04d%02d%02dT%02d%02d%02dZ", time.tm_year + 1900,
                time.tm_mon + 1, time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec);
  return text;
}

std::optional<CalendarDuration> ReadDuration(std::string_view value) {
  const bool is_negative = value.starts_with('-');
  if (is_negative || value.starts_with('+')) value.remove_prefix(1);
  if (!value.starts_with('P') && !value.starts_with('p')) return std::nullopt;
  CalendarDuration duration;
  int64_t number = -1;
  for (const char c : UpperAscii(value.substr(1))) {
    if (c >= '0' && c <= '9') {
      number = std::max<int64_t>(number, 0) * 10 + (c - '0');
      if (number > 99'999'999) return std::nullopt;
      continue;
    }
    if (c == 'T' && number < 0) continue;
    if (number < 0) return std::nullopt;
    switch (c) {
      case 'W':
        duration.days += number * 7;
        break;
      case 'D':
        duration.days += number;
        break;
      case 'H':
        duration.seconds += number * 3600;
        break;
      case 'M':
        duration.seconds += number * 60;
        break;
      case 'S':
        duration.seconds += number;
        break;
      default:
        return std::nullopt;
    }
    number = -1;
  }
  if (is_negative) return CalendarDuration{-duration.days, -duration.seconds};
  return duration;
}

std::optional<Date> AddDuration(Date local, const CalendarDuration& duration) {
  constexpr int64_t kMostDays = 4'000'000;  // more than all dates have
  if (std::abs(duration.days) > kMostDays) return std::nullopt;
  std::optional<Date> sum;
  IgnoreFailures([&] {
    std::tm time = ToTm(TakeApart(local));
    time.tm_mday += static_cast<int>(duration.days);
    sum = FromUnixTime(std::mktime(&time) + duration.seconds);
  });
  return sum;
}

int64_t ToUnixTime(Date local) {
  std::tm time = ToTm(TakeApart(local));
  return std::mktime(&time);
}

std::optional<Date> FromUnixTime(int64_t seconds) {
  const std::time_t moment = seconds;
  std::tm time{};
  if (localtime_r(&moment, &time) == nullptr) return std::nullopt;
  return TryMakeDate({time.tm_year + 1900, time.tm_mon + 1, time.tm_mday, time.tm_hour, time.tm_min,
                      std::min(time.tm_sec, 59)});
}

Date ToWholeSeconds(Date date) { return MakeDate(TakeApart(date)); }

Date DayOf(Date date) {
  DateParts parts = TakeApart(date);
  parts.hour = parts.minute = parts.second = 0;
  return MakeDate(parts);
}

}  // namespace kestrelon::desktop
