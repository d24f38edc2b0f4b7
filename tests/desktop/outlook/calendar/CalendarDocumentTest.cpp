// Appointments and tasks as other programs write them, and what becomes of their files.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

#include "desktop/outlook/formats/CalendarDocument.h"
#include "tests/desktop/outlook/Properties.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

std::string InCalendar(const std::string& lines) {
  return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//x//y\r\n" + lines + "END:VCALENDAR\r\n";
}

std::string Event(const std::string& lines) {
  return InCalendar("BEGIN:VEVENT\r\nUID:e-1\r\n" + lines + "END:VEVENT\r\n");
}

std::string Task(const std::string& lines) {
  return InCalendar("BEGIN:VTODO\r\nUID:t-1\r\n" + lines + "END:VTODO\r\n");
}

// A zone of its own rules behind a name that says otherwise.
const std::string kOddZone =
    "BEGIN:VTIMEZONE\r\nTZID:Europe/London\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\n"
    "TZOFFSETFROM:+0545\r\nTZOFFSETTO:+0545\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";

class CalendarDocumentTest : public testing::Test {
 protected:
  CalendarDocumentTest() {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
  }
};

TEST_F(CalendarDocumentTest, ReadsTimesAsTheUsersLocalTime) {
  const struct {
    std::string lines;
    const char* start;
    const char* end;
  } cases[] = {
      {"DTSTART:20261121T100000\r\nDURATION:PT1H30M\r\n", "2026-11-21 10:00:00",
       "2026-11-21 11:30:00"},
      {"DTSTART;TZID=America/New_York:20261121T100000\r\n", "2026-11-21 16:00:00",
       "2026-11-21 16:00:00"},
      {"DTSTART;TZID=\"/example.com/2026/US/Eastern\":20260721T1000\r\n", "2026-07-21 16:00:00",
       "2026-07-21 16:00:00"},
      {"DTSTART;TZID=Nowhere:20261121T100000\r\n", "2026-11-21 10:00:00", "2026-11-21 10:00:00"},
      {"DTSTART;VALUE=DATE:20261121\r\n", "2026-11-21", "2026-11-22"},
      {"DTSTART:20260329\r\n T000000\r\nDURATION:P1DT1H\r\n", "2026-03-29", "2026-03-30 01:00:00"},
      {"DTSTART:2026-11-21T10:00:00Z\r\n", "2026-11-21 11:00:00", "2026-11-21 11:00:00"},
      {"DTSTART:20261321T100000Z\r\n", "4501-01-01", "4501-01-01"},
      {"DTSTART:\xFFnoon\r\nDTEND:20261121T100000\r\n", "4501-01-01", "2026-11-21 10:00:00"},
  };
  for (const auto& example : cases) {
    const auto event = ReadCalendarItem(Event(example.lines));
    EXPECT_EQ(Show(*event, u"start"), example.start) << example.lines;
    EXPECT_EQ(Show(*event, u"end"), example.end) << example.lines;
  }
  const auto event = ReadCalendarItem(InCalendar(
      kOddZone + "BEGIN:VEVENT\r\nDTSTART;TZID=Europe/London:20261121T100000\r\nEND:VEVENT\r\n"));
  EXPECT_EQ(Show(*event, u"start"), "2026-11-21 05:15:00");
}

// The first of two equal hours; one that is left out counts on from the hour before it.
TEST_F(CalendarDocumentTest, ReadsTheHoursInWhichClocksChange) {
  const std::string described =
      "BEGIN:VTIMEZONE\r\nTZID:America/New_York\r\nBEGIN:DAYLIGHT\r\nDTSTART:20070311T020000\r\n"
      "RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=2SU\r\nTZOFFSETFROM:-0500\r\nTZOFFSETTO:-0400\r\n"
      "END:DAYLIGHT\r\nBEGIN:STANDARD\r\nDTSTART:20071104T020000\r\n"
      "RRULE:FREQ=YEARLY;BYMONTH=11;BYDAY=1SU\r\nTZOFFSETFROM:-0400\r\nTZOFFSETTO:-0500\r\n"
      "END:STANDARD\r\nEND:VTIMEZONE\r\n";
  for (const std::string& zone : {std::string(), described}) {
    for (const auto& [time, start] : {std::pair("20261101T003000", "2026-11-01 05:30:00"),
                                      std::pair("20261101T013000", "2026-11-01 06:30:00"),
                                      std::pair("20261101T023000", "2026-11-01 08:30:00"),
                                      std::pair("20260308T023000", "2026-03-08 08:30:00"),
                                      std::pair("20260308T033000", "2026-03-08 08:30:00")}) {
      const auto event = ReadCalendarItem(
          InCalendar(zone + "BEGIN:VEVENT\r\nDTSTART;TZID=America/New_York:" + std::string(time) +
                     "\r\nEND:VEVENT\r\n"));
      EXPECT_EQ(Show(*event, u"start"), start) << time << zone;
    }
  }
}

// The states that programs write, complete or half so.
TEST_F(CalendarDocumentTest, ReadsTheStateOfATask) {
  const struct {
    const char* lines;
    const char* state;  // Complete, Status, PercentComplete
    const char* completed;
  } cases[] = {
      {"", "False 0 0", "4501-01-01"},
      {"STATUS:IN-PROCESS\r\nPERCENT-COMPLETE:40\r\n", "False 1 40", "4501-01-01"},
      {"COMPLETED:20261121T100000Z\r\n", "True 2 100", "2026-11-21 11:00:00"},
      {"PERCENT-COMPLETE:100\r\n", "True 2 100", "4501-01-01"},
      {"STATUS:COMPLETED\r\nPERCENT-COMPLETE:junk\r\n", "True 2 100", "4501-01-01"},
      {"STATUS:NEEDS-ACTION\r\nCOMPLETED:20261121T100000Z\r\n", "False 0 0", "4501-01-01"},
      {"STATUS:NEEDS-ACTION\r\nX-KESTRELON-STATUS:WAITING\r\n", "False 3 0", "4501-01-01"},
      {"STATUS:CANCELLED\r\n", "False 4 0", "4501-01-01"},
  };
  for (const auto& example : cases) {
    const auto task = ReadCalendarItem(Task(example.lines));
    const std::string state = Show(*task, u"complete") + " " + Show(*task, u"status") + " " +
                              Show(*task, u"percentcomplete");
    EXPECT_EQ(state, example.state) << example.lines;
    EXPECT_EQ(Show(*task, u"datecompleted"), example.completed) << example.lines;
  }
}

TEST_F(CalendarDocumentTest, KeepsTheStateOfATaskConsistent) {
  const auto task = NewTask();
  const auto state = [&task] {
    const auto again = ReadCalendarItem(task->content());
    return Show(*again, u"complete") + " " + Show(*again, u"status") + " " +
           Show(*again, u"percentcomplete") +
           (again->Get(u"datecompleted").AsDate() == kNoDate ? "" : " dated");
  };
  const struct {
    StringView property;
    Value value;
    const char* state;
  } steps[] = {
      {u"complete", true, "True 2 100 dated"},
      {u"complete", false, "False 0 0"},
      {u"percentcomplete", 30, "False 1 30"},
      {u"status", 3, "False 3 30"},
      {u"percentcomplete", 50, "False 3 50"},
      {u"status", 2, "True 2 100 dated"},
      {u"status", 4, "False 4 0"},
      {u"percentcomplete", 100, "True 2 100 dated"},
      {u"percentcomplete", 0, "False 0 0"},
      {u"datecompleted", u"2026-11-20", "True 2 100 dated"},
      {u"datecompleted", kNoDate, "False 0 0"},
  };
  for (const auto& step : steps) {
    task->Put(step.property, step.value);
    EXPECT_EQ(state(), step.state) << ToUtf8(step.property);
  }
}

const std::string kSeries =
    "begin:vcalendar\nVERSION:2.0\n" + kOddZone +
    "X-ODD\nBEGIN:VEVENT\nRECURRENCE-ID:20261122T090000Z\nUID:s\nSUMMARY:moved\nEND:VEVENT\n"
    "BEGIN:VEVENT\nUID:s\nCREATED:20250101T000000Z\nDTSTART;TZID=Europe/"
    "London;X-P=1:20261121T100000\n"
    "DTEND;TZID=Europe/London:20261121T110000\nRRULE:FREQ=DAILY\n"
    "SUMMARY;LANGUAGE=de:A lon\n ger\n\t  one\\, folded\n"
    "DESCRIPTION;ALTREP=\"cid:1\":old\nX-ALT-DESC;FMTTYPE=text/html:<p>old\n"
    "ATTENDEE;CN=\"Lee, Ann\";ROLE=REQ-PARTICIPANT:mailto:a@example.com\n"
    "ATTENDEE;ROLE=OPT-PARTICIPANT:mailto:o@example.com\nATTENDEE:MAILTO:b@example.com\n"
    "ORGANIZER:mailto:boss@example.com\nX-GARBAGE:\xE4\xFF\nLOCATION:B\xE4r\n"
    "CATEGORIES:one,two\\;2\nCATEGORIES:three\nCLASS:X-SECRET\nPRIORITY:9\nTRANSP:TRANSPARENT\n"
    "BEGIN:VALARM\nTRIGGER:-PT15M\nDESCRIPTION:alarm\nEND:VALARM\nEND:VEVENT\nend:vcalendar\n";

TEST_F(CalendarDocumentTest, ReadsTheSeriesOfAnItemWithExceptions) {
  const auto event = ReadCalendarItem(kSeries);
  ExpectProperties(*event,
                   u"subject=A longer  one, folded | start=2026-11-21 05:15:00 | duration=60 | "
                   u"alldayevent=False | requiredattendees=Lee, Ann; b@example.com | "
                   u"organizer=boss@example.com | location=Bär | categories=one, two;2, three | "
                   u"sensitivity=2 | importance=0 | busystatus=0 | isrecurring=True | "
                   u"reminderset=True | body=old");
  EXPECT_EQ(event->Uid(), "s");
  EXPECT_EQ(NumberOf([&] { event->Put(u"organizer", u"x"); }), 440);
  EXPECT_EQ(NumberOf([&] { event->Put(u"firstname", u"x"); }), kMemberNotFound);
  EXPECT_EQ(NumberOf([&] { event->Put(u"start", u"soon"); }), kTypeMismatch);
  EXPECT_EQ(NumberOf([&] { event->Put(u"end", u"2026-11-20"); }), kInvalidProcedureCall);
  EXPECT_EQ(event->content(), kSeries);
}

// One put and the lines that it may touch, as (from, to); all else stays byte for byte.
TEST_F(CalendarDocumentTest, ChangesTheLinesOfThePropertyAlone) {
  const std::string last = "TRANSP:TRANSPARENT\n";
  const struct {
    StringView property;
    Value value;
    std::vector<std::pair<std::string, std::string>> changes;
  } cases[] = {
      {u"subject", u"A longer  one, folded", {}},
      {u"start", u"2026-11-21 05:15:00", {}},
      {u"subject", u"a;\r\nb", {{":A lon\n ger\n\t  one\\, folded\n", ":a\\;\\nb\n"}}},
      {u"importance", 1, {{"PRIORITY:9\n", ""}}},
      {u"sensitivity", 3, {{"CLASS:X-SECRET", "CLASS:CONFIDENTIAL"}}},
      {u"body",
       u"new",
       {{";ALTREP=\"cid:1\":old\nX-ALT-DESC;FMTTYPE=text/html:<p>old\n", ":new\n"}}},
      {u"categories",
       u"one",
       {{"CATEGORIES:one,two\\;2\nCATEGORIES:three\n", ""}, {last, last + "CATEGORIES:one\n"}}},
      {u"busystatus", 3, {{last, "TRANSP:OPAQUE\nX-MICROSOFT-CDO-BUSYSTATUS:OOF\n"}}},
      {u"start",
       u"21 Nov 2026 6:15 AM",
       {{"DTSTART;TZID=Europe/London;X-P=1:20261121T100000", "DTSTART;X-P=1:20261121T051500Z"},
        {"DTEND;TZID=Europe/London:20261121T110000", "DTEND:20261121T061500Z"}}},
      {u"alldayevent",
       true,
       {{"DTSTART;TZID=Europe/London;X-P=1:20261121T100000", "DTSTART;X-P=1;VALUE=DATE:20261121"},
        {"DTEND;TZID=Europe/London:20261121T110000", "DTEND;VALUE=DATE:20261122"}}},
  };
  for (const auto& example : cases) {
    const auto event = ReadCalendarItem(kSeries);
    event->Put(example.property, example.value);
    std::string expected = kSeries;
    for (const auto& [from, to] : example.changes) {
      expected.replace(expected.rfind(from), from.size(), to);
    }
    EXPECT_EQ(event->content(), expected) << ToUtf8(example.property);
  }
  const auto event = ReadCalendarItem(kSeries);
  event->PutUserField({u"guid", 1, u"a:b"});
  std::string expected = kSeries;
  expected.replace(expected.find(last), last.size(),
                   last + "X-KESTRELON-PROPERTY;X-NAME=guid;X-TYPE=1:a:b\n");
  EXPECT_EQ(event->content(), expected);
  event->RemoveUserField(u"GUID");
  EXPECT_EQ(event->content(), kSeries);
}

TEST_F(CalendarDocumentTest, WritesDaysOfTasksInTheKindThatTheyHave) {
  const struct {
    const char* lines;
    StringView property;
    const char* changed;
  } cases[] = {
      {"", u"duedate", "DUE;VALUE=DATE:20261123\r\n"},
      {"DUE:20261121T170000Z\r\n", u"duedate", "DUE;VALUE=DATE:20261123\r\n"},
      {"DUE:20261123T170000Z\r\n", u"duedate", "DUE:20261123T170000Z\r\n"},
      {"DTSTART:20261121T170000Z\r\nDURATION:P1D\r\n", u"duedate",
       "DTSTART:20261121T170000Z\r\nDUE:20261122T230000Z\r\n"},
      {"DTSTART:20261121T170000Z\r\nDURATION:P1D\r\n", u"startdate",
       "DTSTART:20261122T230000Z\r\nDUE:20261121T230000Z\r\n"},
  };
  for (const auto& example : cases) {
    const auto task = ReadCalendarItem(Task(example.lines));
    task->Put(example.property, u"2026-11-23 08:00:00");
    EXPECT_EQ(task->content(), Task(example.changed)) << example.lines;
    EXPECT_EQ(Show(*task, example.property), "2026-11-23");
    task->Put(example.property, kNoDate);
    EXPECT_EQ(Show(*task, example.property), "4501-01-01");
  }
}

TEST_F(CalendarDocumentTest, ReadsBackWhatWasPut) {
  std::mt19937 random(1);
  const auto pick = [&random](int count) { return static_cast<int>(random() % count); };
  const auto text = [&pick] {
    constexpr char16_t kOdd[] = {u'a', u' ', u',', u';', u'\\', u'"', u':', u'n', 0xE4, 0x20AC};
    String made = u"x";
    for (int i = pick(120); i > 0; --i) made += kOdd[pick(std::size(kOdd))];
    return pick(4) == 0 ? made + u"\r\n" + made : made;
  };
  const std::vector<StringView> texts = {u"subject", u"body", u"companies", u"owner"};
  for (int round = 0; round < 200; ++round) {
    const auto task = pick(2) == 0 ? NewTask() : ReadCalendarItem(Task("BEGIN:VALARM\r\n"));
    std::vector<std::pair<StringView, Value>> puts;
    for (StringView property : texts) puts.push_back({property, text()});
    puts.push_back({u"duedate", Date{40000.0 + pick(20000)}});
    puts.push_back({u"importance", pick(3)});
    puts.push_back({u"sensitivity", pick(4)});
    puts.push_back({u"teamtask", pick(2) == 1});
    puts.push_back({u"totalwork", pick(1000)});
    std::shuffle(puts.begin(), puts.end(), random);
    for (const auto& [property, value] : puts) task->Put(property, value);
    task->PutUserField({u"KESTID", 1, text()});
    const auto again = ReadCalendarItem(task->content());
    for (const auto& [property, value] : puts) {
      const Value read = again->Get(property);
      const bool is_equal =
          value.IsDate() ? read.AsDate() == value.AsDate() : read.ToText() == value.ToText();
      EXPECT_TRUE(is_equal) << ToUtf8(property) << "\n" << task->content();
    }
    EXPECT_EQ(again->UserFields().size(), 1u);
    EXPECT_EQ(again->FindUserField(u"kestid")->value, task->FindUserField(u"KESTID")->value);
  }
}

TEST_F(CalendarDocumentTest, MovesTheEndWithTheStart) {
  const auto event = NewAppointment();
  EXPECT_EQ(Show(*event, u"duration"), "30");
  event->Put(u"start", u"2026-03-28 23:00:00");
  EXPECT_EQ(Show(*event, u"end"), "2026-03-28 23:30:00");
  event->Put(u"duration", 90);
  EXPECT_EQ(Show(*event, u"end"), "2026-03-29 00:30:00");
  event->Put(u"alldayevent", true);
  EXPECT_EQ(Show(*event, u"start") + Show(*event, u"end"), "2026-03-282026-03-30");
  event->Put(u"start", u"2026-04-01 09:00:00");
  EXPECT_EQ(Show(*event, u"end"), "2026-04-03");
}

TEST_F(CalendarDocumentTest, SplitsAFileIntoItsItems) {
  const std::string zone_b = "BEGIN:VTIMEZONE\nTZID:B\nEND:VTIMEZONE\n";
  const std::string a1 = "BEGIN:VEVENT\nUID:a\nDTSTART;TZID=B:20261121T100000\nEND:VEVENT\n";
  const std::string t = "BEGIN:VTODO\nUID:a\nEND:VTODO\n";
  const std::string a2 = "BEGIN:VEVENT\nUID:a\nRECURRENCE-ID:20261122T100000Z\nEND:VEVENT\n";
  const std::string no_uid = "BEGIN:VEVENT\nSUMMARY:n\nEND:VEVENT\n";
  const std::string head = "BEGIN:VCALENDAR\nVERSION:2.0\nX-A:1\n";
  const std::string end = "END:VCALENDAR\n";
  const auto items =
      SplitCalendar("BEGIN:VCALENDAR\nVERSION:2.0\nMETHOD:PUBLISH\nX-A:1\n" + zone_b + kOddZone +
                    a1 + t + "BEGIN:VJOURNAL\nEND:VJOURNAL\n" + a2 + no_uid + no_uid + end);
  EXPECT_EQ(items, (std::vector<std::string>{head + zone_b + a1 + a2 + end, head + t + end,
                                             head + no_uid + end, head + no_uid + end}));
  EXPECT_EQ(ClassOfCalendarObject(items[0]), ItemClass::kAppointment);
  EXPECT_EQ(ClassOfCalendarObject(items[1]), ItemClass::kTask);
  EXPECT_EQ(ClassOfCalendarObject("SUMMARY:BEGIN:VEVENT\r\n"), std::nullopt);
  EXPECT_EQ(ReadCalendarItem("BEGIN:VCALENDAR\r\nEND:VCALENDAR\r\n"), nullptr);
}

}  // namespace
}  // namespace kestrelon::desktop
