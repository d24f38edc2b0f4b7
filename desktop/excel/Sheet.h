// The cells of one worksheet, and areas of them.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "automation/Value.h"

namespace kestrelon::desktop::excel {

constexpr int32_t kMostRows = 1'048'576;
constexpr int32_t kMostColumns = 16'384;
constexpr size_t kLongestText = 32'767;

// How a cell looks. `number_format` is a format code of a workbook ("0.00%").
struct Style {
  bool bold = false;
  bool wraps = false;
  bool has_text_prefix = false;  // its text stays text when the user edits it
  std::string number_format = "General";
  auto operator<=>(const Style&) const = default;
};

struct Cell {
  Value value;  // Empty, Boolean, Double, Date or String
  String text;  // as the cell shows it
  Style style;
};

// Rows and columns count from 1; both ends are part of it.
struct Area {
  int32_t top = 1;
  int32_t left = 1;
  int32_t bottom = kMostRows;
  int32_t right = kMostColumns;

  int32_t Height() const { return bottom - top + 1; }
  int32_t Width() const { return right - left + 1; }
  int64_t Size() const { return int64_t{Height()} * Width(); }
};

// "B3:C4", "$A$1", "B:C", "2:2", in any case; nothing for what is no area of a sheet.
std::optional<Area> ParseArea(StringView text);
// The number of "B" is 2; 0 for what is no column.
int32_t ColumnOfLetters(StringView letters);
std::string LettersOfColumn(int32_t column);

class Sheet {
 public:
  using Row = std::map<int32_t, Cell>;  // by column

  explicit Sheet(String name) : name(std::move(name)) {}

  String name;
  std::map<int32_t, double> column_widths;  // in characters; others have the usual one

  const std::map<int32_t, Row>& rows() const { return rows_; }
  // nullptr for a cell that was never touched.
  const Cell* Find(int32_t row, int32_t column) const;
  Cell& At(int32_t row, int32_t column) { return rows_[row][column]; }
  // What was touched; A1 when nothing was.
  Area UsedArea() const;
  // Makes the used columns of an area as wide as their longest line.
  void FitColumns(const Area& area);

 private:
  std::map<int32_t, Row> rows_;
};

}  // namespace kestrelon::desktop::excel
