// Calendar files as a whole: what is in them.

#include <algorithm>
#include <map>
#include <set>

#include "desktop/outlook/formats/CalendarDocument.h"
#include "desktop/outlook/formats/CalendarObject.h"
#include "desktop/outlook/formats/ContentLines.h"

namespace kestrelon::desktop {
namespace {

constexpr const char* kProductLine = "PRODID:-//Kestrelon//Mailbox//EN";

struct CalendarItem {
  std::vector<Component> components;  // the series and its exceptions
};

class CalendarSplitter {
 public:
  explicit CalendarSplitter(std::string_view content) : lines_(std::string(content)) {
    const size_t line_feed = content.find('\n');
    const bool is_unix =
        line_feed != std::string_view::npos && (line_feed == 0 || content[line_feed - 1] != '\r');
    if (is_unix) line_end_ = "\n";
    auto calendar = lines_.FindComponent("VCALENDAR", lines_.Whole());
    if (!calendar) TakeCalendar(lines_.Whole());
    for (; calendar; calendar = lines_.FindComponent("VCALENDAR", lines_.Whole(), calendar->end)) {
      TakeCalendar(*calendar);
    }
  }

  std::vector<std::string> contents() && { return std::move(contents_); }

 private:
  // The items in the order of their first components.
  std::vector<CalendarItem> ItemsOf(const Component& calendar) const {
    std::vector<CalendarItem> items;
    std::map<std::string, size_t> by_uid;
    for (size_t line = calendar.begin + 1; line < calendar.end;) {
      const auto component = ItemAt(lines_, calendar, line);
      if (!component) {
        line = lines_.Next(line);
        continue;
      }
      const auto uid = lines_.Find("UID", *component);
      size_t place = items.size();
      const std::string kind = UpperAscii(lines_.RawValue(line));
      if (uid) place = by_uid.emplace(kind + lines_.RawValue(*uid), place).first->second;
      if (place == items.size()) items.emplace_back();
      items[place].components.push_back(*component);
      line = component->end + 1;
    }
    return items;
  }

  void TakeCalendar(const Component& calendar) {
    const std::string head = HeadOf(calendar);
    std::map<std::string, std::string> zones;
    for (auto zone = lines_.FindComponent("VTIMEZONE", calendar); zone;
         zone = lines_.FindComponent("VTIMEZONE", calendar, zone->end)) {
      if (const auto id = lines_.Find("TZID", *zone)) {
        zones.emplace(lines_.RawValue(*id), BytesOf(*zone));
      }
    }
    for (const CalendarItem& item : ItemsOf(calendar)) {
      std::string content = head;
      for (const std::string& zone : ZonesOf(item)) {
        if (const auto found = zones.find(zone); found != zones.end()) content += found->second;
      }
      for (const Component& component : item.components) content += BytesOf(component);
      contents_.push_back(content + "END:VCALENDAR" + line_end_);
    }
  }

  // What the calendar says of all its items, before the first of them. How a file came and what it
  // is called as a whole is not the items' own.
  std::string HeadOf(const Component& calendar) const {
    std::string head = "BEGIN:VCALENDAR" + line_end_;
    bool has_version = false;
    for (size_t line = calendar.begin + 1; line < calendar.end; ++line) {
      const std::string name = UpperAscii(lines_.Name(line));
      if (name == "BEGIN" || name == "END") break;
      if (name.empty() || name == "METHOD" || name.starts_with("X-WR-")) continue;
      head += BytesOf({line, line});
      has_version = has_version || name == "VERSION";
    }
    return has_version ? head : head + "VERSION:2.0" + line_end_ + kProductLine + line_end_;
  }

  std::set<std::string> ZonesOf(const CalendarItem& item) const {
    std::set<std::string> zones;
    for (const Component& component : item.components) {
      for (size_t line = component.begin + 1; line < component.end; ++line) {
        if (!lines_.HasParameters(line)) continue;
        const std::vector<Parameter> parameters = lines_.Parameters(line);
        if (const Parameter* const id = FindParameter(parameters, "TZID")) {
          zones.insert(id->values.front());
        }
      }
    }
    return zones;
  }

  // With the END of the component, and a line end whatever the file ends with.
  std::string BytesOf(const Component& component) const {
    std::string bytes(lines_.Bytes(component.begin, std::min(component.end + 1, lines_.size())));
    if (!bytes.ends_with('\n')) bytes += line_end_;
    return bytes;
  }

  ContentLines lines_;
  std::string line_end_ = "\r\n";
  std::vector<std::string> contents_;
};

}  // namespace

std::optional<ItemClass> ClassOfCalendarObject(std::string_view content) {
  const CalendarObject object{std::string(content)};
  if (!object.has_item()) return std::nullopt;
  return object.is_task() ? ItemClass::kTask : ItemClass::kAppointment;
}

std::vector<std::string> SplitCalendar(std::string_view content) {
  return CalendarSplitter(content).contents();
}

}  // namespace kestrelon::desktop
