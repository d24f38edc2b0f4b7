// The time zones that calendar files name.
#pragma once

#include <cstdint>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>

#include "automation/Date.h"

namespace kestrelon::desktop {

// As the C library takes it; whether clocks are forward is for it to find out.
std::tm ToTm(const DateParts& parts);

class CalendarZone {
 public:
  virtual ~CalendarZone() = default;
  // Seconds since 1970 of a time of this zone. Of a time that the clocks show twice, the first; one
  // that they leave out is counted on as if they had not been changed yet.
  int64_t ToUnixTime(const DateParts& parts) const;

 protected:
  // Seconds that the zone is ahead of UTC at a moment, in seconds since 1970.
  virtual int64_t OffsetAt(int64_t time) const = 0;
};

// As a VTIMEZONE component describes it. nullptr for one that no program means seriously: what is
// malformed, or changes its clocks by other rules than yearly ones.
std::shared_ptr<const CalendarZone> DescribedZone(std::string_view vtimezone);

// By name ("Europe/Berlin", also behind a prefix as in "/example.com/Europe/Berlin"). nullptr when
// the system does not know it.
std::shared_ptr<const CalendarZone> SystemZone(std::string_view name);

}  // namespace kestrelon::desktop
