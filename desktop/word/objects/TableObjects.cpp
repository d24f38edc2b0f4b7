#include "desktop/word/objects/TableObjects.h"

#include "desktop/word/objects/TextObjects.h"

namespace kestrelon::desktop::word {

Value MakeTables(const Owner& owner, Story& story, Span span) {
  return MakeObject<TablesObject>(owner, story, span);
}

const MemberTable<TablesObject>& TablesObject::Members() {
  static const MemberTable<TablesObject> table = CollectionMembers(u"Tables");
  return table;
}

std::vector<Table*> TablesObject::Tables() {
  std::vector<Table*> tables;
  const Span place = place_.span();
  const bool whole_story = place.start == 0 && place.end == story_.Length();
  for (int32_t i = 1, count = story_.TableCount(); i <= count; ++i) {
    Table* const table = story_.TableAt(i);
    if (!whole_story) {
      const Span span = table->span();
      if (span.end <= place.start || span.start >= std::max(place.end, place.start + 1)) continue;
    }
    tables.push_back(table);
  }
  return tables;
}

Value TablesObject::At(int32_t index) {
  return MakeObject<TableObject>(owner(), story_, *Tables()[static_cast<size_t>(index - 1)]);
}

const MemberTable<TableObject>& TableObject::Members() {
  static const MemberTable<TableObject> table =
      MemberTable<TableObject>(u"Table")
          .Property(u"Rows", &TableObject::GetRows)
          .Property(u"Columns", &TableObject::GetColumns)
          .Property(u"Range", &TableObject::GetRange)
          .Method(u"Cell", &TableObject::GetCell, {u"Row", u"Column"});
  return table;
}

Value TableObject::GetRows() { return MakeObject<RowsObject>(owner(), table_); }

Value TableObject::GetColumns() { return MakeObject<ColumnsObject>(owner(), table_); }

Value TableObject::GetRange() { return MakeRange(owner(), story_, table_.span()); }

Value TableObject::GetCell(const MethodArguments& arguments) {
  const int32_t row = arguments.Require(0).ToLong();
  const int32_t column = arguments.Require(1).ToLong();
  return MakeObject<CellObject>(owner(), *table_.CellAt(row, column));
}

const MemberTable<RowsObject>& RowsObject::Members() {
  static const MemberTable<RowsObject> table = MemberTable<RowsObject>(u"Rows")
                                                   .Property(u"Count", &RowsObject::GetCount)
                                                   .Method(u"Add", &RowsObject::Add);
  return table;
}

Value RowsObject::Add(const MethodArguments&) {
  table_.AddRow();
  document().NoteEdit();
  return MakeObject<RowObject>(owner(), table_.RowCount());
}

const MemberTable<RowObject>& RowObject::Members() {
  static const MemberTable<RowObject> table =
      MemberTable<RowObject>(u"Row").Property(u"Index", &RowObject::GetIndex);
  return table;
}

const MemberTable<ColumnsObject>& ColumnsObject::Members() {
  static const MemberTable<ColumnsObject> table =
      MemberTable<ColumnsObject>(u"Columns").Property(u"Count", &ColumnsObject::GetCount);
  return table;
}

const MemberTable<CellObject>& CellObject::Members() {
  static const MemberTable<CellObject> table =
      MemberTable<CellObject>(u"Cell").Property(u"Range", &CellObject::GetRange);
  return table;
}

Value CellObject::GetRange() { return MakeObject<RangeObject>(owner(), cell_); }

}  // namespace kestrelon::desktop::word
