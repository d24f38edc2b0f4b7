// The appointment or task of an iCalendar text: its lines by name, and the times among them.
//
// Changes keep what other programs wrote: a line that is there keeps its place and those parameters
// that still hold; new lines come behind the item's other properties, before its alarms.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "desktop/outlook/formats/CalendarTime.h"
#include "desktop/outlook/formats/ContentLines.h"
#include "desktop/outlook/formats/ItemDocument.h"

namespace kestrelon::desktop {

class CalendarObject {
 public:
  explicit CalendarObject(std::string content);

  // No other member means anything when there is neither appointment nor task.
  bool has_item() const { return has_item_; }
  bool is_task() const { return is_task_; }
  const ContentLines& lines() const { return lines_; }
  const Component& item() const { return item_; }

  std::optional<size_t> Find(std::string_view name) const { return lines_.Find(name, item_); }
  bool Has(std::string_view name) const { return Find(name).has_value(); }
  // As it stands in the file, without blanks around it; "" when there is no such line.
  std::string Raw(std::string_view name) const;
  // What is not UTF-8 is read as Windows-1252.
  String Text(std::string_view name) const;
  std::optional<CalendarTime> Time(std::string_view name) const;

  // Each changes the first line of that name or adds one. "" removes all of them.
  void PutRaw(std::string_view name, std::string_view value);
  void PutText(std::string_view name, StringView text);
  // In UTC, or as a day.
  void PutTime(std::string_view name, Date local);
  void PutDay(std::string_view name, Date local);
  void Remove(std::string_view name);

  void PutField(const UserField& field);
  void RemoveField(StringView name);

 private:
  bool FindItem();
  void PutTimeValue(std::string_view name, std::string_view value, bool is_day);
  void Add(std::string_view line);
  Component Properties() const;
  void NoteChange();

  ContentLines lines_;
  Component calendar_{};
  Component item_{};
  bool has_item_ = false;
  bool is_task_ = false;
};

// The appointment or task that begins at a line of `within`.
std::optional<Component> ItemAt(const ContentLines& lines, const Component& within, size_t line);

// A text of the file; what is not UTF-8 is read as Windows-1252.
String ReadCalendarText(std::string_view value);

std::string UtcNow();

}  // namespace kestrelon::desktop
