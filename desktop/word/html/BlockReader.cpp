#include "desktop/word/html/BlockReader.h"

#include <algorithm>
#include <utility>

#include "desktop/word/html/CssValue.h"
#include "desktop/word/html/ListMarker.h"
#include "desktop/word/html/TableReader.h"

namespace kestrelon::desktop::word::html {
namespace {

constexpr int32_t kHanging = 360;

}  // namespace

void BlockReader::ReadContent(const xmlNode& element, const ElementStyle& style) {
  block_ = style.inherited;
  ReadChildren(element, style.inherited);
  EndParagraph();
}

std::vector<Block> BlockReader::Take(bool is_cell) {
  if (is_cell && !blocks_.empty() && !margin_is_own_) margin_ = 0;
  if (!blocks_.empty()) {
    if (auto* last = std::get_if<Paragraph>(&blocks_.back())) {
      last->style.after = std::max(last->style.after, margin_);
    }
  }
  margin_ = 0;
  return std::exchange(blocks_, {});
}

void BlockReader::ReadStray(const xmlNode& node, const Inherited& around) {
  block_ = around;
  ReadNode(node, around);
  EndParagraph();
}

void BlockReader::ReadChildren(const xmlNode& parent, const Inherited& inherited) {
  for (const xmlNode* child = parent.children; child != nullptr; child = child->next) {
    ReadNode(*child, inherited);
  }
}

void BlockReader::ReadNode(const xmlNode& node, const Inherited& inherited) {
  if (IsText(node)) text_.Add(FromUtf8(TextOf(node)), inherited);
  if (node.type == XML_ELEMENT_NODE) ReadElement(node, inherited);
}

void BlockReader::ReadElement(const xmlNode& element, const Inherited& around) {
  const std::string_view name = NameOf(element);
  if (IsSkipped(name)) return;
  if (name == "br") return text_.AddBreak(around);
  const ElementStyle style = StyleOf(element, around, page_.sheet);
  if (style.box.hidden) return;
  if (name == "img") {
    text_.Add(FromUtf8(AttributeOf(element, "alt")), style.inherited);
  } else if (name == "hr") {
    AddRule(style.inherited);
  } else if (name == "table") {
    ReadTable(element, style);
  } else if (IsBlock(name)) {
    ReadBlock(element, style);
  } else {
    ReadChildren(element, style.inherited);
  }
}

void BlockReader::ReadBlock(const xmlNode& element, const ElementStyle& style) {
  EndParagraph();
  const std::string_view name = NameOf(element);
  const Box& box = style.box;
  const auto add_margin = [&](Side side) {
    const int32_t margin = box.margins[side].value_or(0);
    margin_is_own_ = margin > margin_ ? box.own_margins : margin_is_own_;
    margin_ = std::max(margin_, margin);
  };
  add_margin(kTop);
  const bool is_list = name == "ul" || name == "ol" || name == "menu" || name == "dir";
  const List list = list_;
  if (is_list) {
    list_ = {name == "ol",
             static_cast<int32_t>(std::clamp(
                 ParseLength(AttributeOf(element, "start"), 0).value / 15, 0.0, 100000.0))};
    if (!HasAttribute(element, "start")) list_.next = 1;
  }
  Inherited outer = std::exchange(block_, style.inherited);
  const int32_t heading = std::exchange(heading_, box.heading == 0 ? heading_ : box.heading);
  if (name == "li") StartItem(element, style.inherited);
  ReadChildren(element, style.inherited);
  EndParagraph();
  if (name == "li") EndItem(style.inherited);
  block_ = std::move(outer);
  heading_ = heading;
  if (is_list) list_ = list;
  add_margin(kBottom);
}

void BlockReader::StartItem(const xmlNode& element, const Inherited& inherited) {
  if (const Length value = ParseLength(AttributeOf(element, "value"), 0); value.IsTwips()) {
    list_.next = static_cast<int32_t>(value.value / 15);
  }
  marker_ = ListMarker(list_.is_ordered, list_.next++, inherited.list_style);
}

// An item without any text shows its marker all the same.
void BlockReader::EndItem(const Inherited& inherited) {
  if (marker_.empty()) return;
  Paragraph paragraph;
  paragraph.style.indent = inherited.indent;
  paragraph.mark = inherited.text;
  AddParagraph(std::move(paragraph));
}

void BlockReader::AddRule(const Inherited& inherited) {
  EndParagraph();
  Paragraph paragraph;
  paragraph.style.rule = true;
  paragraph.style.indent = inherited.indent;
  AddParagraph(std::move(paragraph));
}

void BlockReader::ReadTable(const xmlNode& element, const ElementStyle& style) {
  EndParagraph();
  TableReader reader(page_);
  std::vector<Block> before = reader.Read(element, style);
  for (Block& block : before) blocks_.push_back(std::move(block));
  Table table = reader.Take();
  if (table.rows.empty()) return;
  table.indent = block_.indent;
  if (margin_ > 0 && !blocks_.empty()) {
    if (auto* last = std::get_if<Paragraph>(&blocks_.back())) {
      last->style.after = std::max(last->style.after, margin_);
    }
  }
  margin_ = 0;
  blocks_.push_back(std::move(table));
}

void BlockReader::EndParagraph() {
  if (text_.empty()) return;
  Paragraph paragraph;
  paragraph.runs = text_.Take();
  paragraph.mark = paragraph.runs.empty() ? block_.text : paragraph.runs.back().style;
  paragraph.style.align = block_.align;
  paragraph.style.indent = block_.indent;
  paragraph.style.background = block_.block_background;
  paragraph.style.heading = heading_;
  AddParagraph(std::move(paragraph));
}

void BlockReader::AddParagraph(Paragraph paragraph) {
  if (!marker_.empty()) {
    CharacterStyle style = paragraph.runs.empty() ? paragraph.mark : paragraph.runs.front().style;
    paragraph.style.hanging = std::min(kHanging, paragraph.style.indent);
    paragraph.runs.insert(paragraph.runs.begin(),
                          {std::exchange(marker_, {}), std::move(style), nullptr});
  }
  paragraph.style.before = blocks_.empty() && !margin_is_own_ ? 0 : margin_;
  margin_ = 0;
  margin_is_own_ = false;
  blocks_.push_back(std::move(paragraph));
}

}  // namespace kestrelon::desktop::word::html
