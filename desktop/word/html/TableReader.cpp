#include "desktop/word/html/TableReader.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "automation/AutomationError.h"
#include "desktop/word/html/CssValue.h"

namespace kestrelon::desktop::word::html {
namespace {

constexpr size_t kMostColumns = 63;     // of a table in a document
constexpr size_t kWidestLayout = 1000;  // columns of a page, most of which no cell may begin in
constexpr size_t kTallestCell = 65534;
constexpr int32_t kUsualPadding = 15;

size_t CountOf(const xmlNode& element, const char* attribute, size_t most) {
  const std::string_view text = TrimBlanks(AttributeOf(element, attribute));
  size_t count = 1;
  std::from_chars(text.data(), text.data() + text.size(), count);
  return std::min(count, most);
}

[[noreturn]] void RefuseColumns(size_t columns) {
  throw AutomationError(4198, u"Command failed: a table of the HTML file has " +
                                  FromUtf8(std::to_string(columns)) +
                                  u" columns, and a table of a document holds at most 63. Divide "
                                  u"it into several tables.");
}

}  // namespace

std::vector<Block> TableReader::Read(const xmlNode& element, const ElementStyle& style) {
  ReadTableStyle(element, style);
  ReadRows(element, {style.inherited, style.box.background});
  for (Row& row : footer_) table_.rows.push_back(std::move(row));
  DropUnusedColumns();
  return stray_.Take(/*is_cell=*/false);
}

void TableReader::ReadTableStyle(const xmlNode& element, const ElementStyle& style) {
  const Box& box = style.box;
  const std::string_view border = AttributeOf(element, "border");
  if (HasAttribute(element, "border") && TrimBlanks(border) != "0") {
    const Length width = ParseLength(border, 0);
    const double twips = width.IsTwips() ? width.value : 15;
    Border line;
    line.eighths = static_cast<int32_t>(std::clamp(twips * 0.4, 2.0, 96.0));
    table_.borders.fill(line);
    line.eighths = 6;
    table_.grid = line;
    if (const auto color = ParseColor(AttributeOf(element, "bordercolor"))) {
      for (auto& side : table_.borders) side->color = color;
      table_.grid->color = color;
    }
  }
  for (size_t side = 0; side < 4; ++side) {
    if (box.borders[side]) table_.borders[side] = box.borders[side];
  }
  table_.width = box.width;
  table_.is_fixed = box.is_fixed;
  table_.padding = ParseTwips(AttributeOf(element, "cellpadding"), 0).value_or(kUsualPadding);
  const std::string align = Lower(TrimBlanks(AttributeOf(element, "align")));
  table_.align = style.inherited.table_align;
  if (align == "center" || box.auto_margins) table_.align = Align::kCenter;
  if (align == "right") table_.align = Align::kRight;
  if (align == "left") table_.align = Align::kLeft;
}

void TableReader::ReadRows(const xmlNode& parent, const RowStyle& around) {
  for (const xmlNode* child = parent.children; child != nullptr; child = child->next) {
    const std::string_view name = NameOf(*child);
    if (name == "tr") {
      ReadRow(*child, around);
    } else if (name == "form") {
      ReadRows(*child, around);
    } else if (name == "thead" || name == "tbody" || name == "tfoot") {
      const ElementStyle style = StyleOf(*child, around.inherited, page_.sheet);
      if (style.box.hidden) continue;
      RowStyle section = {style.inherited, style.box.background, name == "thead", name == "tfoot"};
      if (!section.background) section.background = around.background;
      ReadRows(*child, section);
      hanging_.clear();  // cells end with their section
    } else if (name == "colgroup" || name == "col") {
      ReadColumns(*child, around.inherited);
    } else if (name == "td" || name == "th") {
      ReadRow(*child, around);
    } else {
      ReadStray(*child, around.inherited);
    }
  }
}

void TableReader::ReadColumns(const xmlNode& element, const Inherited& inherited) {
  bool has_columns = false;
  for (const xmlNode* child = element.children; child != nullptr; child = child->next) {
    if (NameOf(*child) != "col") continue;
    has_columns = true;
    ReadColumns(*child, inherited);
  }
  if (has_columns) return;
  const Length width = StyleOf(element, inherited, page_.sheet).box.width;
  const size_t count = CountOf(element, "span", kWidestLayout);
  const size_t total = std::min(column_widths_.size() + count, kWidestLayout);
  column_widths_.resize(total, width);
}

void TableReader::ReadStray(const xmlNode& node, const Inherited& inherited) {
  const bool is_text = IsText(node);
  if (is_text && TrimBlanks(TextOf(node)).empty()) return;
  if (is_text || node.type == XML_ELEMENT_NODE) stray_.ReadStray(node, inherited);
}

// A cell without a row is one.
void TableReader::ReadRow(const xmlNode& element, const RowStyle& around) {
  const bool is_row = NameOf(element) == "tr";
  const ElementStyle style =
      is_row ? StyleOf(element, around.inherited, page_.sheet) : ElementStyle{around.inherited, {}};
  if (style.box.hidden) return;
  row_ = {around.is_header, style.box.height, {}};
  column_ = 0;
  if (is_row) {
    for (const xmlNode* child = element.children; child != nullptr; child = child->next) {
      const std::string_view name = NameOf(*child);
      if (name == "td" || name == "th") {
        AddCell(*child, style, around);
      } else {
        ReadStray(*child, style.inherited);
      }
    }
  } else {
    AddCell(element, style, around);
  }
  EndRow();
  if (row_.cells.empty()) return;
  (around.is_footer ? footer_ : table_.rows).push_back(std::move(row_));
}

void TableReader::AddCell(const xmlNode& element, const ElementStyle& row, const RowStyle& around) {
  const ElementStyle style = StyleOf(element, row.inherited, page_.sheet);
  if (style.box.hidden) return;
  ContinueCells(NextFreeColumn());
  const Box& box = style.box;
  Cell cell;
  cell.column = column_;
  cell.columns = std::max<size_t>(CountOf(element, "colspan", kWidestLayout), 1);
  cell.rows = CountOf(element, "rowspan", kTallestCell);
  if (cell.rows == 0) cell.rows = kTallestCell;
  cell.no_wrap = box.no_wrap;
  cell.width = box.width;
  cell.vertical = style.inherited.vertical;
  cell.background = box.background       ? box.background
                    : row.box.background ? row.box.background
                                         : around.background;
  cell.borders = box.borders;
  for (const Side side : {kTop, kBottom}) {
    if (!cell.borders[side]) cell.borders[side] = row.box.borders[side];
  }
  cell.padding = box.padding;
  row_.height = std::max(row_.height, box.height);
  // A cell does not reach over one that hangs down from above.
  for (size_t i = 1; i < cell.columns; ++i) {
    const size_t column = cell.column + i;
    if (column < hanging_.size() && hanging_[column].rows_left > 0) cell.columns = i;
  }
  const size_t end = cell.column + cell.columns;
  if (end > kWidestLayout) RefuseColumns(end);
  if (hanging_.size() < end) hanging_.resize(end);
  if (begins_.size() < end) begins_.resize(end);
  begins_[cell.column] = true;
  Paragraph empty;
  empty.style.align = style.inherited.align;
  empty.mark = style.inherited.text;
  if (cell.rows > 1) {
    for (size_t i = cell.column; i < end; ++i) hanging_[i].rows_left = cell.rows;
    Cell& below = hanging_[cell.column].cell = cell;
    below.goes_on = true;
    below.blocks.emplace_back(empty);
  }
  column_ = end;
  BlockReader content(page_);
  content.ReadContent(element, style);
  cell.blocks = content.Take(/*is_cell=*/true);
  if (cell.blocks.empty()) cell.blocks.emplace_back(std::move(empty));
  AppendCell(std::move(cell));
}

void TableReader::AppendCell(Cell cell) {
  if (page_.cells_left == 0) {
    throw AutomationError(4198,
                          u"Command failed: the HTML file has more than a million table cells. "
                          u"Divide it into several files.");
  }
  --page_.cells_left;
  row_.cells.push_back(std::move(cell));
}

size_t TableReader::NextFreeColumn() {
  size_t column = column_;
  while (column < hanging_.size() && hanging_[column].rows_left > 0) ++column;
  return column;
}

// The cells from above that hang down into the columns before `until`, and empty ones in gaps.
void TableReader::ContinueCells(size_t until) {
  while (column_ < until) {
    Cell cell;
    const bool hangs = column_ < hanging_.size() && hanging_[column_].rows_left > 0;
    if (hangs && hanging_[column_].cell.goes_on) {
      cell = hanging_[column_].cell;
    } else {
      cell.column = column_;
      if (begins_.size() <= column_) begins_.resize(column_ + 1);
      begins_[column_] = true;
      cell.blocks.emplace_back(Paragraph());
    }
    column_ = cell.column + cell.columns;
    AppendCell(std::move(cell));
  }
}

void TableReader::EndRow() {
  size_t end = column_;
  for (size_t i = column_; i < hanging_.size(); ++i) {
    if (hanging_[i].rows_left > 0) end = i + 1;
  }
  if (!row_.cells.empty() || end > 0) ContinueCells(end);
  for (Hanging& one : hanging_) {
    if (one.rows_left > 0 && --one.rows_left == 0) one.cell = {};
  }
}

// Columns that no cell begins in belong to the one before.
void TableReader::DropUnusedColumns() {
  std::vector<size_t> places(begins_.size() + 1);
  for (size_t i = 0; i < begins_.size(); ++i) places[i + 1] = places[i] + (begins_[i] ? 1 : 0);
  const size_t count = places.back();
  if (count > kMostColumns) RefuseColumns(count);
  table_.columns.resize(count);
  for (size_t i = 0; i < std::min(column_widths_.size(), begins_.size()); ++i) {
    if (places[i + 1] == 0) continue;
    Length& width = table_.columns[places[i + 1] - 1];
    if (!width.IsSet() || width.unit == column_widths_[i].unit) {
      width = {column_widths_[i].unit, width.value + column_widths_[i].value};
    }
  }
  for (Row& row : table_.rows) {
    for (Cell& cell : row.cells) {
      const size_t end = places[cell.column + cell.columns];
      cell.column = places[cell.column];
      cell.columns = end - cell.column;
    }
  }
}

}  // namespace kestrelon::desktop::word::html
