// Writes blocks as the markup of a document.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "desktop/word/document/InsertionPlace.h"
#include "desktop/word/html/ColumnWidths.h"
#include "desktop/word/html/HtmlBlocks.h"

namespace kestrelon::desktop::word::html {

class BlockWriter {
 public:
  explicit BlockWriter(const InsertionPlace& place);

  // Tables that follow one another get a paragraph between them, because they would become one.
  void Write(const std::vector<Block>& blocks);
  std::string Take() { return std::move(xml_); }

 private:
  void WriteParagraph(const Paragraph& paragraph);
  void WriteParagraphStyle(const Paragraph& paragraph);
  void WriteSeparator();
  void WriteRun(const Run& run);
  void WriteText(StringView text);
  void WriteCharacterStyle(const CharacterStyle& style);
  void WriteLinkStart(const std::string& link);

  void WriteTable(const Table& table);
  void WriteTableStyle(const Table& table, const ColumnWidths& widths);
  void WriteRow(const Table& table, const Row& row, const ColumnWidths& widths);
  void WriteCell(const Table& table, const Cell& cell, const ColumnWidths& widths);
  void WriteBorder(std::string_view side, const Border& border);
  void WriteWidth(std::string_view name, int32_t width, std::string_view type);
  void WriteShading(const std::optional<Color>& color);

  // "<w:NAME" for Open and Empty; the attributes follow as pairs of name and value.
  using Attributes = std::initializer_list<std::pair<std::string_view, std::string_view>>;
  void Tag(std::string_view name, Attributes attributes, std::string_view end);
  void Open(std::string_view name, Attributes attributes = {}) { Tag(name, attributes, ">"); }
  void Empty(std::string_view name, Attributes attributes = {}) { Tag(name, attributes, "/>"); }
  void Close(std::string_view name);
  // The strict form has other names for the sides.
  std::string_view Left() const { return place_.strict ? "start" : "left"; }
  std::string_view Right() const { return place_.strict ? "end" : "right"; }

  const InsertionPlace& place_;
  int32_t width_;  // for text, where the writer is
  std::string xml_;
};

}  // namespace kestrelon::desktop::word::html
