#include "desktop/outlook/formats/CalendarProperties.h"

#include <charconv>

#include "automation/AutomationError.h"
#include "desktop/locale/DateText.h"

namespace kestrelon::desktop {
namespace {

int32_t NumberOf(const std::string& text) {
  int32_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

// OlImportance from 1 (highest) to 9 (lowest); 0 is "undefined".
int32_t ReadImportance(const CalendarObject& object) {
  const int32_t priority = NumberOf(object.Raw("PRIORITY"));
  if (priority >= 1 && priority <= 4) return 2;
  return priority >= 6 && priority <= 9 ? 0 : 1;
}

// OlSensitivity. A class that is unknown is treated as private.
int32_t ReadSensitivity(const CalendarObject& object) {
  const std::string word = UpperAscii(object.Raw("CLASS"));
  if (word.empty() || word == "PUBLIC") return 0;
  return word == "X-PERSONAL" ? 1 : word == "CONFIDENTIAL" ? 3 : 2;
}

String ReadCategories(const CalendarObject& object) {
  String joined;
  const ContentLines& lines = object.lines();
  for (auto line = object.Find("CATEGORIES"); line;
       line = lines.Find("CATEGORIES", object.item(), *line + 1)) {
    for (const std::string& piece : SplitEscaped(lines.RawValue(*line), ',')) {
      const String category = Trim(ReadCalendarText(piece));
      if (category.empty()) continue;
      if (!joined.empty()) joined += u", ";
      joined += category;
    }
  }
  return joined;
}

void WriteCategories(CalendarObject& object, const String& joined) {
  std::string list;
  for (const String& piece : Split(joined, u",")) {
    const String category = Trim(piece);
    if (category.empty()) continue;
    if (!list.empty()) list += ',';
    list += WriteText(category);
  }
  const auto first = object.Find("CATEGORIES");
  const bool has_several =
      first && object.lines().Find("CATEGORIES", object.item(), *first + 1).has_value();
  if (has_several) object.Remove("CATEGORIES");
  object.PutRaw("CATEGORIES", list);
}

int32_t InRange(const Value& value, int32_t last) {
  const int32_t number = value.ToLong();
  if (number < 0 || number > last) throw AutomationError(kInvalidProcedureCall);
  return number;
}

}  // namespace

Date DateOf(const Value& value) {
  return ToWholeSeconds(value.IsString() ? DateFromUserText(value.AsString()) : value.ToDate());
}

CalendarProperty TextProperty(StringView name, const char* line) {
  return {name, [line](const CalendarObject& object) -> Value { return object.Text(line); },
          [line](CalendarObject& object, const Value& value) {
            const String text = value.ToText();
            if (text != object.Text(line)) object.PutText(line, text);
          }};
}

CalendarProperty BodyProperty() {
  CalendarProperty body = TextProperty(u"Body", "DESCRIPTION");
  body.put = [put = body.put](CalendarObject& object, const Value& value) {
    if (value.ToText() == object.Text("DESCRIPTION")) return;
    put(object, value);
    object.Remove("X-ALT-DESC");
  };
  return body;
}

CalendarProperty FlagProperty(StringView name, const char* line) {
  const auto get = [line](const CalendarObject& object) {
    return EqualAscii(object.Raw(line), "TRUE");
  };
  return {name, get, [line, get](CalendarObject& object, const Value& value) {
            const bool flag = value.ToBoolean();
            if (flag != get(object)) object.PutRaw(line, flag ? "TRUE" : "");
          }};
}

CalendarProperty NumberProperty(StringView name, const char* line) {
  const auto get = [line](const CalendarObject& object) { return NumberOf(object.Raw(line)); };
  return {name, get, [line, get](CalendarObject& object, const Value& value) {
            const int32_t number = value.ToLong();
            if (number != get(object)) {
              object.PutRaw(line, number == 0 ? "" : std::to_string(number));
            }
          }};
}

CalendarProperty TimeProperty(StringView name, const char* line) {
  return {name,
          [line](const CalendarObject& object) -> Value {
            const auto time = object.Time(line);
            return time ? time->local : kNoDate;
          },
          {}};
}

CalendarProperty ImportanceProperty() {
  return {u"Importance", ReadImportance, [](CalendarObject& object, const Value& value) {
            constexpr const char* kPriorities[] = {"9", "", "1"};
            const int32_t importance = InRange(value, 2);
            if (importance != ReadImportance(object)) {
              object.PutRaw("PRIORITY", kPriorities[importance]);
            }
          }};
}

CalendarProperty SensitivityProperty() {
  return {u"Sensitivity", ReadSensitivity, [](CalendarObject& object, const Value& value) {
            constexpr const char* kClasses[] = {"", "X-PERSONAL", "PRIVATE", "CONFIDENTIAL"};
            const int32_t sensitivity = InRange(value, 3);
            if (sensitivity != ReadSensitivity(object)) {
              object.PutRaw("CLASS", kClasses[sensitivity]);
            }
          }};
}

CalendarProperty CategoriesProperty() {
  return {u"Categories",
          [](const CalendarObject& object) -> Value { return ReadCategories(object); },
          [](CalendarObject& object, const Value& value) {
            const String categories = value.ToText();
            if (categories != ReadCategories(object)) WriteCategories(object, categories);
          }};
}

CalendarProperty ReminderSetProperty() {
  return {u"ReminderSet",
          [](const CalendarObject& object) -> Value {
            return object.lines().FindComponent("VALARM", object.item()).has_value();
          },
          {}};
}

CalendarProperty IsRecurringProperty() {
  return {u"IsRecurring",
          [](const CalendarObject& object) -> Value {
            return object.Has("RRULE") || object.Has("RDATE");
          },
          {}};
}

}  // namespace kestrelon::desktop
