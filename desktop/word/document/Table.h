// A table, its rows and cells. Rows and columns count from 1.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "automation/Text.h"
#include "desktop/word/document/Story.h"

namespace kestrelon::desktop::word {

class Paragraph;

class Cell {
 public:
  Story& story() const;
  // The content with the end-of-cell mark.
  Span span() const;
  // Ends in the end-of-cell mark, "\r\a".
  String Text() const;
  // Replaces the whole content by plain text, as Story::Replace does. Costs the same wherever in
  // the story the cell stands.
  void SetText(StringView text);

 private:
  friend class Table;
};

class Table {
 public:
  int32_t RowCount() const;
  // Cells of the widest row.
  int32_t ColumnCount() const;
  // Appends a row like the last one: its cells' and paragraphs' formatting, and that of the first
  // run of each cell, without any text. Costs the same whatever the number of rows.
  void AddRow();
  // Error 5941 when there is none. A cell over several grid columns counts as one.
  Cell* CellAt(int32_t row, int32_t column) const;
  // From the first cell to the last end-of-row mark.
  Span span() const;
};

}  // namespace kestrelon::desktop::word
