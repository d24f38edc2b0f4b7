// Links to a table and a cell that notice when an edit has taken the table away.
#pragma once

#include "desktop/word/objects/Session.h"

namespace kestrelon::desktop::word {

class TableLink {
 public:
  TableLink(const OpenDocument& document, Story& story, Table& table)
      : story_(&story), table_(&table), checked_at_(document.span_edits()) {}

  Story& story() const { return *story_; }
  // Error 5825 when the table is gone. Looks for it only after edits that may have taken it.
  Table& Require(const OpenDocument& document);

 private:
  Story* story_;
  Table* table_;
  int64_t checked_at_;
};

class CellLink {
 public:
  CellLink(TableLink table, Cell& cell) : table_(table), cell_(&cell) {}

  Cell& Require(const OpenDocument& document) {
    table_.Require(document);
    return *cell_;
  }

 private:
  TableLink table_;
  Cell* cell_;
};

}  // namespace kestrelon::desktop::word
