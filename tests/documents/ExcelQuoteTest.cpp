#include <gtest/gtest.h>

#include <algorithm>

#include "documents/ExcelQuote.h"
#include "tests/support/FailEachCall.h"

namespace kestrelon {
namespace {

using testing::ScriptedDesktop;

TEST(ExcelQuoteFailures, AreToldOnceAndLeaveNoExcelBehind) {
  const auto script = [](ScriptedDesktop& desktop) {
    const std::string rows = "page.getElementsByTagName(\"table\").item(0).rows";
    desktop.Answer("page.getElementsByTagName(\"table\").length", {1});
    desktop.Answer(rows + ".length", {2});
    for (const std::string row : {".item(0).cells", ".item(1).cells"}) {
      desktop.Answer(rows + row + ".length", {1});
      desktop.Answer(rows + row + ".item(0).colSpan", {1});
      desktop.Answer(rows + row + ".item(0).rowSpan", {1});
      desktop.Answer(rows + row + ".item(0).innerText", {Value(u"text")});
    }
  };
  const auto run = [](ControlContext& context, ScriptedDesktop& desktop) {
    HtmlDocument page(desktop.NamedObject("page").AsObject());
    String columns;
    const bool is_written = ExcelQuote(context, page, columns);
    const std::string& failed = desktop.failed_line;
    EXPECT_EQ(is_written, failed.empty()) << failed;
    EXPECT_EQ(desktop.messages.size(), is_written ? 0U : 1U) << failed;
    const bool is_left = !is_written && failed.starts_with("Excel");
    for (const char* line :
         {"Excel.Application.DisplayAlerts = False", "Excel.Application.Quit()"}) {
      EXPECT_EQ(std::count(desktop.log.begin(), desktop.log.end(), line), is_left) << failed;
    }
  };
  EXPECT_GE(testing::FailEachCall(script, run), 20);
}

}  // namespace
}  // namespace kestrelon
