// A table, its rows and cells. Rows and columns count from 1.
//
// Error 5825 "Object has been deleted." for every call once the table has been deleted.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "automation/Text.h"
#include "desktop/word/document/Story.h"

namespace kestrelon::desktop::word {

struct Paragraph;
class StoryReader;

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

  Table& table() const { return table_; }

 private:
  friend class Table;
  friend class StoryReader;
  Cell(Table& table, uint32_t node) : table_(table), node_(node) {}
  StoryText& text() const;
  bool HasOneParagraph() const;
  Paragraph& FirstParagraph() const;

  Table& table_;
  uint32_t node_;
  Paragraph* last_ = nullptr;  // its mark is the end-of-cell mark
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

  // The cell that the table stands in; nullptr for one that is not nested.
  Cell* parent() const { return parent_; }

 private:
  friend class BlockInsertion;
  friend class Cell;
  friend class StoryReader;
  friend class StoryText;
  friend class SpanDeletion;
  struct Row {
    uint32_t node;
    std::vector<std::unique_ptr<Cell>> cells;
    Paragraph* mark;
  };
  Table(uint32_t node, Cell* parent) : node_(node), parent_(parent) {}
  void RequireUsable() const;
  Paragraph& FirstParagraph() const;
  Paragraph& LastMark() const { return *rows_.back().mark; }

  uint32_t node_;
  Cell* parent_;
  StoryText* text_ = nullptr;
  std::vector<Row> rows_;
  size_t widest_ = 0;
  bool deleted_ = false;
};

}  // namespace kestrelon::desktop::word
