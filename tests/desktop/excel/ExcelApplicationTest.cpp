#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "desktop/converter/Converter.h"
#include "desktop/excel/ExcelApplication.h"
#include "desktop/storage/Paths.h"
#include "desktop/xml/XmlDocuments.h"
#include "tests/desktop/opener/RecordingOpener.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

// What the office suite reads in the cells of a file: "text", "text (number)", "text bold".
std::vector<std::string> CellsOf(const fs::path& path) {
  const std::string html = Converter::OfThisProcess().ConvertToBytes(path, ConversionFormat::kHtml);
  std::vector<std::string> found;
  const auto walk = ParseHtmlDocument(html).CallChild(u"getElementsByTagName", u"td").Enumerate();
  while (const auto next = walk->Next()) {
    const Object cell = next->ToObject();
    const Value number = cell.Call(u"getAttribute", u"sdval");
    const Object bold = cell.CallChild(u"getElementsByTagName", u"b");
    found.push_back(ToUtf8(ReplaceAll(cell.Get(u"innerText").ToText(), u"\r\n", u"\n") +
                           (number.IsNull() ? u"" : u" (" + number.ToText() + u")") +
                           (bold.Get(u"length").ToLong() > 0 ? u" bold" : u"")));
  }
  return found;
}

struct Excel : ::testing::Test {
  // The converter's worker lives in its temporary folder as long as this process.
  static const ConverterWorld& World() {
    static const ConverterWorld world;
    return world;
  }
  static String Path(const std::string& name) { return TextFromPath(World() / name); }
  Object NewSheet() const { return books.CallChild(u"Add").GetChild(u"ActiveSheet"); }

  const ChangedEnvironment language{"LC_ALL", "C"};
  Object excel = CreateExcelApplication();
  const Object books = excel.GetChild(u"Workbooks");
};

TEST_F(Excel, SavesValuesWithTheirTypesAsBothKindsOfWorkbook) {
  const Object sheet = NewSheet();
  sheet.Put(u"Cells", 1, 1, u"Zo\u00EB & <b>\r\n_x0041_");
  sheet.CallChild(u"Cells", 1, 1).GetChild(u"Font").Put(u"Bold", true);
  sheet.CallChild(u"Cells", 1, u"B").Put(u"Value", u"1,200.50");
  sheet.CallChild(u"Range", u"a2:b2").Put(u"Value", Value::Array{u"'=1+1", u"-5%"});
  sheet.CallChild(u"Range", u"A3").Put(u"Value2", true);
  sheet.CallChild(u"Range", u"$B$3").Put(u"Value", MakeDate({2026, 11, 21}));
  const Object workbook = excel.GetChild(u"ActiveWorkbook");
  const auto cells = ElementsAre("Zo\u00EB & <b>\n_x0041_ bold", "1,200.50 (1200.5)", "=1+1",
                                 "-5% (-0.05)", "TRUE (1)", "11/21/2026 (46347)");
  for (const char* name : {"a.xlsx", "a.xls"}) {
    workbook.Call(u"SaveAs", Path(name));
    EXPECT_THAT(CellsOf(World() / name), cells) << name;
  }
  // A workbook of a file is converted without being read.
  books.CallChild(u"Open", Path("a.xlsx")).Call(u"SaveAs", Path("b"), 56);
  EXPECT_THAT(CellsOf(World() / "b.xls"), cells);
}

TEST_F(Excel, ReadsTextsAsTheUserWritesNumbers) {
  const std::pair<const char16_t*, double> numbers[] = {{u" 12.50 ", 12.5},
                                                        {u"-1,234,567", -1234567},
                                                        {u"12%", 0.12},
                                                        {u"1.5E-2", 0.015},
                                                        {u"007", 7}};
  const Object cell = NewSheet().CallChild(u"Cells", 2, u"C");
  for (const auto& [text, number] : numbers) {
    cell.Put(u"Value", text);
    EXPECT_EQ(cell.Get(u"Value").AsDouble(), number) << ToUtf8(text);
  }
  for (const char16_t* text : {u"1,23", u"1234567890123456", u"-", u"1.2.3", u"1e", u"'007", u""}) {
    cell.Put(u"Value", text);
    EXPECT_EQ(cell.Get(u"Value").AsString(), ReplaceAll(text, u"'", u"")) << ToUtf8(text);
  }
}

TEST_F(Excel, NamesCellsAndAreasInEachWay) {
  const Object sheet = NewSheet();
  const Object area = sheet.CallChild(u"Range", sheet.CallChild(u"Cells", 3, 4), u"b2");
  area.Put(u"Value", Value::Array{Value::Array{1, 2, 3}, Value::Array{4, 5, 6}});
  EXPECT_EQ(area.GetChild(u"Rows").CallChild(u"Item", 2).Call(u"", 1, 3).ToLong(), 6);
  area.GetChild(u"Columns").CallChild(u"Item", u"B").GetChild(u"Font").Put(u"Bold", true);
  EXPECT_TRUE(sheet.CallChild(u"Range", u"C2:C3").GetChild(u"Font").Get(u"Bold").ToBoolean());
  EXPECT_EQ(sheet.CallChild(u"Range", u"XFD1048576").Get(u"Column").ToLong(), 16384);
}

TEST_F(Excel, SaysWhatIsWrongAndChangesNothing) {
  const Object sheet = NewSheet();
  const Object workbook = excel.GetChild(u"ActiveWorkbook");
  sheet.CallChild(u"Range", u"A65537").Put(u"Value", u"low");
  const auto put = [&](const Value& value) { sheet.CallChild(u"Range", u"A1:B1").Put(u"", value); };
  const String file = TextFromPath(World().Write("file.xlsx", "x"));
  const auto save = [&](const std::string& name) { workbook.Call(u"SaveAs", Path(name)); };
  const std::pair<std::function<void()>, const char*> cases[] = {
      {[&] {
         put(Value::Array{u"x", u"=A1"});
       },
       "Formulas are not calculated"},
      {[&] { put(String(32768, u'x')); }, "32,767"},
      {[&] { sheet.Call(u"Cells", 0, 1); }, "1,048,576"},
      {[&] { save("c.xls"); }, "65,536"},
      {[&] { save("a.csv"); }, "extension"},
      {[&] { books.Call(u"Open", Path("none.xls")); }, "couldn't find"},
      {[&] { books.CallChild(u"Open", file).Get(u"Sheets"); }, "opened from a file"},
  };
  for (const auto& [action, says] : cases) {
    const AutomationError error = FailureOf(action);
    EXPECT_EQ(error.number(), 1004) << says;
    EXPECT_THAT(ToUtf8(error.description()), ::testing::HasSubstr(says));
  }
  EXPECT_TRUE(sheet.CallChild(u"Range", u"A1").Get(u"Value").IsEmpty());
  EXPECT_FALSE(fs::exists(World() / "c.xls"));
  workbook.Call(u"Close", false);
  EXPECT_EQ(NumberOf([&] { sheet.Get(u"Name"); }), static_cast<int32_t>(0x800401A8));
  excel.Call(u"Quit");
  EXPECT_EQ(NumberOf([&] { books.Get(u"Count"); }), kServerUnavailable);
}

TEST(ExcelVisible, ShowsWorkbooksOncePerStateAndWhatIsLeftWhenNobodyHoldsIt) {
  const fs::path file = Excel::World().Write("shown.xls", "the user's");
  const RecordingOpener opener;
  Object excel = CreateExcelApplication();
  excel.Put(u"Visible", true);
  excel.GetChild(u"Workbooks").Call(u"Open", TextFromPath(file));
  EXPECT_EQ(opener.Next(), file);
  excel.GetChild(u"Workbooks").Call(u"Add");
  excel.CallChild(u"Range", u"A1").Put(u"Value", 1);
  excel.Put(u"Visible", true);
  const fs::path copy = opener.Next();
  excel.Put(u"Visible", true);
  excel.CallChild(u"Range", u"A1").Put(u"Value", u"left");
  excel.Release();
  EXPECT_THAT(CellsOf(opener.Next()), ElementsAre("left"));
  EXPECT_TRUE(fs::exists(copy)) << "the copy is the user's";
}

}  // namespace
}  // namespace kestrelon::desktop
