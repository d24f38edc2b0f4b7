#include "desktop/word/html/BlockWriter.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "automation/AutomationError.h"
#include "desktop/word/xml/XmlText.h"

namespace kestrelon::desktop::word::html {
namespace {

constexpr int32_t kNarrowest = 60;
constexpr size_t kMostMarkup = size_t{128} << 20;

std::string Number(int32_t number) { return std::to_string(number); }

std::string Hex(Color color) {
  std::array<char, 7> digits{};
  std::snprintf(digits.data(), digits.size(), "%06X", color & 0xFFFFFFU);
  return digits.data();
}

std::string Escaped(StringView text) {
  std::string xml;
  EncodeXml(WithoutForbidden(text), xml);
  for (size_t at = xml.find('"'); at != std::string::npos; at = xml.find('"', at)) {
    xml.replace(at, 1, "&quot;");
  }
  return xml;
}

}  // namespace

BlockWriter::BlockWriter(const InsertionPlace& place) : place_(place), width_(place.width) {}

void BlockWriter::Tag(std::string_view name, Attributes attributes, std::string_view end) {
  xml_.append("<").append(place_.prefix).append(name);
  for (const auto& [attribute, value] : attributes) {
    xml_.append(" ").append(place_.prefix).append(attribute).append("=\"");
    xml_.append(value).append("\"");
  }
  xml_ += end;
}

void BlockWriter::Close(std::string_view name) {
  xml_.append("</").append(place_.prefix).append(name).append(">");
}

void BlockWriter::Write(const std::vector<Block>& blocks) {
  bool after_table = false;
  for (const Block& block : blocks) {
    const auto* const table = std::get_if<Table>(&block);
    if (table == nullptr) {
      WriteParagraph(std::get<Paragraph>(block));
    } else {
      if (after_table) WriteSeparator();
      WriteTable(*table);
    }
    after_table = table != nullptr;
  }
}

void BlockWriter::WriteParagraph(const Paragraph& paragraph) {
  if (xml_.size() > kMostMarkup) {
    throw AutomationError(4198,
                          u"Command failed: the file is too large to be inserted into a document. "
                          u"Divide it into several files.");
  }
  Open("p");
  WriteParagraphStyle(paragraph);
  Link link;
  for (const Run& run : paragraph.runs) {
    if (run.link != link) {
      if (link != nullptr) Close("fldSimple");
      link = run.link;
      if (link != nullptr) WriteLinkStart(*link);
    }
    WriteRun(run);
  }
  if (link != nullptr) Close("fldSimple");
  Close("p");
}

void BlockWriter::WriteLinkStart(const std::string& link) {
  std::string target;
  for (const char c : link) {
    if (c == '"') {
      target += "%22";
    } else if (c == '\\') {
      target += "\\\\";
    } else {
      target += c;
    }
  }
  Open("fldSimple", {{"instr", " HYPERLINK " + Escaped(FromUtf8("\"" + target + "\"")) + " "}});
}

void BlockWriter::WriteParagraphStyle(const Paragraph& paragraph) {
  const ParagraphStyle& style = paragraph.style;
  Open("pPr");
  if (style.heading != 0) Empty("keepNext");
  if (style.rule) {
    Open("pBdr");
    Empty("bottom", {{"val", "single"}, {"sz", "6"}, {"space", "1"}, {"color", "auto"}});
    Close("pBdr");
  }
  WriteShading(style.background);
  Empty("spacing", {{"before", Number(style.before)},
                    {"after", Number(style.after)},
                    {"line", "240"},
                    {"lineRule", "auto"}});
  // The document's own style may indent, so that "none" has to be said as well.
  if (style.hanging != 0) {
    Empty("ind", {{Left(), Number(style.indent)}, {"hanging", Number(style.hanging)}});
  } else {
    Empty("ind", {{Left(), Number(style.indent)}, {"firstLine", "0"}});
  }
  constexpr std::array<std::string_view, 5> kAlign = {"", "", "center", "", "both"};
  const auto align = static_cast<size_t>(style.align);
  Empty("jc", {{"val", style.align == Align::kRight ? Right()
                       : kAlign[align].empty()      ? Left()
                                                    : kAlign[align]}});
  if (style.heading != 0) Empty("outlineLvl", {{"val", Number(style.heading - 1)}});
  WriteCharacterStyle(paragraph.mark);
  Close("pPr");
}

// As low as can be.
void BlockWriter::WriteSeparator() {
  Open("p");
  Open("pPr");
  Empty("spacing", {{"before", "0"}, {"after", "0"}, {"line", "20"}, {"lineRule", "exact"}});
  Open("rPr");
  Empty("sz", {{"val", "2"}});
  Close("rPr");
  Close("pPr");
  Close("p");
}

void BlockWriter::WriteRun(const Run& run) {
  Open("r");
  WriteCharacterStyle(run.style);
  const StringView text = run.text;
  for (size_t i = 0; i < text.size();) {
    if (text[i] == u'\v' || text[i] == u'\t') {
      Empty(text[i] == u'\v' ? "br" : "tab");
      ++i;
      continue;
    }
    const size_t end = std::min(text.find_first_of(u"\v\t", i), text.size());
    WriteText(text.substr(i, end - i));
    i = end;
  }
  Close("r");
}

void BlockWriter::WriteText(StringView text) {
  const bool blank_ends = text.front() == u' ' || text.back() == u' ';
  xml_.append("<").append(place_.prefix).append("t");
  xml_ += blank_ends ? " xml:space=\"preserve\">" : ">";
  EncodeXml(WithoutForbidden(text), xml_);
  Close("t");
}

void BlockWriter::WriteCharacterStyle(const CharacterStyle& style) {
  if (style == CharacterStyle()) return;
  Open("rPr");
  if (!style.font.empty()) {
    const std::string font = Escaped(FromUtf8(style.font));
    Empty("rFonts", {{"ascii", font}, {"hAnsi", font}, {"cs", font}});
  }
  if (style.bold) Empty("b");
  if (style.bold) Empty("bCs");
  if (style.italic) Empty("i");
  if (style.italic) Empty("iCs");
  if (style.capitals) Empty("caps");
  if (style.strike) Empty("strike");
  if (style.color) Empty("color", {{"val", Hex(*style.color)}});
  if (style.half_points != 0) {
    Empty("sz", {{"val", Number(style.half_points)}});
    Empty("szCs", {{"val", Number(style.half_points)}});
  }
  if (style.underline) Empty("u", {{"val", "single"}});
  WriteShading(style.background);
  if (style.position != Position::kBaseline) {
    Empty("vertAlign",
          {{"val", style.position == Position::kSubscript ? "subscript" : "superscript"}});
  }
  Close("rPr");
}

void BlockWriter::WriteShading(const std::optional<Color>& color) {
  if (color) Empty("shd", {{"val", "clear"}, {"color", "auto"}, {"fill", Hex(*color)}});
}

void BlockWriter::WriteBorder(std::string_view side, const Border& border) {
  if (border.eighths == 0) {
    Empty(side, {{"val", "nil"}});
    return;
  }
  Empty(side, {{"val", border.style},
               {"sz", Number(border.eighths)},
               {"space", "0"},
               {"color", border.color ? Hex(*border.color) : "auto"}});
}

void BlockWriter::WriteWidth(std::string_view name, int32_t width, std::string_view type) {
  Empty(name, {{"w", Number(width)}, {"type", type}});
}

void BlockWriter::WriteTable(const Table& table) {
  const ColumnWidths widths = WidthsOf(table, width_);
  Open("tbl");
  WriteTableStyle(table, widths);
  Open("tblGrid");
  for (const int32_t width : widths.columns) Empty("gridCol", {{"w", Number(width)}});
  Close("tblGrid");
  for (const Row& row : table.rows) WriteRow(table, row, widths);
  Close("tbl");
}

void BlockWriter::WriteTableStyle(const Table& table, const ColumnWidths& widths) {
  Open("tblPr");
  WriteWidth("tblW", widths.table, widths.table == 0 ? "auto" : "dxa");
  if (table.align == Align::kCenter) Empty("jc", {{"val", "center"}});
  if (table.align == Align::kRight) Empty("jc", {{"val", Right()}});
  if (table.indent != 0) WriteWidth("tblInd", table.indent, "dxa");
  const std::array<std::pair<std::string_view, Side>, 4> sides = {
      {{"top", kTop}, {Left(), kLeft}, {"bottom", kBottom}, {Right(), kRight}}};
  Open("tblBorders");
  for (const auto& [name, side] : sides) {
    WriteBorder(name, table.borders[side].value_or(Border()));
  }
  WriteBorder("insideH", table.grid.value_or(Border()));
  WriteBorder("insideV", table.grid.value_or(Border()));
  Close("tblBorders");
  Empty("tblLayout", {{"type", table.is_fixed ? "fixed" : "autofit"}});
  Open("tblCellMar");
  for (const auto& [name, side] : sides) WriteWidth(name, table.padding, "dxa");
  Close("tblCellMar");
  Close("tblPr");
}

void BlockWriter::WriteRow(const Table& table, const Row& row, const ColumnWidths& widths) {
  const Cell& last = row.cells.back();
  const size_t missing = widths.columns.size() - (last.column + last.columns);
  Open("tr");
  if (row.is_header || row.height != 0 || missing != 0) {
    Open("trPr");
    if (missing != 0) {
      Cell gap;
      gap.column = last.column + last.columns;
      gap.columns = missing;
      Empty("gridAfter", {{"val", Number(static_cast<int32_t>(missing))}});
      WriteWidth("wAfter", widths.Of(gap), "dxa");
    }
    if (row.height != 0) Empty("trHeight", {{"val", Number(row.height)}, {"hRule", "atLeast"}});
    if (row.is_header) Empty("tblHeader");
    Close("trPr");
  }
  for (const Cell& cell : row.cells) WriteCell(table, cell, widths);
  Close("tr");
}

void BlockWriter::WriteCell(const Table& table, const Cell& cell, const ColumnWidths& widths) {
  const std::array<std::pair<std::string_view, Side>, 4> sides = {
      {{"top", kTop}, {Left(), kLeft}, {"bottom", kBottom}, {Right(), kRight}}};
  const int32_t width = widths.Of(cell);
  const bool is_known = widths.table != 0 || widths.IsAsked(cell);
  Open("tc");
  Open("tcPr");
  WriteWidth("tcW", is_known ? width : 0, is_known ? "dxa" : "auto");
  if (cell.columns > 1) Empty("gridSpan", {{"val", Number(static_cast<int32_t>(cell.columns))}});
  if (cell.rows > 1) Empty("vMerge", {{"val", cell.goes_on ? "continue" : "restart"}});
  if (cell.borders != Sides<Border>()) {
    Open("tcBorders");
    for (const auto& [name, side] : sides) {
      if (cell.borders[side]) WriteBorder(name, *cell.borders[side]);
    }
    Close("tcBorders");
  }
  WriteShading(cell.background);
  if (cell.no_wrap) Empty("noWrap");
  if (cell.padding != Sides<int32_t>()) {
    Open("tcMar");
    for (const auto& [name, side] : sides) {
      if (cell.padding[side]) WriteWidth(name, *cell.padding[side], "dxa");
    }
    Close("tcMar");
  }
  constexpr std::array<std::string_view, 4> kVertical = {"top", "top", "center", "bottom"};
  Empty("vAlign", {{"val", kVertical[static_cast<size_t>(cell.vertical)]}});
  Close("tcPr");
  const int32_t padding =
      cell.padding[kLeft].value_or(table.padding) + cell.padding[kRight].value_or(table.padding);
  const int32_t outer = std::exchange(width_, std::max(width - padding, kNarrowest));
  Write(cell.blocks);
  if (std::holds_alternative<Table>(cell.blocks.back())) WriteSeparator();
  width_ = outer;
  Close("tc");
}

}  // namespace kestrelon::desktop::word::html
