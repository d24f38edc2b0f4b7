#include "desktop/excel/SheetObjects.h"

#include <algorithm>

#include "desktop/excel/EnteredValue.h"

namespace kestrelon::desktop::excel {
namespace {

constexpr int64_t kMostCellsAtOnce = 100'000;

void RequireWalkable(const Area& area) {
  if (area.Size() > kMostCellsAtOnce) {
    throw ExcelError(
        u"This area has more than the 100,000 cells that are read or written at once. "
        u"Name a smaller one.");
  }
}

Value MakeRange(const Owner& owner, const Area& area, Unit unit = Unit::kCells) {
  return MakeObject<RangeObject>(owner, area, unit);
}

Area AreaOf(const Value& value) {
  if (value.IsObject()) {
    DispatchPointer pointer = value.AsObject();
    while (pointer != nullptr && pointer->Wrapped() != nullptr) pointer = pointer->Wrapped();
    const auto range = std::dynamic_pointer_cast<RangeObject>(pointer);
    if (range == nullptr) throw AutomationError(kTypeMismatch);
    return range->area();
  }
  const String text = value.ToText();
  const auto area = ParseArea(text);
  if (!area) {
    throw ExcelError(u"Method 'Range' of object '_Worksheet' failed: \"" + text +
                     u"\" is no area of a sheet, which is named like A1 or A1:C3.");
  }
  return *area;
}

int32_t IndexOf(const Value& value) {
  const bool is_letters = value.IsString() && ColumnOfLetters(value.AsString()) != 0;
  return is_letters ? ColumnOfLetters(value.AsString()) : value.ToLong();
}

// The value for one cell of what is put into an area.
const Value& ElementFor(const Value& value, const Area& area, int32_t row, int32_t column) {
  if (!value.IsArray()) return value;
  const Value::Array& array = value.AsArray();
  const auto require_size = [](const Value::Array& elements, int32_t size) {
    if (elements.size() == static_cast<size_t>(size)) return;
    throw ExcelError(u"The array and the area it is put into differ in size.");
  };
  const bool has_rows = !array.empty() && array.front().IsArray();
  if (has_rows) require_size(array, area.Height());
  const Value& line = has_rows ? array[static_cast<size_t>(row)] : value;
  if (!line.IsArray()) throw AutomationError(kTypeMismatch);
  require_size(line.AsArray(), area.Width());
  return line.AsArray()[static_cast<size_t>(column)];
}

}  // namespace

const MemberTable<WorksheetsObject>& WorksheetsObject::Members() {
  static const MemberTable<WorksheetsObject> table =
      CollectionMembers(u"Sheets").Method(u"Add", &WorksheetsObject::Add);
  return table;
}

Value WorksheetsObject::At(int32_t index) {
  const auto& sheet = workbook().sheets()[static_cast<size_t>(index) - 1];
  return MakeObject<WorksheetObject>(Owner{owner().session, owner().workbook, sheet});
}

String WorksheetsObject::NameAt(int32_t index) {
  return workbook().sheets()[static_cast<size_t>(index) - 1]->name;
}

Value WorksheetsObject::Add(const MethodArguments&) {
  workbook().AddSheet();
  return At(static_cast<int32_t>(workbook().active_sheet()) + 1);
}

const MemberTable<WorksheetObject>& WorksheetObject::Members() {
  static const MemberTable<WorksheetObject> table =
      MemberTable<WorksheetObject>(u"Worksheet")
          .Property(u"Name", &WorksheetObject::GetName, &WorksheetObject::PutName)
          .Property(u"Cells", &WorksheetObject::GetCells)
          .Property(u"Rows", &WorksheetObject::GetRows)
          .Property(u"Columns", &WorksheetObject::GetColumns)
          .Property(u"UsedRange", &WorksheetObject::GetUsedRange)
          .Method(u"Range", &WorksheetObject::Range, {u"Cell1", u"Cell2"})
          .Method(u"Activate", &WorksheetObject::Activate);
  return table;
}

void WorksheetObject::PutName(const Value& value) {
  constexpr size_t kLongestName = 31;
  const String name = value.ToText();
  const Sheets& sheets = workbook().sheets();
  const bool is_taken = std::any_of(sheets.begin(), sheets.end(), [&](const auto& other) {
    return other.get() != &sheet() && EqualIgnoringCase(other->name, name);
  });
  const bool is_valid = !name.empty() && name.size() <= kLongestName &&
                        name.find_first_of(u":\\/?*[]") == String::npos && name.front() != u'\'' &&
                        name.back() != u'\'';
  if (is_taken || !is_valid) {
    throw ExcelError(u"A sheet cannot be named \"" + name +
                     u"\". Give a name of 1 to 31 characters that no other sheet has, without : "
                     u"\\ / ? * [ ] and without an apostrophe at its ends.");
  }
  sheet().name = name;
  workbook().NoteEdit();
}

Value WorksheetObject::GetCells() { return MakeRange(owner(), Area()); }

Value WorksheetObject::GetRows() { return MakeRange(owner(), Area(), Unit::kRows); }

Value WorksheetObject::GetColumns() { return MakeRange(owner(), Area(), Unit::kColumns); }

Value WorksheetObject::GetUsedRange() { return MakeRange(owner(), sheet().UsedArea()); }

Value WorksheetObject::Range(const MethodArguments& arguments) {
  Area area = AreaOf(arguments.Require(0));
  if (arguments.Has(1)) {
    const Area other = AreaOf(arguments[1]);
    area = {std::min(area.top, other.top), std::min(area.left, other.left),
            std::max(area.bottom, other.bottom), std::max(area.right, other.right)};
  }
  return MakeRange(owner(), area);
}

Value WorksheetObject::Activate(const MethodArguments&) {
  const Sheets& sheets = workbook().sheets();
  const auto place = std::find(sheets.begin(), sheets.end(), owner().sheet);
  workbook().Activate(static_cast<size_t>(place - sheets.begin()));
  session().active = owner().workbook;
  return {};
}

const MemberTable<RangeObject>& RangeObject::Members() {
  static const MemberTable<RangeObject> table =
      MemberTable<RangeObject>(u"Range")
          .Property(u"", nullptr, &RangeObject::PutValue)
          .Method(u"", &RangeObject::Item, {u"RowIndex", u"ColumnIndex"})
          .Method(u"Item", &RangeObject::Item, {u"RowIndex", u"ColumnIndex"})
          .Property(u"Value", &RangeObject::GetValue, &RangeObject::PutValue)
          .Property(u"Value2", &RangeObject::GetValue2, &RangeObject::PutValue)
          .Property(u"Formula", &RangeObject::GetFormula, &RangeObject::PutValue)
          .Property(u"Text", &RangeObject::GetText)
          .Property(u"Font", &RangeObject::GetFont)
          .Property(u"Count", &RangeObject::GetCount)
          .Property(u"Row", &RangeObject::GetRow)
          .Property(u"Column", &RangeObject::GetColumn)
          .Property(u"Cells", &RangeObject::GetCells)
          .Property(u"Rows", &RangeObject::GetRows)
          .Property(u"Columns", &RangeObject::GetColumns)
          .Method(u"AutoFit", &RangeObject::AutoFit);
  return table;
}

Value RangeObject::ValueOf(const Cell* cell, bool with_dates) const {
  if (cell == nullptr) return {};
  return with_dates || !cell->value.IsDate() ? cell->value : Value(cell->value.ToDouble());
}

Value RangeObject::Values(bool with_dates) const {
  if (area_.Size() == 1) return ValueOf(sheet().Find(area_.top, area_.left), with_dates);
  RequireWalkable(area_);
  Value::Array rows;
  for (int32_t row = area_.top; row <= area_.bottom; ++row) {
    Value::Array line;
    for (int32_t column = area_.left; column <= area_.right; ++column) {
      line.push_back(ValueOf(sheet().Find(row, column), with_dates));
    }
    rows.emplace_back(std::move(line));
  }
  return rows;
}

Value RangeObject::GetValue() { return Values(true); }

Value RangeObject::GetValue2() { return Values(false); }

void RangeObject::PutValue(const Value& value) {
  RequireWalkable(area_);
  std::vector<Cell> entered;
  for (int32_t row = 0; row < area_.Height(); ++row) {
    for (int32_t column = 0; column < area_.Width(); ++column) {
      const Cell* before = sheet().Find(area_.top + row, area_.left + column);
      Cell cell = before == nullptr ? Cell() : *before;
      Enter(ElementFor(value, area_, row, column), session().number_signs, cell);
      entered.push_back(std::move(cell));
    }
  }
  for (size_t i = 0; i < entered.size(); ++i) {
    const auto row = static_cast<int32_t>(i) / area_.Width();
    const auto column = static_cast<int32_t>(i) % area_.Width();
    sheet().At(area_.top + row, area_.left + column) = std::move(entered[i]);
  }
  workbook().NoteEdit();
}

Value RangeObject::GetText() {
  const auto text_at = [&](int32_t row, int32_t column) {
    const Cell* cell = sheet().Find(row, column);
    return cell == nullptr ? String() : cell->text;
  };
  const String first = text_at(area_.top, area_.left);
  if (area_.Size() == 1) return first;
  RequireWalkable(area_);
  for (int32_t row = area_.top; row <= area_.bottom; ++row) {
    for (int32_t column = area_.left; column <= area_.right; ++column) {
      if (text_at(row, column) != first) return Value::Null();
    }
  }
  return first;
}

Value RangeObject::GetFormula() {
  const Value value = Values(false);
  return value.IsArray() ? value : Value(value.IsBoolean() ? GetText() : value.ToText());
}

Value RangeObject::GetFont() { return MakeObject<FontObject>(owner(), area_); }

Value RangeObject::GetCount() {
  if (unit_ == Unit::kRows) return area_.Height();
  return unit_ == Unit::kColumns ? Value(area_.Width()) : Value(area_.Size());
}

Value RangeObject::GetCells() { return MakeRange(owner(), area_); }

Value RangeObject::GetRows() { return MakeRange(owner(), area_, Unit::kRows); }

Value RangeObject::GetColumns() { return MakeRange(owner(), area_, Unit::kColumns); }

Value RangeObject::Item(const MethodArguments& arguments) {
  if (arguments.size() == 0) return GetValue();
  Area area = area_;
  int64_t row = 0;  // from 0, within the area
  int64_t column = 0;
  const bool is_cell = arguments.Has(1) || unit_ == Unit::kCells;
  if (arguments.Has(1)) {
    row = arguments.Require(0).ToLong() - int64_t{1};
    column = IndexOf(arguments[1]) - int64_t{1};
  } else if (unit_ == Unit::kColumns) {
    column = IndexOf(arguments.Require(0)) - int64_t{1};
  } else {
    const int64_t index = arguments.Require(0).ToLong() - int64_t{1};
    row = is_cell ? index / area_.Width() : index;
    column = is_cell ? index % area_.Width() : 0;
  }
  if (is_cell || unit_ == Unit::kRows) area.bottom = area.top;
  if (is_cell || unit_ == Unit::kColumns) area.right = area.left;
  const bool is_inside = area.top + row >= 1 && area.bottom + row <= kMostRows &&
                         area.left + column >= 1 && area.right + column <= kMostColumns;
  if (!is_inside) {
    throw ExcelError(
        u"Application-defined or object-defined error: a sheet has the rows 1 to "
        u"1,048,576 and the columns 1 to 16,384 (XFD).");
  }
  area.top += static_cast<int32_t>(row);
  area.bottom += static_cast<int32_t>(row);
  area.left += static_cast<int32_t>(column);
  area.right += static_cast<int32_t>(column);
  return MakeRange(owner(), area, is_cell ? Unit::kCells : unit_);
}

Value RangeObject::AutoFit(const MethodArguments&) {
  if (unit_ == Unit::kCells) {
    throw ExcelError(u"AutoFit method of Range class failed: it is for Rows and Columns.");
  }
  if (unit_ == Unit::kColumns) {
    sheet().FitColumns(area_);
    workbook().NoteEdit();
  }
  return {};
}

const MemberTable<FontObject>& FontObject::Members() {
  static const MemberTable<FontObject> table = MemberTable<FontObject>(u"Font").Property(
      u"Bold", &FontObject::GetBold, &FontObject::PutBold);
  return table;
}

Value FontObject::GetBold() {
  RequireWalkable(area_);
  int64_t bold = 0;
  for (int32_t row = area_.top; row <= area_.bottom; ++row) {
    for (int32_t column = area_.left; column <= area_.right; ++column) {
      const Cell* cell = sheet().Find(row, column);
      if (cell != nullptr && cell->style.bold) ++bold;
    }
  }
  return bold == 0 || bold == area_.Size() ? Value(bold != 0) : Value(Value::Null());
}

void FontObject::PutBold(const Value& value) {
  RequireWalkable(area_);
  const bool is_bold = value.ToBoolean();
  for (int32_t row = area_.top; row <= area_.bottom; ++row) {
    for (int32_t column = area_.left; column <= area_.right; ++column) {
      sheet().At(row, column).style.bold = is_bold;
    }
  }
  workbook().NoteEdit();
}

}  // namespace kestrelon::desktop::excel
