#include "desktop/outlook/formats/CalendarZone.h"

#include <glib.h>
#include <libical/ical.h>

#include <map>

#include "desktop/outlook/formats/ContentLines.h"

namespace kestrelon::desktop {
namespace {

using ZonePointer = std::shared_ptr<const CalendarZone>;

// What no real zone reaches, and what the library can expand in a moment.
constexpr size_t kLongestDescription = 64 * 1024;
constexpr int kMostRules = 64;

std::time_t AsUtc(const DateParts& parts) {
  std::tm time = ToTm(parts);
  return timegm(&time);
}

class ZoneOfFile final : public CalendarZone {
 public:
  explicit ZoneOfFile(icaltimezone* zone) : zone_(zone) {}
  ~ZoneOfFile() override { icaltimezone_free(zone_, 1); }
  ZoneOfFile(const ZoneOfFile&) = delete;
  ZoneOfFile& operator=(const ZoneOfFile&) = delete;

  int64_t OffsetAt(int64_t time) const override {
    icaltimezone* const utc = icaltimezone_get_utc_timezone();
    icaltimetype moment = icaltime_from_timet_with_zone(time, 0, utc);
    int is_daylight = 0;
    return icaltimezone_get_utc_offset_of_utc_time(zone_, &moment, &is_daylight);
  }

 private:
  icaltimezone* zone_;
};

class ZoneOfSystem final : public CalendarZone {
 public:
  explicit ZoneOfSystem(GTimeZone* zone) : zone_(zone) {}
  ~ZoneOfSystem() override { g_time_zone_unref(zone_); }
  ZoneOfSystem(const ZoneOfSystem&) = delete;
  ZoneOfSystem& operator=(const ZoneOfSystem&) = delete;

  int64_t OffsetAt(int64_t time) const override {
    const gint interval = g_time_zone_find_interval(zone_, G_TIME_TYPE_UNIVERSAL, time);
    return g_time_zone_get_offset(zone_, interval);
  }

 private:
  GTimeZone* zone_;
};

bool IsReasonable(std::string_view vtimezone) {
  if (vtimezone.size() > kLongestDescription) return false;
  const ContentLines lines{std::string(vtimezone)};
  int rules = 0;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (!lines.Is(i, "RRULE")) continue;
    const std::string rule = UpperAscii(lines.RawValue(i));
    const bool is_yearly = rule.find("FREQ=YEARLY") != std::string::npos &&
                           rule.find("FREQ", rule.find("FREQ") + 1) == std::string::npos;
    const bool has_clock_times = rule.find("BYHOUR") != std::string::npos ||
                                 rule.find("BYMINUTE") != std::string::npos ||
                                 rule.find("BYSECOND") != std::string::npos;
    if (!is_yearly || has_clock_times || ++rules > kMostRules) return false;
  }
  return true;
}

ZonePointer ReadDescription(std::string_view vtimezone) {
  if (!IsReasonable(vtimezone)) return nullptr;
  icalerror_set_errors_are_fatal(0);
  icalcomponent* const component = icalparser_parse_string(std::string(vtimezone).c_str());
  if (component == nullptr) return nullptr;
  icaltimezone* const zone = icaltimezone_new();
  const bool is_zone = icalcomponent_isa(component) == ICAL_VTIMEZONE_COMPONENT &&
                       icaltimezone_set_component(zone, component) != 0;
  if (is_zone) return std::make_shared<ZoneOfFile>(zone);
  icalcomponent_free(component);
  icaltimezone_free(zone, 1);
  return nullptr;
}

ZonePointer FindInSystem(std::string_view name) {
  // It is looked up as a file.
  if (name.find("..") != std::string_view::npos) return nullptr;
  while (!name.empty()) {
    const std::string id(name);
    GTimeZone* const zone = name.front() == '/' ? nullptr : g_time_zone_new_identifier(id.c_str());
    if (zone != nullptr) return std::make_shared<ZoneOfSystem>(zone);
    const size_t slash = name.find('/');
    name.remove_prefix(slash == std::string_view::npos ? name.size() : slash + 1);
  }
  return nullptr;
}

// Most items of a calendar name the same few zones.
ZonePointer Remember(std::map<std::string, ZonePointer, std::less<>>& known, std::string_view key,
                     ZonePointer (*find)(std::string_view)) {
  constexpr size_t kMostKnown = 64;
  const auto found = known.find(key);
  if (found != known.end()) return found->second;
  if (known.size() >= kMostKnown) known.clear();
  return known.emplace(key, find(key)).first->second;
}

}  // namespace

std::tm ToTm(const DateParts& parts) {
  std::tm time{};
  time.tm_year = parts.year - 1900;
  time.tm_mon = parts.month - 1;
  time.tm_mday = parts.day;
  time.tm_hour = parts.hour;
  time.tm_min = parts.minute;
  time.tm_sec = parts.second;
  time.tm_isdst = -1;
  return time;
}

int64_t CalendarZone::ToUnixTime(const DateParts& parts) const {
  constexpr int64_t kDay = 86400;
  const int64_t clock = AsUtc(parts);
  const int64_t before = OffsetAt(clock - kDay);
  const int64_t first = clock - before;
  const int64_t then = OffsetAt(first);
  // Where the clocks have changed since, unless that hour was left out.
  const bool is_later = then != before && OffsetAt(clock - then) == then;
  return is_later ? clock - then : first;
}

ZonePointer DescribedZone(std::string_view vtimezone) {
  static std::map<std::string, ZonePointer, std::less<>> known;
  return Remember(known, vtimezone, ReadDescription);
}

ZonePointer SystemZone(std::string_view name) {
  static std::map<std::string, ZonePointer, std::less<>> known;
  return Remember(known, name, FindInSystem);
}

}  // namespace kestrelon::desktop
