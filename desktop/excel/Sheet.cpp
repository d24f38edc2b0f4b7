#include "desktop/excel/Sheet.h"

#include <algorithm>
#include <tuple>

namespace kestrelon::desktop::excel {
namespace {

// One end of an area; 0 for the part that is left out.
struct Corner {
  int32_t row = 0;
  int32_t column = 0;
};

std::optional<Corner> ParseCorner(StringView text) {
  const String plain = ReplaceAll(text, u"$", u"");
  const size_t digits = std::min(plain.find_first_of(u"0123456789"), plain.size());
  const String letters = plain.substr(0, digits);
  Corner corner;
  if (!letters.empty()) {
    corner.column = ColumnOfLetters(letters);
    if (corner.column == 0) return std::nullopt;
  }
  for (const char16_t digit : plain.substr(digits)) {
    if (digit < u'0' || digit > u'9' || corner.row > kMostRows) return std::nullopt;
    corner.row = corner.row * 10 + (digit - u'0');
  }
  const bool has_row = digits < plain.size();
  if (plain.empty() || (has_row && (corner.row < 1 || corner.row > kMostRows))) return std::nullopt;
  return corner;
}

size_t LongestLine(StringView text) {
  size_t longest = 0;
  for (const String& line : Split(text, u"\n")) longest = std::max(longest, line.size());
  return longest;
}

}  // namespace

std::optional<Area> ParseArea(StringView text) {
  const size_t colon = text.find(u':');
  const auto first = ParseCorner(Trim(text.substr(0, colon)));
  const auto second = colon == StringView::npos ? first : ParseCorner(Trim(text.substr(colon + 1)));
  if (!first || !second) return std::nullopt;
  const bool is_alike =
      (first->row == 0) == (second->row == 0) && (first->column == 0) == (second->column == 0);
  const bool is_whole = first->row == 0 || first->column == 0;
  if (!is_alike || (is_whole && colon == StringView::npos)) return std::nullopt;
  Area area;
  if (first->row != 0) std::tie(area.top, area.bottom) = std::minmax({first->row, second->row});
  if (first->column != 0) {
    std::tie(area.left, area.right) = std::minmax({first->column, second->column});
  }
  return area;
}

int32_t ColumnOfLetters(StringView letters) {
  int32_t column = 0;
  for (const char16_t letter : UpperCase(letters)) {
    if (letter < u'A' || letter > u'Z') return 0;
    column = column * 26 + (letter - u'A' + 1);
    if (column > kMostColumns) return 0;
  }
  return column;
}

std::string LettersOfColumn(int32_t column) {
  std::string letters;
  for (; column > 0; column = (column - 1) / 26) {
    letters.insert(letters.begin(), static_cast<char>('A' + (column - 1) % 26));
  }
  return letters;
}

const Cell* Sheet::Find(int32_t row, int32_t column) const {
  const auto cells = rows_.find(row);
  if (cells == rows_.end()) return nullptr;
  const auto cell = cells->second.find(column);
  return cell == cells->second.end() ? nullptr : &cell->second;
}

Area Sheet::UsedArea() const {
  if (rows_.empty()) return {1, 1, 1, 1};
  Area used{rows_.begin()->first, kMostColumns, rows_.rbegin()->first, 1};
  for (const auto& [number, row] : rows_) {
    used.left = std::min(used.left, row.begin()->first);
    used.right = std::max(used.right, row.rbegin()->first);
  }
  return used;
}

void Sheet::FitColumns(const Area& area) {
  constexpr double kMargin = 1.5;
  constexpr double kWidest = 255;
  constexpr double kBoldFactor = 1.1;
  std::map<int32_t, double> widths;
  for (auto row = rows_.lower_bound(area.top); row != rows_.end(); ++row) {
    if (row->first > area.bottom) break;
    for (const auto& [column, cell] : row->second) {
      if (column < area.left || column > area.right || cell.text.empty()) continue;
      const auto length = static_cast<double>(LongestLine(cell.text));
      double& width = widths[column];
      width = std::max(width, length * (cell.style.bold ? kBoldFactor : 1) + kMargin);
    }
  }
  for (const auto& [column, width] : widths) column_widths[column] = std::min(width, kWidest);
}

}  // namespace kestrelon::desktop::excel
