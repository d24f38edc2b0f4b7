#include <gtest/gtest.h>

#include "automation/AutomationError.h"
#include "desktop/locale/DateText.h"

namespace kestrelon::desktop {
namespace {

std::string Read(const char* text, const char* order) {
  try {
    return ToUtf8(FormatDate(DateFromText(FromUtf8(text), order)));
  } catch (const AutomationError& error) {
    return "error " + std::to_string(error.number());
  }
}

TEST(DateFromText, ReadsTheFormsThatUsersType) {
  const struct {
    const char* text;
    const char* month_first;
    const char* day_first;
    const char* year_first;
  } cases[] = {
      {"2026-02-03 04:05:06", "2026-02-03 04:05:06", "2026-02-03 04:05:06", "2026-02-03 04:05:06"},
      {"1/2/2026", "2026-01-02", "2026-02-01", "2026-01-02"},
      {"1.2.28", "2028-01-02", "2028-02-01", "2001-02-28"},
      {"30-11-30", "1930-11-30", "1930-11-30", "1930-11-30"},
      {"11 21 2026", "2026-11-21", "2026-11-21", "2026-11-21"},
      {" 21 / 11 / 26 ", "2026-11-21", "2026-11-21", "2021-11-26"},
      {"2026/11/21", "2026-11-21", "2026-11-21", "2026-11-21"},
      {"29/2/2023", "error 13", "error 13", "error 13"},
  };
  for (const auto& example : cases) {
    EXPECT_EQ(Read(example.text, "0"), example.month_first) << example.text;
    EXPECT_EQ(Read(example.text, "1"), example.day_first) << example.text;
    EXPECT_EQ(Read(example.text, "2"), example.year_first) << example.text;
  }
}

TEST(DateFromText, ReadsMonthNamesAndTimesInAnyLocale) {
  const struct {
    const char* text;
    const char* date;
  } cases[] = {
      {"21 Nov 2026", "2026-11-21"},
      {"21-november-26", "2026-11-21"},
      {"Sept. 3, 99", "1999-09-03"},
      {"2026 may 4", "2026-05-04"},
      {"4 May 2026 9:05", "2026-05-04 09:05:00"},
      {"4 May 2026  12:00:01 am", "2026-05-04 00:00:01"},
      {"13/4/2026 1:30PM", "2026-04-13 13:30:00"},
  };
  for (const auto& example : cases) {
    for (const char* order : {"0", "1", "2"}) EXPECT_EQ(Read(example.text, order), example.date);
  }
  for (const char* text :
       {"", "x", "1/2", "1/2-2026", "1//2/2026", "13/13/2026", "1,2,2026", "1/2/02026", "1/2/2026x",
        "1/2/2026 9", "1/2/2026 24:00", "1/2/2026 13:00 am", "1/2/2026 9:60", "10:30", "may may 3",
        "4 mayo 2026", "1/2/2026 9:05 zm", "3 2026 May"}) {
    for (const char* order : {"0", "1", "2"}) EXPECT_EQ(Read(text, order), "error 13") << text;
  }
}

}  // namespace
}  // namespace kestrelon::desktop
