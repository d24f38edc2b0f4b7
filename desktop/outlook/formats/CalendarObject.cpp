#include "desktop/outlook/formats/CalendarObject.h"

#include <ctime>

#include "desktop/outlook/formats/UserFieldLines.h"

namespace kestrelon::desktop {
namespace {

std::string WithoutBlanks(const std::string& text) {
  const size_t begin = text.find_first_not_of(" \t");
  return begin == std::string::npos ? ""
                                    : text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

}  // namespace

std::optional<Component> ItemAt(const ContentLines& lines, const Component& within, size_t line) {
  if (!lines.Is(line, "BEGIN")) return std::nullopt;
  const std::string name = WithoutBlanks(lines.RawValue(line));
  if (!EqualAscii(name, "VEVENT") && !EqualAscii(name, "VTODO")) return std::nullopt;
  // Nobody takes a name that is folded for a component.
  const std::string_view bytes = lines.Bytes(line);
  if (bytes.find('\n') < bytes.size() - 1) return std::nullopt;
  const auto item = lines.FindComponent(name, within, line);
  return item && item->begin == line ? item : std::nullopt;
}

String ReadCalendarText(std::string_view value) {
  const bool is_utf8 = ToUtf8(FromUtf8(value)) == value;
  return ReadText(is_utf8 ? value : std::string_view(ToUtf8(FromAnsi(value))));
}

std::string UtcNow() { return FormatUtc(FromUnixTime(std::time(nullptr)).value_or(Date{})); }

CalendarObject::CalendarObject(std::string content) : lines_(std::move(content)) {
  has_item_ = FindItem();
}

// The first item of the file, or the series to which that is an exception.
bool CalendarObject::FindItem() {
  size_t first = 0;
  while (first < lines_.size() && !ItemAt(lines_, lines_.Whole(), first)) ++first;
  if (first == lines_.size()) return false;
  is_task_ = EqualAscii(WithoutBlanks(lines_.RawValue(first)), "VTODO");

  calendar_ = lines_.Whole();
  for (auto each = lines_.FindComponent("VCALENDAR", calendar_); each && each->begin < first;
       each = lines_.FindComponent("VCALENDAR", lines_.Whole(), each->end)) {
    calendar_ = *each;
  }
  const char* const kind = is_task_ ? "VTODO" : "VEVENT";
  if (first >= calendar_.end) calendar_ = lines_.Whole();
  const Component around{first - 1, calendar_.end};
  const auto found = lines_.FindComponent(kind, around, first);
  if (!found || found->begin != first) return false;
  item_ = *found;
  const auto uid_of = [this](const Component& component) {
    const auto line = lines_.Find("UID", component);
    return line ? lines_.RawValue(*line) : std::string();
  };
  const std::string uid = uid_of(item_);
  for (auto each = found; each; each = lines_.FindComponent(kind, around, each->end)) {
    if (lines_.Find("RECURRENCE-ID", *each) || uid_of(*each) != uid) continue;
    item_ = *each;
    break;
  }
  return true;
}

std::string CalendarObject::Raw(std::string_view name) const {
  const auto line = Find(name);
  return line ? WithoutBlanks(lines_.RawValue(*line)) : "";
}

String CalendarObject::Text(std::string_view name) const {
  const auto line = Find(name);
  return line ? ReadCalendarText(lines_.RawValue(*line)) : String();
}

std::optional<CalendarTime> CalendarObject::Time(std::string_view name) const {
  const auto line = Find(name);
  return line ? ReadTime(lines_, calendar_, *line) : std::nullopt;
}

void CalendarObject::PutRaw(std::string_view name, std::string_view value) {
  if (value.empty()) return Remove(name);
  if (const auto line = Find(name)) {
    lines_.SetRawValue(*line, value);
    NoteChange();
  } else {
    Add(std::string(name) + ":" + std::string(value));
  }
}

void CalendarObject::PutText(std::string_view name, StringView text) {
  // Another form of the text that was, and how it was written.
  const auto line = Find(name);
  for (const char* stale : {"ALTREP", "ENCODING", "CHARSET"}) {
    if (line && lines_.HasParameters(*line)) lines_.SetParameter(*line, stale, "");
  }
  PutRaw(name, WriteText(text));
}

void CalendarObject::PutTime(std::string_view name, Date local) {
  PutTimeValue(name, FormatUtc(local), false);
}

void CalendarObject::PutDay(std::string_view name, Date local) {
  PutTimeValue(name, FormatDay(local), true);
}

void CalendarObject::PutTimeValue(std::string_view name, std::string_view value, bool is_day) {
  const auto line = Find(name);
  if (!line) {
    Add(std::string(name) + (is_day ? ";VALUE=DATE:" : ":") + std::string(value));
    return;
  }
  if (is_day || lines_.HasParameters(*line)) {
    lines_.SetParameter(*line, "TZID", "");
    lines_.SetParameter(*line, "VALUE", is_day ? "DATE" : "");
  }
  lines_.SetRawValue(*line, value);
  NoteChange();
}

void CalendarObject::Remove(std::string_view name) {
  bool removed = false;
  for (auto line = Find(name); line; line = Find(name)) {
    lines_.Remove(*line);
    removed = true;
    FindItem();
  }
  if (removed) NoteChange();
}

void CalendarObject::PutField(const UserField& field) {
  const std::string before = lines_.text();
  Component where = FindUserField(lines_, item_, field.name) ? item_ : Properties();
  PutUserField(lines_, where, field);
  if (lines_.text() != before) NoteChange();
}

void CalendarObject::RemoveField(StringView name) {
  if (!FindUserField(lines_, item_, name)) return;
  RemoveUserField(lines_, item_, name);
  NoteChange();
}

void CalendarObject::Add(std::string_view line) {
  lines_.Insert(Properties().end, line);
  NoteChange();
}

// The item up to its first alarm.
Component CalendarObject::Properties() const {
  size_t end = item_.begin + 1;
  while (end < item_.end && !lines_.Is(end, "BEGIN") && !lines_.Is(end, "END")) ++end;
  return {item_.begin, end};
}

void CalendarObject::NoteChange() {
  FindItem();
  if (const auto line = Find("LAST-MODIFIED")) {
    lines_.SetRawValue(*line, UtcNow());
    FindItem();
  }
}

}  // namespace kestrelon::desktop
