#include "desktop/word/document/StoryReader.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "desktop/word/xml/XmlText.h"

namespace kestrelon::desktop::word {
namespace {

bool IsPicture(Name name) {
  return name == Name::kDrawing || name == Name::kPicture || name == Name::kObject;
}

// Elements whose inside belongs to the text around them.
bool IsTransparent(Name name) {
  switch (name) {
    case Name::kInserted:
    case Name::kMovedTo:
    case Name::kHyperlink:
    case Name::kSmartTag:
    case Name::kCustomXml:
    case Name::kSimpleField:
    case Name::kDirection:
    case Name::kBidirectional:
    case Name::kControl:
    case Name::kControlContent:
      return true;
    default:
      return false;
  }
}

}  // namespace

NodeId FirstRun(const XmlTree& tree, NodeId parent) {
  for (NodeId child = tree.first_child(parent); child != kNoNode; child = tree.next(child)) {
    const Name name = tree.name(child);
    if (name == Name::kRun) return child;
    const NodeId inside = IsTransparent(name) ? FirstRun(tree, child) : kNoNode;
    if (inside != kNoNode) return inside;
  }
  return kNoNode;
}

void StoryReader::ReadContainer(NodeId container) {
  container_ = container;
  ReadBlocks(container);
  EndContainer(container, Mark::kParagraph);
  ++flow_;
}

void StoryReader::ReadBlocks(NodeId parent) {
  for (NodeId node = tree_.first_child(parent); node != kNoNode; node = tree_.next(node)) {
    ReadBlock(node);
  }
}

void StoryReader::ReadBlock(NodeId node) {
  const Name name = tree_.name(node);
  if (name == Name::kParagraph) {
    ReadParagraph(node);
  } else if (name == Name::kTable) {
    ReadTable(node);
  } else if (name == Name::kAlternateContent) {
    ReadBlocks(Branch(node));
  } else if (IsTransparent(name)) {
    ReadBlocks(node);
  }
}

void StoryReader::ReadInserted(const std::vector<NodeId>& blocks, const Paragraph& place) {
  container_ = place.container;
  cell_ = place.cell;
  flow_ = place.flow;
  for (const NodeId block : blocks) ReadBlock(block);
}

Paragraph& StoryReader::AddParagraph(NodeId node) {
  Paragraph& paragraph = *content_.paragraphs.emplace_back(std::make_unique<Paragraph>());
  paragraph.node = node;
  paragraph.container = container_;
  paragraph.cell = cell_;
  paragraph.flow = flow_;
  return paragraph;
}

void StoryReader::ReadParagraph(NodeId node) {
  paragraph_ = &AddParagraph(node);
  const NodeId properties = tree_.Child(node, Name::kParagraphProperties);
  if (properties != kNoNode) {
    const NodeId section = tree_.Child(properties, Name::kSectionProperties);
    if (section != kNoNode) {
      paragraph_->mark = Mark::kSection;
      content_.sections.push_back(section);
    }
  }
  ReadInline(node);
}

// The last paragraph of a container carries its mark; where there is none, because the file is not
// as it should be, one without a node stands in for it.
void StoryReader::EndContainer(NodeId container, Mark mark) {
  const auto& paragraphs = content_.paragraphs;
  const bool ends_well = !paragraphs.empty() && paragraphs.back()->container == container &&
                         paragraphs.back()->mark != Mark::kRow &&
                         paragraphs.back()->mark != Mark::kCell && !paragraphs.back()->is_last;
  Paragraph& last = ends_well ? *paragraphs.back() : AddParagraph(kNoNode);
  last.is_last = true;
  if (mark == Mark::kCell) last.mark = mark;
}

void StoryReader::ReadTable(NodeId node) {
  Table& table = *content_.tables.emplace_back(new Table(node, cell_));
  ReadRows(table, node);
  if (table.rows_.empty()) content_.tables.pop_back();
}

void StoryReader::ReadRows(Table& table, NodeId parent) {
  for (NodeId node = tree_.first_child(parent); node != kNoNode; node = tree_.next(node)) {
    const Name name = tree_.name(node);
    if (name == Name::kRow) {
      ReadRow(table, node);
    } else if (name == Name::kAlternateContent) {
      ReadRows(table, Branch(node));
    } else if (IsTransparent(name)) {
      ReadRows(table, node);
    }
  }
}

void StoryReader::ReadRow(Table& table, NodeId row) {
  const NodeId outer = std::exchange(container_, tree_.parent(row));
  cell_ = table.parent_;
  table.rows_.push_back({row, {}, nullptr});
  ReadCells(table, row);
  container_ = outer;
  Paragraph& mark = AddParagraph(kNoNode);
  mark.mark = Mark::kRow;
  mark.table = &table;
  table.rows_.back().mark = &mark;
  table.widest_ = std::max(table.widest_, table.rows_.back().cells.size());
}

void StoryReader::ReadCells(Table& table, NodeId parent) {
  for (NodeId node = tree_.first_child(parent); node != kNoNode; node = tree_.next(node)) {
    const Name name = tree_.name(node);
    if (name == Name::kCell) {
      ReadCell(table, node);
    } else if (name == Name::kAlternateContent) {
      ReadCells(table, Branch(node));
    } else if (IsTransparent(name)) {
      ReadCells(table, node);
    }
  }
}

void StoryReader::ReadCell(Table& table, NodeId node) {
  Cell& cell = *table.rows_.back().cells.emplace_back(new Cell(table, node));
  const NodeId outer = std::exchange(container_, node);
  cell_ = &cell;
  ReadBlocks(node);
  EndContainer(node, Mark::kCell);
  cell.last_ = content_.paragraphs.back().get();
  cell_ = table.parent_;
  container_ = outer;
}

void StoryReader::ReadInline(NodeId parent) {
  for (NodeId node = tree_.first_child(parent); node != kNoNode; node = tree_.next(node)) {
    const Name name = tree_.name(node);
    if (name == Name::kRun) {
      ReadRunContent(node);
    } else if (name == Name::kAlternateContent) {
      ReadInline(Branch(node));
    } else if (name == Name::kMath || name == Name::kMathParagraph) {
      AddObject(node);
    } else if (IsTransparent(name)) {
      ReadInline(node);
    }
  }
}

void StoryReader::ReadRunContent(NodeId parent) {
  for (NodeId node = tree_.first_child(parent); node != kNoNode; node = tree_.next(node)) {
    ReadRunChild(node);
  }
}

void StoryReader::ReadRunChild(NodeId node) {
  switch (tree_.name(node)) {
    case Name::kText:
      return AddText(node, PieceKind::kText);
    case Name::kFieldCode:
      return AddText(node, PieceKind::kFieldCode);
    case Name::kFieldCharacter:
      return ReadFieldCharacter(node);
    case Name::kTab:
    case Name::kPositionedTab:
      return AddUnit(node, PieceKind::kCharacter, kTabUnit);
    case Name::kCarriageReturn:
      return AddUnit(node, PieceKind::kCharacter, kLineBreakUnit);
    case Name::kBreak: {
      const std::string type = tree_.Attribute(node, "type").value_or("");
      return AddUnit(node, PieceKind::kCharacter,
                     type == "page"     ? kPageBreakUnit
                     : type == "column" ? kColumnBreakUnit
                                        : kLineBreakUnit);
    }
    case Name::kNoBreakHyphen:
      return AddUnit(node, PieceKind::kCharacter, kNoBreakHyphenUnit);
    case Name::kSoftHyphen:
      return AddUnit(node, PieceKind::kCharacter, kSoftHyphenUnit);
    case Name::kSymbol: {
      const std::string code = tree_.Attribute(node, "char").value_or("");
      uint16_t unit = kObjectUnit;
      std::from_chars(code.data(), code.data() + code.size(), unit, 16);
      return AddObject(node, unit < 0x20 ? kObjectUnit : static_cast<char16_t>(unit));
    }
    case Name::kFootnoteReference:
    case Name::kEndnoteReference:
    case Name::kFootnoteMark:
    case Name::kEndnoteMark:
      return AddObject(node, kNoteUnit);
    case Name::kDrawing:
    case Name::kPicture:
    case Name::kObject:
      FindTextBoxes(node);
      return AddObject(node);
    case Name::kRuby:
      return AddObject(node);
    case Name::kAlternateContent:
      return ReadRunAlternative(node);
    default:
      return;
  }
}

// A drawing is one object with all its copies; anything else is read as what the run holds.
void StoryReader::ReadRunAlternative(NodeId node) {
  const NodeId branch = Branch(node);
  for (NodeId child = tree_.first_child(branch); child != kNoNode; child = tree_.next(child)) {
    if (IsPicture(tree_.name(child))) {
      PairTextBoxes(node);
      return AddObject(node);
    }
  }
  ReadRunContent(branch);
}

void StoryReader::ReadFieldCharacter(NodeId node) {
  const std::string type = tree_.Attribute(node, "fldCharType").value_or("");
  paragraph_->has_fields = true;
  if (type == "begin") return AddUnit(node, PieceKind::kFieldBegin, kFieldBeginUnit);
  if (type == "end") return AddUnit(node, PieceKind::kFieldEnd, kFieldEndUnit);
  AddUnit(node, PieceKind::kFieldSeparator, kFieldSeparatorUnit);
}

// Blanks at the ends count only where the file says so.
void StoryReader::AddText(NodeId node, PieceKind kind) {
  std::string_view raw = tree_.LeafContent(node);
  constexpr std::string_view kBlanks = " \t\r\n";
  const bool blank_ends = !raw.empty() && (kBlanks.find(raw.front()) != std::string_view::npos ||
                                           kBlanks.find(raw.back()) != std::string_view::npos);
  if (blank_ends && tree_.Attribute(node, "space") != "preserve") {
    const size_t first = raw.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return;
    raw = raw.substr(first, raw.find_last_not_of(kBlanks) + 1 - first);
  }
  String& text = paragraph_->text;
  const auto begin = static_cast<uint32_t>(text.size());
  DecodeXml(raw, text);
  if (text.size() == begin) return;
  if (kind == PieceKind::kFieldCode) paragraph_->has_fields = true;
  paragraph_->pieces.push_back({begin, static_cast<uint32_t>(text.size() - begin), node, kind});
}

void StoryReader::AddUnit(NodeId node, PieceKind kind, char16_t unit) {
  const auto begin = static_cast<uint32_t>(paragraph_->text.size());
  paragraph_->pieces.push_back({begin, 1, node, kind});
  paragraph_->text += unit;
}

void StoryReader::AddObject(NodeId node, char16_t unit) { AddUnit(node, PieceKind::kObject, unit); }

// The branch of an alternative that stands for it; the alternative itself, which holds nothing
// directly, when none does.
NodeId StoryReader::Branch(NodeId alternative) const {
  for (NodeId child = tree_.first_child(alternative); child != kNoNode; child = tree_.next(child)) {
    const Name name = tree_.name(child);
    if ((name == Name::kChoice || name == Name::kFallback) && HoldsContent(child)) return child;
  }
  return alternative;
}

bool StoryReader::HoldsContent(NodeId node) const {
  for (NodeId child = tree_.first_child(node); child != kNoNode; child = tree_.next(child)) {
    const Name name = tree_.name(child);
    const bool is_content = name == Name::kParagraph || name == Name::kTable ||
                            name == Name::kText || name == Name::kTab || name == Name::kBreak ||
                            name == Name::kSymbol || name == Name::kRow || name == Name::kCell ||
                            name == Name::kMath || IsPicture(name);
    if (is_content || HoldsContent(child)) return true;
  }
  return false;
}

void StoryReader::FindTextBoxes(NodeId node) {
  for (NodeId child = tree_.first_child(node); child != kNoNode; child = tree_.next(child)) {
    if (tree_.name(child) == Name::kTextBoxContent) {
      content_.text_boxes.push_back({child, kNoNode});
    } else if (tree_.name(child) == Name::kAlternateContent) {
      PairTextBoxes(child);
    } else {
      FindTextBoxes(child);
    }
  }
}

// The n-th text box of each branch is the same one.
void StoryReader::PairTextBoxes(NodeId alternative) {
  std::vector<NodeId> modern;
  std::vector<NodeId> fallback;
  for (NodeId child = tree_.first_child(alternative); child != kNoNode; child = tree_.next(child)) {
    if (tree_.name(child) == Name::kFallback) {
      CollectTextBoxes(child, fallback);
    } else if (modern.empty()) {
      CollectTextBoxes(child, modern);
    }
  }
  if (modern.empty()) modern.swap(fallback);
  for (size_t i = 0; i < modern.size(); ++i) {
    content_.text_boxes.push_back({modern[i], i < fallback.size() ? fallback[i] : kNoNode});
  }
}

void StoryReader::CollectTextBoxes(NodeId node, std::vector<NodeId>& boxes) const {
  if (tree_.name(node) == Name::kTextBoxContent) {
    boxes.push_back(node);
    return;
  }
  for (NodeId child = tree_.first_child(node); child != kNoNode; child = tree_.next(child)) {
    CollectTextBoxes(child, boxes);
  }
}

}  // namespace kestrelon::desktop::word
