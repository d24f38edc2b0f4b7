// Tables, their rows, columns and cells. Positions are left alone where they are not asked for, so
// that filling a long table costs the same for each row.
#pragma once

#include <utility>
#include <vector>

#include "desktop/word/objects/WordObject.h"

namespace kestrelon::desktop::word {

// The tables of a story, or those that lie in a part of it; top level only.
class TablesObject final : public WordCollection<TablesObject> {
 public:
  TablesObject(Owner owner, Story& story, Span span)
      : WordCollection(std::move(owner)), story_(story), place_(story, span) {}
  static const MemberTable<TablesObject>& Members();

  int32_t Size();
  Value At(int32_t index);

 private:
  bool CoversStory() const;
  std::vector<Table*> TablesInPlace() const;

  Story& story_;
  TrackedSpan place_;
};

class TableObject final : public WordObject<TableObject> {
 public:
  TableObject(Owner owner, Story& story, Table& table)
      : WordObject(std::move(owner)), story_(story), table_(table) {}
  static const MemberTable<TableObject>& Members();

  Value GetRows();
  Value GetColumns();
  Value GetRange();
  Value GetCell(const MethodArguments& arguments);

 private:
  Story& story_;
  Table& table_;
};

class RowsObject final : public WordObject<RowsObject> {
 public:
  RowsObject(Owner owner, Table& table) : WordObject(std::move(owner)), table_(table) {}
  static const MemberTable<RowsObject>& Members();

  Value GetCount() { return table_.RowCount(); }
  // A row like the last one, below it.
  Value Add(const MethodArguments&);

 private:
  Table& table_;
};

class RowObject final : public WordObject<RowObject> {
 public:
  RowObject(Owner owner, int32_t index) : WordObject(std::move(owner)), index_(index) {}
  static const MemberTable<RowObject>& Members();

  Value GetIndex() { return index_; }

 private:
  int32_t index_;
};

class ColumnsObject final : public WordObject<ColumnsObject> {
 public:
  ColumnsObject(Owner owner, Table& table) : WordObject(std::move(owner)), table_(table) {}
  static const MemberTable<ColumnsObject>& Members();

  Value GetCount() { return table_.ColumnCount(); }

 private:
  Table& table_;
};

class CellObject final : public WordObject<CellObject> {
 public:
  CellObject(Owner owner, Cell& cell) : WordObject(std::move(owner)), cell_(cell) {}
  static const MemberTable<CellObject>& Members();

  Value GetRange();

 private:
  Cell& cell_;
};

}  // namespace kestrelon::desktop::word
