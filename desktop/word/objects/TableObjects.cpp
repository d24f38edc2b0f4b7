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

bool TablesObject::CoversStory() const { return place_.span() == Span{0, story_.Length()}; }

std::vector<Table*> TablesObject::TablesInPlace() const {
  const Span place = place_.span();
  std::vector<Table*> tables;
  for (int32_t i = 1, count = story_.TableCount(); i <= count; ++i) {
    Table* const table = story_.TableAt(i);
    const Span span = table->span();
    if (span.start < std::max(place.end, place.start + 1) && place.start < span.end) {
      tables.push_back(table);
    }
  }
  return tables;
}

int32_t TablesObject::Size() {
  return CoversStory() ? story_.TableCount() : static_cast<int32_t>(TablesInPlace().size());
}

Value TablesObject::At(int32_t index) {
  Table* const table =
      CoversStory() ? story_.TableAt(index) : TablesInPlace()[static_cast<size_t>(index - 1)];
  return MakeObject<TableObject>(owner(), story_, *table);
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
