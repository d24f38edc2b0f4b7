// Worksheets, areas of cells, and their font.
#pragma once

#include "desktop/excel/ExcelObject.h"

namespace kestrelon::desktop::excel {

class WorksheetsObject final : public ExcelCollection<WorksheetsObject> {
 public:
  using ExcelCollection::ExcelCollection;
  static const MemberTable<WorksheetsObject>& Members();

  int32_t Size() { return static_cast<int32_t>(workbook().sheets().size()); }
  Value At(int32_t index);
  String NameAt(int32_t index);
  // Before the active sheet.
  Value Add(const MethodArguments& arguments);
};

class WorksheetObject final : public ExcelObject<WorksheetObject> {
 public:
  using ExcelObject::ExcelObject;
  static const MemberTable<WorksheetObject>& Members();

  Value GetName() { return sheet().name; }
  // Error 1004 for a name that another sheet has or no sheet can have.
  void PutName(const Value& value);
  Value GetCells();
  Value GetRows();
  Value GetColumns();
  Value GetUsedRange();
  // "A1", "A1:C3", "A:C", or two corners. Error 1004 for what is no area.
  Value Range(const MethodArguments& arguments);
  Value Activate(const MethodArguments& arguments);
};

// What the elements of an area are, which Count counts and an index names.
enum class Unit { kCells, kRows, kColumns };

class RangeObject final : public ExcelObject<RangeObject> {
 public:
  RangeObject(Owner owner, Area area, Unit unit = Unit::kCells)
      : ExcelObject(std::move(owner)), area_(area), unit_(unit) {}
  static const MemberTable<RangeObject>& Members();

  const Area& area() const { return area_; }

  // Of one cell its value; of several an array of rows. A put of a plain value fills all cells, one
  // of an array each row, one of an array of rows the area. Error 1004 for an array of another
  // size, for an area of more than 100,000 cells, and for what no cell can hold; then nothing is
  // changed.
  Value GetValue();
  void PutValue(const Value& value);
  // Without dates: as numbers.
  Value GetValue2();
  // As the cell shows it; Null for several cells that differ.
  Value GetText();
  // Of one cell; there are no formulas, so this is what was entered.
  Value GetFormula();
  Value GetFont();
  Value GetCount();
  Value GetRow() { return area_.top; }
  Value GetColumn() { return area_.left; }
  Value GetCells();
  Value GetRows();
  Value GetColumns();
  // By row and column, or by number; a column also by its letters. The value without arguments.
  // Error 1004 outside of the sheet.
  Value Item(const MethodArguments& arguments);
  // Of whole columns: as wide as their longest text. Rows are as high as their texts anyway.
  Value AutoFit(const MethodArguments& arguments);

 private:
  Value ValueOf(const Cell* cell, bool with_dates) const;
  Value Values(bool with_dates) const;

  Area area_;
  Unit unit_;
};

class FontObject final : public ExcelObject<FontObject> {
 public:
  FontObject(Owner owner, Area area) : ExcelObject(std::move(owner)), area_(area) {}
  static const MemberTable<FontObject>& Members();

  // Null where some of the cells are and some are not. Error 1004 for more than 100,000 cells.
  Value GetBold();
  void PutBold(const Value& value);

 private:
  Area area_;
};

}  // namespace kestrelon::desktop::excel
