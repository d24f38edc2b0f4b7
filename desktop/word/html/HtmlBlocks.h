// What an HTML file says, as the blocks of a document. Measures are twentieths of a point unless
// they are said to be others.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "automation/Text.h"

namespace kestrelon::desktop::word::html {

using Color = uint32_t;  // 0xRRGGBB

enum class Align : uint8_t { kNone, kLeft, kCenter, kRight, kJustify };
enum class VerticalAlign : uint8_t { kNone, kTop, kMiddle, kBottom };
enum class Position : uint8_t { kBaseline, kSubscript, kSuperscript };

struct CharacterStyle {
  bool bold = false;
  bool italic = false;
  bool underline = false;
  bool strike = false;
  bool capitals = false;
  Position position = Position::kBaseline;
  int32_t half_points = 0;  // 0 for the size of the document's text
  std::string font;         // "" for the document's
  std::optional<Color> color;
  std::optional<Color> background;
  friend bool operator==(const CharacterStyle&, const CharacterStyle&) = default;
};

// The address of a link; null for none. Shared, because a link may hold any number of runs.
using Link = std::shared_ptr<const std::string>;

// Text of one look. Line breaks are "\v".
struct Run {
  String text;
  CharacterStyle style;
  Link link;
};

struct ParagraphStyle {
  Align align = Align::kNone;
  int32_t indent = 0;
  int32_t hanging = 0;
  int32_t before = 0;
  int32_t after = 0;
  int32_t heading = 0;  // its level; 0 for none
  bool rule = false;    // a line below
  std::optional<Color> background;
};

struct Paragraph {
  ParagraphStyle style;
  CharacterStyle mark;
  std::vector<Run> runs;
};

struct Length {
  enum class Unit : uint8_t { kNone, kTwips, kPercent } unit = Unit::kNone;
  double value = 0;

  bool IsSet() const { return unit != Unit::kNone; }
  bool IsPercent() const { return unit == Unit::kPercent; }
  bool IsTwips() const { return unit == Unit::kTwips; }
};

struct Border {
  friend bool operator==(const Border&, const Border&) = default;
  int32_t eighths = 0;  // of a point; 0 for none
  const char* style = "single";
  std::optional<Color> color;
};

// Sides in the order of CSS.
enum Side : size_t { kTop, kRight, kBottom, kLeft };
template <typename T>
using Sides = std::array<std::optional<T>, 4>;

struct Paragraph;
struct Table;
using Block = std::variant<Paragraph, Table>;

struct Cell {
  size_t column = 0;
  size_t columns = 1;
  size_t rows = 1;
  bool goes_on = false;  // the lower part of a cell that begins in a row above
  bool no_wrap = false;
  Length width;
  VerticalAlign vertical = VerticalAlign::kNone;
  std::optional<Color> background;
  Sides<Border> borders;
  Sides<int32_t> padding;
  std::vector<Block> blocks;
};

struct Row {
  bool is_header = false;
  int32_t height = 0;
  std::vector<Cell> cells;
};

struct Table {
  Length width;
  Align align = Align::kNone;
  bool is_fixed = false;
  int32_t padding = 15;
  int32_t indent = 0;
  Sides<Border> borders;
  std::optional<Border> grid;   // between the cells
  std::vector<Length> columns;  // as asked; as many as there are columns
  std::vector<Row> rows;
};

}  // namespace kestrelon::desktop::word::html
