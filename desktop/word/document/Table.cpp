#include "desktop/word/document/Table.h"

#include "desktop/word/document/StoryReader.h"
#include "desktop/word/document/StoryText.h"
#include "desktop/word/document/WordErrors.h"

namespace kestrelon::desktop::word {
namespace {

NodeId FirstBelow(const XmlTree& tree, NodeId parent, Name name) {
  for (NodeId child = tree.first_child(parent); child != kNoNode; child = tree.next(child)) {
    if (tree.name(child) == name) return child;
    const NodeId inside = FirstBelow(tree, child, name);
    if (inside != kNoNode) return inside;
  }
  return kNoNode;
}

// Makes a row like another one, without its text.
class RowCopy {
 public:
  explicit RowCopy(XmlTree& tree) : tree_(tree) {}

  NodeId Make(NodeId row) {
    const NodeId copy = tree_.NewEmptyLike(row);
    for (NodeId child = tree_.first_child(row); child != kNoNode; child = tree_.next(child)) {
      if (tree_.name(child) == Name::kTableExceptions) Append(copy, tree_.CopyOf(child));
      if (tree_.name(child) == Name::kRowProperties) Append(copy, RowProperties(child));
    }
    AppendCells(row, copy);
    return copy;
  }

 private:
  void Append(NodeId parent, NodeId child) { tree_.Insert(parent, kNoNode, child); }

  // A row of data is neither a heading nor a tracked change because the one above it is.
  NodeId RowProperties(NodeId properties) {
    const NodeId copy = tree_.NewEmptyLike(properties);
    for (NodeId child = tree_.first_child(properties); child != kNoNode;
         child = tree_.next(child)) {
      const Name name = tree_.name(child);
      const bool dropped =
          name == Name::kTableHeader || name == Name::kInserted || name == Name::kDeleted;
      if (!dropped) Append(copy, tree_.CopyOf(child));
    }
    return copy;
  }

  void AppendCells(NodeId from, NodeId row) {
    for (NodeId child = tree_.first_child(from); child != kNoNode; child = tree_.next(child)) {
      const Name name = tree_.name(child);
      if (name == Name::kCell) {
        Append(row, CellLike(child));
      } else if (name == Name::kControl || name == Name::kControlContent ||
                 name == Name::kCustomXml) {
        AppendCells(child, row);
      }
    }
  }

  NodeId CellLike(NodeId cell) {
    const NodeId copy = tree_.NewEmptyLike(cell);
    const NodeId properties = tree_.Child(cell, Name::kCellProperties);
    if (properties != kNoNode) Append(copy, tree_.CopyOf(properties));
    const NodeId paragraph = FirstBelow(tree_, cell, Name::kParagraph);
    Append(copy,
           paragraph == kNoNode ? NewLike(cell, Name::kParagraph, "p") : ParagraphLike(paragraph));
    return copy;
  }

  NodeId ParagraphLike(NodeId paragraph) {
    const NodeId copy = tree_.NewEmptyLike(paragraph);
    const NodeId properties = tree_.Child(paragraph, Name::kParagraphProperties);
    if (properties != kNoNode) Append(copy, tree_.CopyOf(properties));
    const NodeId run = FirstRun(tree_, paragraph);
    const NodeId formatting = run == kNoNode ? kNoNode : tree_.Child(run, Name::kRunProperties);
    if (formatting == kNoNode) return copy;
    const NodeId empty = NewLike(paragraph, Name::kRun, "r");
    Append(empty, tree_.CopyOf(formatting));
    Append(copy, empty);
    return copy;
  }

  NodeId NewLike(NodeId node, Name name, std::string_view local) {
    const std::string qualified = std::string(tree_.Prefix(node)).append(local);
    return tree_.NewElement(name, "<" + qualified + ">", "</" + qualified + ">");
  }

  XmlTree& tree_;
};

}  // namespace

StoryText& Cell::text() const {
  table_.RequireUsable();
  return *table_.text_;
}

Story& Cell::story() const { return text().story(); }

// The one that is only content of the cell need not be looked for.
bool Cell::HasOneParagraph() const {
  const XmlTree& tree = text().tree();
  if (last_->node == kNoNode || tree.parent(last_->node) != node_) return false;
  for (NodeId child = tree.first_child(node_); child != kNoNode; child = tree.next(child)) {
    const Name name = tree.name(child);
    if (name != Name::kGap && name != Name::kCellProperties && child != last_->node) return false;
  }
  return true;
}

Paragraph& Cell::FirstParagraph() const {
  StoryText& story = text();
  const auto lies_within = [&](const Paragraph& paragraph) {
    const Cell* cell = paragraph.cell;
    while (cell != nullptr && cell != this) cell = cell->table().parent();
    return cell == this;
  };
  size_t index = story.IndexOf(*last_);
  while (index > 0 && lies_within(story.At(index - 1))) --index;
  return story.At(index);
}

Span Cell::span() const {
  StoryText& story = text();
  return {story.StartOf(FirstParagraph()), story.StartOf(*last_) + last_->length()};
}

String Cell::Text() const {
  if (HasOneParagraph()) return last_->text + u"\r\a";
  return text().Text(span());
}

void Cell::SetText(StringView text) {
  if (HasOneParagraph()) return this->text().SetText(*last_, text);
  const Span all = span();
  this->text().Replace({all.start, all.end - 1}, text);
}

void Table::RequireUsable() const {
  if (deleted_) throw ObjectDeleted();
}

int32_t Table::RowCount() const {
  RequireUsable();
  return static_cast<int32_t>(rows_.size());
}

int32_t Table::ColumnCount() const {
  RequireUsable();
  return static_cast<int32_t>(widest_);
}

Cell* Table::CellAt(int32_t row, int32_t column) const {
  RequireUsable();
  if (row < 1 || static_cast<size_t>(row) > rows_.size()) throw NoSuchMember();
  const auto& cells = rows_[static_cast<size_t>(row) - 1].cells;
  if (column < 1 || static_cast<size_t>(column) > cells.size()) throw NoSuchMember();
  return cells[static_cast<size_t>(column) - 1].get();
}

Paragraph& Table::FirstParagraph() const {
  const Row& row = rows_.front();
  return row.cells.empty() ? *row.mark : row.cells.front()->FirstParagraph();
}

Span Table::span() const {
  RequireUsable();
  const Paragraph& mark = LastMark();
  return {text_->StartOf(FirstParagraph()), text_->StartOf(mark) + mark.length()};
}

void Table::AddRow() {
  RequireUsable();
  XmlTree& tree = text_->tree();
  // The copy belongs to the table itself, whatever content control holds the row above it.
  NodeId last = rows_.back().node;
  const NodeId copy = RowCopy(tree).Make(last);
  while (tree.parent(last) != node_) last = tree.parent(last);
  tree.InsertAfter(last, copy);
  text_->AppendRow(*this, copy, LastMark());
}

}  // namespace kestrelon::desktop::word
