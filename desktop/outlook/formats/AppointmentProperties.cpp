#include <cmath>

#include "automation/AutomationError.h"
#include "desktop/outlook/formats/CalendarProperties.h"

namespace kestrelon::desktop {
namespace {

constexpr double kMinutesPerDay = 1440;

[[noreturn]] void Refuse(const char16_t* why) { throw AutomationError(kInvalidProcedureCall, why); }

// OlBusyStatus as the words that calendar programs have agreed on.
constexpr const char* kBusyStatus = "X-MICROSOFT-CDO-BUSYSTATUS";
constexpr const char* kBusyWords[] = {"FREE", "TENTATIVE", "BUSY", "OOF", "WORKINGELSEWHERE"};
constexpr int32_t kFree = 0;
constexpr int32_t kTentative = 1;
constexpr int32_t kBusy = 2;

bool IsAllDay(const CalendarObject& event) {
  const auto start = event.Time("DTSTART");
  return start && start->is_day;
}

Date ReadStart(const CalendarObject& event) {
  const auto start = event.Time("DTSTART");
  return start ? start->local : kNoDate;
}

Date ReadEnd(const CalendarObject& event) {
  if (const auto end = event.Time("DTEND")) return end->local;
  const auto start = event.Time("DTSTART");
  if (!start) return kNoDate;
  if (const auto duration = ReadDuration(event.Raw("DURATION"))) {
    return AddDuration(start->local, *duration).value_or(kNoDate);
  }
  // Without an end, a day lasts a day and a time no time.
  return AddDuration(start->local, {start->is_day ? 1 : 0, 0}).value_or(kNoDate);
}

// Whole days from midnight to midnight where the appointment has no times of day.
Date FirstMidnightFrom(Date date) {
  const Date day = DayOf(date);
  return day == date ? date : AddDuration(day, {1, 0}).value_or(day);
}

void WriteTime(CalendarObject& event, const char* line, Date time, bool is_day) {
  if (is_day) {
    event.PutDay(line, time);
  } else {
    event.PutTime(line, time);
  }
}

void WriteEnd(CalendarObject& event, Date end, bool is_day) {
  event.Remove("DURATION");
  WriteTime(event, "DTEND", end, is_day);
}

double LengthOf(const CalendarObject& event) {
  const Date start = ReadStart(event);
  const Date end = ReadEnd(event);
  return start == kNoDate || end == kNoDate ? 0 : end.days - start.days;
}

// The end moves with the start.
void PutStart(CalendarObject& event, const Value& value) {
  Date start = DateOf(value);
  const bool is_day = IsAllDay(event);
  if (is_day) start = DayOf(start);
  if (start == ReadStart(event)) return;
  if (start == kNoDate) Refuse(u"An appointment must have a start");
  const double length = LengthOf(event);
  WriteTime(event, "DTSTART", start, is_day);
  if (event.Has("DTEND")) WriteEnd(event, ToWholeSeconds(Date{start.days + length}), is_day);
}

void PutEnd(CalendarObject& event, const Value& value) {
  Date end = DateOf(value);
  const bool is_day = IsAllDay(event);
  if (is_day) end = FirstMidnightFrom(end);
  if (end == ReadEnd(event)) return;
  if (end == kNoDate) {
    event.Remove("DTEND");
    event.Remove("DURATION");
    return;
  }
  const Date start = ReadStart(event);
  if (start == kNoDate || end.days < start.days || (is_day && end == start)) {
    Refuse(u"An appointment cannot end before it starts");
  }
  WriteEnd(event, end, is_day);
}

int64_t ReadDurationInMinutes(const CalendarObject& event) {
  return std::llround(LengthOf(event) * kMinutesPerDay);
}

void PutDuration(CalendarObject& event, const Value& value) {
  const int32_t minutes = value.ToLong();
  if (minutes == ReadDurationInMinutes(event)) return;
  const Date start = ReadStart(event);
  if (minutes < 0 || start == kNoDate) Refuse(u"An appointment cannot end before it starts");
  PutEnd(event, Date{start.days + minutes / kMinutesPerDay});
}

void PutAllDay(CalendarObject& event, const Value& value) {
  const bool all_day = value.ToBoolean();
  if (all_day == IsAllDay(event)) return;
  const Date start = ReadStart(event);
  if (start == kNoDate) Refuse(u"An appointment must have a start");
  Date end = ReadEnd(event);
  if (end == kNoDate) end = start;
  if (!all_day) {
    event.PutTime("DTSTART", start);
    return WriteEnd(event, end, false);
  }
  const Date day = DayOf(start);
  end = FirstMidnightFrom(end);
  if (end.days <= day.days) end = AddDuration(day, {1, 0}).value_or(day);
  event.PutDay("DTSTART", day);
  WriteEnd(event, end, true);
}

int32_t ReadBusyStatus(const CalendarObject& event) {
  const std::string word = UpperAscii(event.Raw(kBusyStatus));
  for (int32_t status = 0; status < 5; ++status) {
    if (word == kBusyWords[status]) return status;
  }
  if (EqualAscii(event.Raw("TRANSP"), "TRANSPARENT")) return kFree;
  return EqualAscii(event.Raw("STATUS"), "TENTATIVE") ? kTentative : kBusy;
}

void PutBusyStatus(CalendarObject& event, const Value& value) {
  const int32_t status = value.ToLong();
  if (status < 0 || status > 4) throw AutomationError(kInvalidProcedureCall);
  if (status == ReadBusyStatus(event)) return;
  event.PutRaw("TRANSP", status == kFree ? "TRANSPARENT" : "OPAQUE");
  const bool is_said = status == kFree || status == kBusy;
  event.PutRaw(kBusyStatus, is_said ? "" : kBusyWords[status]);
  // A tentative meeting would still read as such.
  if (status != ReadBusyStatus(event)) event.PutRaw(kBusyStatus, kBusyWords[status]);
}

// The name of a person, else the address.
String NameOf(const ContentLines& lines, size_t line) {
  const std::vector<Parameter> parameters = lines.Parameters(line);
  const Parameter* const name = FindParameter(parameters, "CN");
  if (name != nullptr && !name->values.front().empty()) {
    return ReadCalendarText(name->values.front());
  }
  const std::string address = lines.RawValue(line);
  const bool is_mail = EqualAscii(address.substr(0, 7), "mailto:");
  return FromUtf8(is_mail ? address.substr(7) : address);
}

String ReadOrganizer(const CalendarObject& event) {
  const auto line = event.Find("ORGANIZER");
  return line ? NameOf(event.lines(), *line) : String();
}

String ReadRequiredAttendees(const CalendarObject& event) {
  String joined;
  const ContentLines& lines = event.lines();
  for (auto line = event.Find("ATTENDEE"); line;
       line = lines.Find("ATTENDEE", event.item(), *line + 1)) {
    const std::vector<Parameter> parameters = lines.Parameters(*line);
    const Parameter* const role = FindParameter(parameters, "ROLE");
    const std::string word = role == nullptr ? "" : UpperAscii(role->values.front());
    if (word == "OPT-PARTICIPANT" || word == "NON-PARTICIPANT") continue;
    if (!joined.empty()) joined += u"; ";
    joined += NameOf(lines, *line);
  }
  return joined;
}

}  // namespace

const std::vector<CalendarProperty>& AppointmentProperties() {
  using Object = CalendarObject;
  static const std::vector<CalendarProperty> properties = {
      TextProperty(u"Subject", "SUMMARY"),
      TextProperty(u"Location", "LOCATION"),
      {u"Start", [](const Object& event) -> Value { return ReadStart(event); }, PutStart},
      {u"End", [](const Object& event) -> Value { return ReadEnd(event); }, PutEnd},
      {u"Duration", ReadDurationInMinutes, PutDuration},
      {u"AllDayEvent", IsAllDay, PutAllDay},
      {u"BusyStatus", ReadBusyStatus, PutBusyStatus},
      ImportanceProperty(),
      SensitivityProperty(),
      CategoriesProperty(),
      {u"Organizer", [](const Object& event) -> Value { return ReadOrganizer(event); }, {}},
      {u"RequiredAttendees",
       [](const Object& event) -> Value { return ReadRequiredAttendees(event); },
       {}},
      IsRecurringProperty(),
      ReminderSetProperty(),
      TimeProperty(u"CreationTime", "CREATED"),
      TimeProperty(u"LastModificationTime", "LAST-MODIFIED"),
      BodyProperty(),
  };
  return properties;
}

}  // namespace kestrelon::desktop
