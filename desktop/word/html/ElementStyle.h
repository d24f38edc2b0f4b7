// How an element looks: what its name means, its attributes, and its CSS, in this order.
#pragma once

#include "desktop/word/html/HtmlBlocks.h"
#include "desktop/word/html/StyleSheet.h"

namespace kestrelon::desktop::word::html {

// What the elements inside take over.
struct Inherited {
  CharacterStyle text;
  Align align = Align::kNone;
  Align table_align = Align::kNone;
  int32_t indent = 0;
  bool preserves = false;                           // white space
  VerticalAlign vertical = VerticalAlign::kMiddle;  // of cells
  std::optional<Color> block_background;
  std::string list_style;
  Link link;
};

// What is the element's alone.
struct Box {
  bool hidden = false;
  bool no_wrap = false;
  bool is_fixed = false;  // a table that does not grow with its content
  bool auto_margins = false;
  bool own_margins = false;  // said by the page
  int32_t heading = 0;
  Length width;
  int32_t height = 0;
  std::optional<Color> background;
  Sides<Border> borders;
  Sides<int32_t> padding;
  Sides<int32_t> margins;
};

struct ElementStyle {
  Inherited inherited;
  Box box;
};

bool IsBlock(std::string_view name);
// Elements that leave nothing in the text.
bool IsSkipped(std::string_view name);
// Of text whose size nothing says, in half-points.
constexpr int32_t kUsualSize = 24;

ElementStyle StyleOf(const xmlNode& element, const Inherited& around, const StyleSheet& sheet);

}  // namespace kestrelon::desktop::word::html
