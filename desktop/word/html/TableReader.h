// Takes down one table of a page.
#pragma once

#include <string>
#include <vector>

#include "desktop/word/html/BlockReader.h"

namespace kestrelon::desktop::word::html {

class TableReader {
 public:
  explicit TableReader(Page& page) : page_(page), stray_(page) {}

  // Returns what stands in the table, but in none of its cells: the caption and stray text, which
  // go before it. Error 4198 for a table of more than 63 columns, and for too
  // many cells.
  std::vector<Block> Read(const xmlNode& element, const ElementStyle& style);
  Table Take() { return std::move(table_); }

 private:
  // What a row takes over from its section and table.
  struct RowStyle {
    Inherited inherited;
    std::optional<Color> background;
    bool is_header = false;
    bool is_footer = false;
  };

  void ReadTableStyle(const xmlNode& element, const ElementStyle& style);
  void ReadRows(const xmlNode& parent, const RowStyle& around);
  void ReadColumns(const xmlNode& element, const Inherited& inherited);
  void ReadRow(const xmlNode& element, const RowStyle& around);
  void AddCell(const xmlNode& element, const ElementStyle& row, const RowStyle& around);
  void ReadStray(const xmlNode& node, const Inherited& inherited);
  size_t NextFreeColumn();
  void ContinueCells(size_t until);
  void AppendCell(Cell cell);
  void EndRow();
  void DropUnusedColumns();

  // A cell that reaches into the rows below.
  struct Hanging {
    size_t rows_left = 0;
    Cell cell;  // its empty lower part
  };

  Page& page_;
  BlockReader stray_;
  Table table_;
  std::vector<Row> footer_;
  Row row_;
  size_t column_ = 0;  // where the next cell of the row goes
  std::vector<Hanging> hanging_;
  std::vector<bool> begins_;  // a cell begins in the column
  std::vector<Length> column_widths_;
};

}  // namespace kestrelon::desktop::word::html
