#include "documents/ExcelQuote.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "Control/ErrorReporting.h"
#include "Control/OfficeConnection.h"

namespace kestrelon {
namespace {

// The text of each column.
using Row = std::vector<String>;

// Blanks and line breaks, the no-break space of an empty cell among them.
constexpr StringView kWhiteSpace = u" \t\r\n\u00A0";

String TrimCell(const String& text) {
  const size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == String::npos) return {};
  return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

// Reads the rows of a table one after the other, each text in the column that the cells before it
// and above it leave to it.
class RowReader {
 public:
  Row Read(const Object& row) {
    Row texts;
    const Object cells = row.GetChild(u"cells");
    const int32_t count = cells.Get(u"length").ToLong();
    for (int32_t i = 0; i < count; ++i) {
      const Object cell = cells.CallChild(u"item", i);
      while (rows_covered_[At(texts.size())] > 0) texts.emplace_back();
      const int32_t columns = cell.Get(u"colSpan").ToLong();
      const int32_t rows = cell.Get(u"rowSpan").ToLong();
      for (int32_t column = 0; column < std::min(columns, kMostColumns); ++column) {
        rows_covered_[At(texts.size())] = rows;
        texts.push_back(column == 0 ? TextOf(cell) : String());
      }
    }
    for (int32_t& rows : rows_covered_) rows = std::max(rows - 1, 0);
    return texts;
  }

 private:
  static constexpr int32_t kMostColumns = 1000;  // of one cell, as in browsers

  static String TextOf(const Object& cell) {
    return ReplaceAll(TrimCell(cell.Get(u"innerText").ToText()), u"\r\n", u"\n");
  }
  size_t At(size_t column) {
    if (column >= rows_covered_.size()) rows_covered_.resize(column + 1);
    return column;
  }

  std::vector<int32_t> rows_covered_;  // how many more rows the last cell of each column takes
};

// The name of a column as it is compared: how a page wraps its header is no part of it.
String ColumnKey(const String& name) {
  String key;
  for (const char16_t unit : LowerCase(TrimCell(name))) {
    const bool is_blank = kWhiteSpace.find(unit) != StringView::npos;
    if (!is_blank || key.back() != u' ') key += is_blank ? u' ' : unit;
  }
  return key;
}

std::vector<String> NamedColumns(const String& columns) {
  std::vector<String> names;
  for (const String& name : Split(columns, u",")) {
    if (!TrimCell(name).empty()) names.push_back(ColumnKey(name));
  }
  return names;
}

// Where the named columns stand in the header; nothing when one is not there.
std::optional<std::vector<size_t>> FindColumns(const Row& header,
                                               const std::vector<String>& names) {
  std::vector<size_t> columns;
  for (const String& name : names) {
    const auto found = std::find_if(header.begin(), header.end(),
                                    [&](const String& text) { return ColumnKey(text) == name; });
    if (found == header.end()) return std::nullopt;
    columns.push_back(static_cast<size_t>(found - header.begin()));
  }
  return columns;
}

Row Choose(const Row& row, const std::vector<size_t>& columns) {
  Row chosen;
  for (const size_t column : columns) {
    chosen.push_back(column < row.size() ? row[column] : String());
  }
  return chosen;
}

// The rows of the table with the named columns, or with all when there are no names, its header row
// first; none when it has no header row with them.
std::vector<Row> ReadTable(const Object& table, const std::vector<String>& names) {
  const Object rows = table.GetChild(u"rows");
  const int32_t count = rows.Get(u"length").ToLong();
  if (count == 0) return {};
  RowReader reader;
  const Row header = reader.Read(rows.CallChild(u"item", 0));
  const auto columns = FindColumns(header, names);
  // Pages put tables around others and spacers between them; without captions it is no quote.
  const auto is_blank = [](const String& text) { return text.empty(); };
  if (std::all_of(header.begin(), header.end(), is_blank) || !columns) return {};
  const auto choose = [&](const Row& row) { return names.empty() ? row : Choose(row, *columns); };
  std::vector<Row> quote = {choose(header)};
  for (int32_t i = 1; i < count; ++i) {
    quote.push_back(choose(reader.Read(rows.CallChild(u"item", i))));
  }
  return quote;
}

std::vector<Row> FindQuote(const Object& page, const std::vector<String>& names) {
  const Object tables = page.CallChild(u"getElementsByTagName", u"table");
  const int32_t count = tables.Get(u"length").ToLong();
  for (int32_t i = 0; i < count; ++i) {
    std::vector<Row> quote = ReadTable(tables.CallChild(u"item", i), names);
    if (!quote.empty()) return quote;
  }
  return {};
}

// Digits with their signs, in any country's way: nothing that a spreadsheet could run.
bool IsNumber(StringView text) {
  constexpr StringView kDigits = u"0123456789";
  constexpr StringView kSigns = u".,' %$\u00A0\u00A3\u00A5\u2019\u202F\u20AC";
  bool has_digit = false;
  for (const char16_t unit : text.substr(1)) {
    const bool is_digit = kDigits.find(unit) != StringView::npos;
    if (!is_digit && kSigns.find(unit) == StringView::npos) return false;
    has_digit = has_digit || is_digit;
  }
  return has_digit && (text.front() == u'-' || text.front() == u'+');
}

// A page must not run formulas: what Excel would take for one is put behind an apostrophe, which
// makes it a text. Whether a signed number is one depends on the user's country, which Excel knows:
// what it refuses as a number is a text, too.
void PutText(const Object& cell, const String& text) {
  constexpr StringView kSigns = u"=+-@'";
  if (kSigns.find(text.front()) == StringView::npos) return cell.Put(u"Value", text);
  if (IsNumber(text) && !IgnoreFailures([&] { cell.Put(u"Value", text); })) return;
  cell.Put(u"Value", u"'" + text);
}

void WriteQuote(const Object& excel, const std::vector<Row>& quote) {
  const Object workbook = excel.GetChild(u"Workbooks").CallChild(u"Add");
  const Object sheet = workbook.GetChild(u"Worksheets").CallChild(u"Item", 1);
  for (size_t row = 0; row < quote.size(); ++row) {
    for (size_t column = 0; column < quote[row].size(); ++column) {
      if (quote[row][column].empty()) continue;
      const auto cell = sheet.CallChild(u"Cells", static_cast<int32_t>(row + 1),
                                        static_cast<int32_t>(column + 1));
      PutText(cell, quote[row][column]);
    }
  }
  // What is longer than a column has room would be cut off at the next one.
  sheet.GetChild(u"UsedRange").GetChild(u"Columns").Call(u"AutoFit");
}

}  // namespace

bool ExcelQuote(ControlContext& context, HtmlDocument& oHTMLDoc, String& strColumns) {
  String step = u"reading the quote from the page";
  const auto report = [&](const AutomationError& error) {
    ShowMessage(context, u"An error occurred whilst " + step + u": " + error.description(),
                kExclamation, u"Kestrelon");
  };
  std::vector<Row> quote;
  if (!Attempt([&] { quote = FindQuote(oHTMLDoc, NamedColumns(strColumns)); }, report) ||
      quote.empty()) {
    return false;
  }
  const Object excel = StartExcel(context);
  if (!excel) return false;
  const bool is_shown = Attempt(
      [&] {
        step = u"writing the quote to Microsoft Excel";
        WriteQuote(excel, quote);
        step = u"showing the quote in Microsoft Excel";
        excel.Put(u"Visible", true);
      },
      report);
  // Left alone, it would stay behind unseen, and ask about the unfinished workbook when it quits.
  if (!is_shown) {
    IgnoreFailures([&] { excel.Put(u"DisplayAlerts", false); }, [&] { excel.Call(u"Quit"); });
  }
  return is_shown;
}

}  // namespace kestrelon
