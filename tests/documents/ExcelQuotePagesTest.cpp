// Workbooks of the tables of pages as the Linux desktop reads them.

#include <gtest/gtest.h>

#include "desktop/xml/XmlDocuments.h"
#include "documents/ExcelQuote.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon {
namespace {

using testing::ScriptedDesktop;

const std::string kCell = "Excel.Application.Workbooks.Add().Worksheets.Item(1).Cells(";

struct ExcelQuotes : ::testing::Test {
  bool Quote(const std::string& markup, String columns) {
    desktop.log.clear();
    HtmlDocument page(desktop::ParseHtmlDocument(markup).pointer());
    return ExcelQuote(context, page, columns);
  }
  // What was put into which cells: `1, 1"Name" 2, 1"Oak" `.
  std::string Written() const {
    std::string written;
    for (const std::string& line : desktop.log) {
      const size_t put = line.find(").Value = ");
      if (put == std::string::npos) continue;
      written += line.substr(kCell.size(), put - kCell.size()) + line.substr(put + 10) + " ";
    }
    return written;
  }
  ScriptedDesktop desktop;
  ControlContext context{desktop};
};

TEST_F(ExcelQuotes, WriteTheNamedColumnsOfTheFirstTableThatHasThem) {
  const std::string tables =
      "<table><tr><td>Menu<table><tr><td>Price</table></td></tr></table>"
      "<table><tr><th>Ref<th> item <br><th>PRICE&nbsp;</tr><tr><td>1<td>Oak,<br>old<td>12.50</tr>"
      "<tr><td>2</tr></table><table><tr><td>Item<td>Price</table>";
  const std::tuple<std::string, const char16_t*, const char*> cases[] = {
      {tables, u"Item,Price", R"(1, 1"item" 1, 2"PRICE" 2, 1"Oak,\nold" 2, 2"12.50" )"},
      {tables, u" price ,, ITEM,", R"(1, 1"PRICE" 1, 2"item" 2, 1"12.50" 2, 2"Oak,\nold" )"},
      {tables, u"price", R"(1, 1"Price" )"},
      {"<table><tr><td>Unit&nbsp;<br>price</table>", u"unit Price", "1, 1\"Unit\u00A0\\nprice\" "},
      {"<table></table><table><tr></table><table><tr><td>&nbsp;<tr><td>1</table>"
       "<table><tr><td>A<tr><td><td>b</table>",
       u"", R"(1, 1"A" 2, 2"b" )"},
      {"<table><tr><td colspan=2>A<td>B<tr><td>1<td>2<td>3</table>", u" , ",
       R"(1, 1"A" 1, 3"B" 2, 1"1" 2, 2"2" 2, 3"3" )"},
      {"<table><tr><td>A<td rowspan=2>B<td>C<tr><td>1<td>3<tr><td>4<td>5</table>", u"c,a",
       R"(1, 1"C" 1, 2"A" 2, 1"3" 2, 2"1" 3, 2"4" )"},
  };
  for (const auto& [markup, columns, written] : cases) {
    EXPECT_TRUE(Quote(markup, columns));
    EXPECT_EQ(Written(), written) << markup;
    EXPECT_TRUE(desktop.log.end()[-2].ends_with(".UsedRange.Columns.AutoFit()"));
    EXPECT_EQ(desktop.log.back(), "Excel.Application.Visible = True");
  }
}

TEST_F(ExcelQuotes, StartNoExcelForAPageWithoutTheColumnsAndTellAMissingOne) {
  for (const char* markup : {"", "<table><tr><td>Item</table>", "<p>Item Price"}) {
    EXPECT_FALSE(Quote(markup, u"Item,Price"));
    EXPECT_EQ(desktop.log.size() + desktop.messages.size(), 0U) << markup;
  }
  desktop.Fail("create", AutomationError(kCannotCreateObject));
  EXPECT_FALSE(Quote("<table><tr><td>A</table>", u""));
  EXPECT_TRUE(desktop.messages.at(0).text.starts_with(u"Unable to start Microsoft Excel - "));
}

TEST_F(ExcelQuotes, LetNoPageRunAFormula) {
  desktop.Fail(kCell + "1, 3).Value = \"-1.2", AutomationError(1004));
  EXPECT_TRUE(
      Quote("<table><tr><td>=1+1<td>-12.50<td>-1.234,50<td>+44 20<td>-2+cmd|' /C'!A0"
            "<td>@SUM<td>-<td>'quoted<td>1-2</table>",
            u""));
  const std::string written =
      R"(1, 1"'=1+1" 1, 2"-12.50" 1, 3"-1.234,50" 1, 3"'-1.234,50" 1, 4"+44 20" )"
      R"(1, 5"'-2+cmd|' /C'!A0" 1, 6"'@SUM" 1, 7"'-" 1, 8"''quoted" 1, 9"1-2" )";
  EXPECT_EQ(Written(), written);
}

}  // namespace
}  // namespace kestrelon
