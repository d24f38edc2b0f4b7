#include "documents/WordTable.h"

#include "documents/TagData.h"

namespace kestrelon {

Object CellRange(const Object& table, int32_t row, int32_t column) {
  return table.CallChild(u"Cell", row, column).GetChild(u"Range");
}

std::vector<String> ReadHeaderCells(const Object& table) {
  const int32_t columns = table.GetChild(u"Columns").Get(u"Count").ToLong();
  std::vector<String> texts(static_cast<size_t>(columns) + 1);
  for (int32_t column = 1; column <= columns; ++column) {
    texts[column] = CleanCellText(CellRange(table, 1, column).Get(u"Text").ToText());
  }
  return texts;
}

void AddRowsFor(const Object& table, int32_t lines) {
  const Object rows = table.GetChild(u"Rows");
  for (int32_t r = rows.Get(u"Count").ToLong(); r <= lines; ++r) rows.Call(u"Add");
}

}  // namespace kestrelon
