#include "automation/AutomationError.h"
#include "desktop/outlook/formats/CalendarProperties.h"

namespace kestrelon::desktop {
namespace {

// OlTaskStatus.
enum Status : int32_t {
  kNotStarted = 0,
  kInProgress = 1,
  kComplete = 2,
  kWaiting = 3,
  kDeferred = 4
};

// What the standard has no word for; it counts as long as STATUS says that there is work to do.
constexpr const char* kOurStatus = "X-KESTRELON-STATUS";

int32_t WrittenPercent(const CalendarObject& task) {
  const std::string text = task.Raw("PERCENT-COMPLETE");
  const bool is_number = !text.empty() && text.size() <= 3 &&
                         text.find_first_not_of("0123456789") == std::string::npos;
  const int32_t percent = is_number ? std::stoi(text) : 0;
  return percent > 100 ? 0 : percent;
}

int32_t ReadStatus(const CalendarObject& task) {
  const std::string status = UpperAscii(task.Raw("STATUS"));
  if (status == "COMPLETED") return kComplete;
  if (status == "CANCELLED") return kDeferred;
  if (status == "IN-PROCESS") return kInProgress;
  const bool is_complete = task.Has("COMPLETED") || WrittenPercent(task) == 100;
  if (status != "NEEDS-ACTION" && is_complete) return kComplete;
  const std::string ours = UpperAscii(task.Raw(kOurStatus));
  if (ours == "WAITING") return kWaiting;
  if (ours == "DEFERRED") return kDeferred;
  return WrittenPercent(task) > 0 ? kInProgress : kNotStarted;
}

int32_t ReadPercent(const CalendarObject& task) {
  if (ReadStatus(task) == kComplete) return 100;
  const int32_t percent = WrittenPercent(task);
  return percent == 100 ? 0 : percent;
}

// What a program shows that lists the status, the percentage or the date alone must agree.
void PutState(CalendarObject& task, int32_t status, int32_t percent) {
  constexpr const char* kWords[] = {"NEEDS-ACTION", "IN-PROCESS", "COMPLETED", "NEEDS-ACTION",
                                    "NEEDS-ACTION"};
  task.PutRaw("STATUS", kWords[status]);
  task.PutRaw(kOurStatus, status == kWaiting ? "WAITING" : status == kDeferred ? "DEFERRED" : "");
  task.PutRaw("PERCENT-COMPLETE", percent == 0 ? "" : std::to_string(percent));
  if (status != kComplete) task.Remove("COMPLETED");
}

void Complete(CalendarObject& task, const std::optional<Date>& when) {
  if (ReadStatus(task) != kComplete || WrittenPercent(task) != 100) {
    PutState(task, kComplete, 100);
  }
  if (when) {
    task.PutTime("COMPLETED", *when);
  } else if (!task.Time("COMPLETED")) {
    task.PutRaw("COMPLETED", UtcNow());
  }
}

void PutStatus(CalendarObject& task, const Value& value) {
  const int32_t status = value.ToLong();
  if (status < kNotStarted || status > kDeferred) throw AutomationError(kInvalidProcedureCall);
  const int32_t old = ReadStatus(task);
  if (status == old) return;
  if (status == kComplete) return Complete(task, {});
  PutState(task, status, status == kNotStarted || old == kComplete ? 0 : ReadPercent(task));
}

void PutComplete(CalendarObject& task, const Value& value) {
  const bool complete = value.ToBoolean();
  if (complete == (ReadStatus(task) == kComplete)) return;
  if (complete) return Complete(task, {});
  PutState(task, kNotStarted, 0);
}

void PutPercent(CalendarObject& task, const Value& value) {
  const int32_t percent = value.ToLong();
  if (percent < 0 || percent > 100) throw AutomationError(kInvalidProcedureCall);
  if (percent == ReadPercent(task)) return;
  if (percent == 100) return Complete(task, {});
  const int32_t status = ReadStatus(task);
  const bool is_held = status == kWaiting || status == kDeferred;
  PutState(task, is_held ? status : percent == 0 ? kNotStarted : kInProgress, percent);
}

Date ReadDateCompleted(const CalendarObject& task) {
  const auto time = task.Time("COMPLETED");
  return time && ReadStatus(task) == kComplete ? time->local : kNoDate;
}

void PutDateCompleted(CalendarObject& task, const Value& value) {
  const Date date = DateOf(value);
  if (date == ReadDateCompleted(task)) return;
  if (date == kNoDate) return PutState(task, kNotStarted, 0);
  Complete(task, date);
}

Date ReadDay(const CalendarObject& task, const char* line) {
  const auto time = task.Time(line);
  return time ? DayOf(time->local) : kNoDate;
}

Date ReadDueDate(const CalendarObject& task) {
  if (task.Has("DUE")) return ReadDay(task, "DUE");
  const auto start = task.Time("DTSTART");
  const auto duration = ReadDuration(task.Raw("DURATION"));
  const auto due = start && duration ? AddDuration(start->local, *duration) : std::nullopt;
  return due ? DayOf(*due) : kNoDate;
}

// Start and end of a task are both days or both times; a time here is the day's midnight.
void WriteDay(CalendarObject& task, const char* line, const char* other, Date day) {
  const auto other_time = task.Time(other);
  if (day == kNoDate) {
    task.Remove(line);
  } else if (other_time && !other_time->is_day) {
    task.PutTime(line, day);
  } else {
    task.PutDay(line, day);
  }
}

void PutDueDate(CalendarObject& task, const Value& value) {
  const Date day = DayOf(DateOf(value));
  if (day == ReadDueDate(task)) return;
  task.Remove("DURATION");
  WriteDay(task, "DUE", "DTSTART", day);
}

void PutStartDate(CalendarObject& task, const Value& value) {
  const Date day = DayOf(DateOf(value));
  if (day == ReadDay(task, "DTSTART")) return;
  // A duration means nothing without a start.
  const Date due = ReadDueDate(task);
  if (task.Has("DURATION")) {
    task.Remove("DURATION");
    WriteDay(task, "DUE", "DTSTART", due);
  }
  WriteDay(task, "DTSTART", "DUE", day);
}

}  // namespace

const std::vector<CalendarProperty>& TaskProperties() {
  using Object = CalendarObject;
  static const std::vector<CalendarProperty> properties = {
      TextProperty(u"Subject", "SUMMARY"),
      {u"DueDate", [](const Object& task) -> Value { return ReadDueDate(task); }, PutDueDate},
      {u"StartDate", [](const Object& task) -> Value { return ReadDay(task, "DTSTART"); },
       PutStartDate},
      {u"Complete", [](const Object& task) -> Value { return ReadStatus(task) == kComplete; },
       PutComplete},
      {u"DateCompleted", [](const Object& task) -> Value { return ReadDateCompleted(task); },
       PutDateCompleted},
      {u"PercentComplete", ReadPercent, PutPercent},
      {u"Status", ReadStatus, PutStatus},
      ImportanceProperty(),
      SensitivityProperty(),
      CategoriesProperty(),
      TextProperty(u"Companies", "X-KESTRELON-COMPANIES"),
      TextProperty(u"BillingInformation", "X-KESTRELON-BILLING-INFORMATION"),
      TextProperty(u"Owner", "X-KESTRELON-OWNER"),
      FlagProperty(u"TeamTask", "X-KESTRELON-TEAM-TASK"),
      NumberProperty(u"ActualWork", "X-KESTRELON-ACTUAL-WORK"),
      NumberProperty(u"TotalWork", "X-KESTRELON-TOTAL-WORK"),
      IsRecurringProperty(),
      ReminderSetProperty(),
      TimeProperty(u"CreationTime", "CREATED"),
      TimeProperty(u"LastModificationTime", "LAST-MODIFIED"),
      BodyProperty(),
  };
  return properties;
}

}  // namespace kestrelon::desktop
