#include "desktop/word/document/BlockInsertion.h"

#include <algorithm>
#include <charconv>

#include "desktop/word/document/ParagraphEditor.h"
#include "desktop/word/document/StoryReader.h"
#include "desktop/word/document/WordErrors.h"

namespace kestrelon::desktop::word {
namespace {

// Between the margins of a page that says nothing of its size, and at the sides of a cell.
constexpr int32_t kUsualWidth = 9026;
constexpr int32_t kUsualCellMargins = 216;
constexpr int32_t kNarrowest = 300;

// What a part must not exceed to be read again; elements within leaves are counted by the margin.
constexpr size_t kDeepest = 256 - 2;
constexpr size_t kMostMarkup = size_t{128} << 20;

AutomationError CannotInsert(const String& why) {
  return {CannotEditRange().number(), u"The text cannot be inserted: " + why};
}

bool MaySplit(Name name) {
  switch (name) {
    case Name::kRun:
    case Name::kHyperlink:
    case Name::kInserted:
    case Name::kMovedTo:
    case Name::kSmartTag:
    case Name::kCustomXml:
    case Name::kDirection:
    case Name::kBidirectional:
      return true;
    default:
      return false;
  }
}

bool Contains(const XmlTree& tree, NodeId around, NodeId node) {
  while (node != kNoNode && node != around) node = tree.parent(node);
  return node == around;
}

}  // namespace

BlockInsertion::BlockInsertion(StoryText& story, int32_t position)
    : story_(story),
      tree_(story.tree()),
      index_(story.Locate(position).index),
      offset_(story.Locate(position).offset),
      behind_(story.At(index_)) {
  if (behind_.mark == Mark::kRow || !CanSplit()) throw CannotEditRange();
}

// The first piece that does not end before the place; the one that the place is in.
size_t BlockInsertion::PieceBehind() const {
  const auto& pieces = behind_.pieces;
  size_t i = 0;
  while (i < pieces.size() && pieces[i].end() <= offset_) ++i;
  return i;
}

// What holds the characters on both sides of the place has to be an element that may be cut in two.
bool BlockInsertion::CanSplit() const {
  const auto& pieces = behind_.pieces;
  if (offset_ == 0 || offset_ >= behind_.text.size()) return true;
  const size_t behind = PieceBehind();
  const bool is_within = pieces[behind].begin < offset_;
  if (is_within && pieces[behind].kind != PieceKind::kText) return false;
  const NodeId before = pieces[is_within ? behind : behind - 1].node;
  for (NodeId around = tree_.parent(pieces[behind].node); around != behind_.node;
       around = tree_.parent(around)) {
    if (!MaySplit(tree_.name(around)) && Contains(tree_, around, before)) return false;
  }
  return true;
}

InsertionPlace BlockInsertion::Describe() {
  const NodeId node = behind_.node == kNoNode ? behind_.container : behind_.node;
  InsertionPlace place;
  place.prefix = tree_.EnsurePrefix(node);
  place.strict = tree_.NamespaceOf(node).starts_with("http://purl.oclc.org/");
  place.width = behind_.cell == nullptr ? WidthOfPage() : WidthOfCell(*behind_.cell);
  return place;
}

int32_t BlockInsertion::WidthOfCell(const Cell& cell) {
  const NodeId node = behind_.cell == &cell ? behind_.container : kNoNode;
  const NodeId properties = node == kNoNode ? kNoNode : tree_.Child(node, Name::kCellProperties);
  const NodeId width = properties == kNoNode ? kNoNode : tree_.ChildNamed(properties, "tcW");
  if (width != kNoNode && tree_.Attribute(width, "type") == "dxa") {
    return std::max(TwipsOf(properties, "tcW", "w") - kUsualCellMargins, kNarrowest);
  }
  const Cell* const outer = cell.table().parent();
  const int32_t around = outer == nullptr ? WidthOfPage() : WidthOfCell(*outer);
  const int32_t columns = std::max(cell.table().ColumnCount(), 1);
  return std::max(around / columns - kUsualCellMargins, kNarrowest);
}

int32_t BlockInsertion::WidthOfPage() {
  NodeId section = kNoNode;
  for (size_t i = index_; i < story_.Count() && section == kNoNode; ++i) {
    if (story_.At(i).mark != Mark::kSection) continue;
    section = tree_.Child(tree_.Child(story_.At(i).node, Name::kParagraphProperties),
                          Name::kSectionProperties);
  }
  const NodeId body = tree_.Child(tree_.root(), Name::kBody);
  if (section == kNoNode && body != kNoNode) section = tree_.Child(body, Name::kSectionProperties);
  if (section == kNoNode) return kUsualWidth;
  const int32_t page = TwipsOf(section, "pgSz", "w");
  const int32_t width =
      page - TwipsOf(section, "pgMar", "left") - TwipsOf(section, "pgMar", "right");
  return page == 0 || width < kNarrowest ? kUsualWidth : width;
}

// 0 where it is not said.
int32_t BlockInsertion::TwipsOf(NodeId parent, std::string_view element,
                                std::string_view attribute) const {
  const NodeId node = tree_.ChildNamed(parent, element);
  const std::string text =
      node == kNoNode ? std::string() : tree_.Attribute(node, attribute).value_or("");
  constexpr int32_t kWidest = 31680;  // 22 inches, the widest page there is
  int32_t value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return std::clamp(value, 0, kWidest);
}

std::vector<NodeId> BlockInsertion::Prepare(const BlockSource& source) {
  const NodeId parent = behind_.node == kNoNode ? behind_.container : tree_.parent(behind_.node);
  const std::string markup = source(Describe());
  if (markup.size() > kMostMarkup) {
    throw CannotInsert(u"it is too large for a document. Insert it in several parts.");
  }
  const XmlTree::Fragment fragment = tree_.NewElements(parent, markup);
  if (tree_.DepthOf(parent) + fragment.height > kDeepest) {
    throw CannotInsert(u"its tables nest too deep for this place. Put fewer tables into tables.");
  }
  return fragment.elements;
}

Span BlockInsertion::Execute(std::vector<NodeId> blocks) {
  blocks_ = std::move(blocks);
  const int32_t position = story_.StartOf(behind_) + static_cast<int32_t>(offset_);
  if (blocks_.empty()) return {position, position};
  const int32_t before = story_.length();
  const NodeId place = ParagraphEditor(story_, behind_).EnsureParagraph();
  std::unique_ptr<Paragraph> head = offset_ == 0 ? nullptr : SplitHead();
  if (head == nullptr) SeparateTables();
  for (const NodeId block : blocks_) tree_.Insert(tree_.parent(place), place, block);
  if (head != nullptr) JoinFirst(*head);

  StoryContent added;
  StoryReader(tree_, added).ReadInserted(blocks_, behind_);
  if (head != nullptr) added.paragraphs.insert(added.paragraphs.begin(), std::move(head));
  MoveAnchors(*added.paragraphs.front());
  Splice(std::move(added.paragraphs), std::move(added.tables));
  story_.part().Touch(place);
  return {position, position + story_.length() - before};
}

// What stands before the place, as a paragraph of its own.
std::unique_ptr<Paragraph> BlockInsertion::SplitHead() {
  const NodeId split = FirstNodeBehind();
  auto head = std::make_unique<Paragraph>();
  head->node = HeadLike();
  tree_.Insert(tree_.parent(behind_.node), behind_.node, head->node);
  for (NodeId child = tree_.first_child(behind_.node); child != split;) {
    const NodeId next = tree_.next(child);
    if (tree_.name(child) != Name::kParagraphProperties) {
      tree_.Remove(child);
      tree_.Insert(head->node, kNoNode, child);
    }
    child = next;
  }
  head->container = behind_.container;
  head->has_fields = behind_.has_fields;
  head->flow = behind_.flow;
  head->cell = behind_.cell;
  const auto first = behind_.pieces.begin() + static_cast<ptrdiff_t>(PieceBehind());
  head->pieces.assign(behind_.pieces.begin(), first);
  head->text = behind_.text.substr(0, offset_);
  behind_.pieces.erase(behind_.pieces.begin(), first);
  behind_.text.erase(0, offset_);
  behind_.units.reset();
  for (Piece& piece : behind_.pieces) piece.begin -= static_cast<uint32_t>(offset_);
  return head;
}

// The child of the paragraph that the second half begins with; kNoNode when nothing is left for it.
NodeId BlockInsertion::FirstNodeBehind() {
  if (offset_ == behind_.text.size()) return kNoNode;
  ParagraphEditor(story_, behind_).SplitAt(offset_);
  const size_t index = PieceBehind();
  const NodeId before = behind_.pieces[index - 1].node;
  NodeId node = behind_.pieces[index].node;
  for (NodeId around = tree_.parent(node); around != behind_.node;
       node = around, around = tree_.parent(around)) {
    if (!Contains(tree_, around, before)) continue;
    const NodeId front = tree_.NewEmptyLike(around);
    tree_.Insert(tree_.parent(around), around, front);
    for (NodeId child = tree_.first_child(around); child != node;) {
      const NodeId next = tree_.next(child);
      if (tree_.name(child) == Name::kRunProperties) {
        tree_.Insert(front, kNoNode, tree_.CopyOf(child));
      } else {
        tree_.Remove(child);
        tree_.Insert(front, kNoNode, child);
      }
      child = next;
    }
  }
  return node;
}

// An empty paragraph like the one at the place; the end of a section stays with that one.
NodeId BlockInsertion::HeadLike() {
  const NodeId head = tree_.NewEmptyLike(behind_.node);
  const NodeId properties = tree_.Child(behind_.node, Name::kParagraphProperties);
  if (properties == kNoNode) return head;
  const NodeId copy = tree_.NewEmptyLike(properties);
  for (NodeId child = tree_.first_child(properties); child != kNoNode; child = tree_.next(child)) {
    if (tree_.name(child) != Name::kSectionProperties) {
      tree_.Insert(copy, kNoNode, tree_.CopyOf(child));
    }
  }
  tree_.Insert(head, kNoNode, copy);
  return head;
}

// The text of a paragraph that the blocks begin with goes on where the first half ends.
void BlockInsertion::JoinFirst(Paragraph& head) {
  const NodeId first = blocks_.front();
  if (tree_.name(first) != Name::kParagraph) return;
  StoryContent read;
  StoryReader(tree_, read).ReadInserted({first}, behind_);
  const Paragraph& joined = *read.paragraphs.front();
  for (Piece piece : joined.pieces) {
    piece.begin += static_cast<uint32_t>(head.text.size());
    head.pieces.push_back(piece);
  }
  head.text += joined.text;
  for (NodeId child = tree_.first_child(first); child != kNoNode;) {
    const NodeId next = tree_.next(child);
    tree_.Remove(child);
    if (tree_.name(child) != Name::kParagraphProperties) tree_.Insert(head.node, kNoNode, child);
    child = next;
  }
  tree_.Remove(first);
  blocks_.erase(blocks_.begin());
}

// Tables that nothing separates are one table for a word processor.
void BlockInsertion::SeparateTables() {
  if (tree_.name(blocks_.front()) != Name::kTable || index_ == 0) return;
  const Paragraph& before = story_.At(index_ - 1);
  if (before.mark != Mark::kRow || before.cell != behind_.cell) return;
  const std::string name = std::string(tree_.Prefix(behind_.node)) + "p";
  blocks_.insert(blocks_.begin(),
                 tree_.NewElement(Name::kParagraph, "<" + name + ">", "</" + name + ">"));
}

// Ends of tracked spans at the place stay before what is inserted.
void BlockInsertion::MoveAnchors(Paragraph& front) {
  for (TrackedEnds* anchors : story_.tracked_) {
    for (TrackedEnd* anchor : {&anchors->start, &anchors->end}) {
      if (anchor->paragraph != &behind_) continue;
      if (anchor->offset <= offset_) {
        anchor->paragraph = &front;
      } else {
        anchor->offset -= offset_;
      }
    }
  }
}

void BlockInsertion::Splice(std::vector<std::unique_ptr<Paragraph>> paragraphs,
                            std::vector<std::unique_ptr<Table>> tables) {
  auto& all_tables = story_.content_.tables;
  const auto begins_before = [&](const std::unique_ptr<Table>& table, size_t index) {
    return story_.IndexOf(table->FirstParagraph()) <= index;
  };
  const auto next = std::lower_bound(all_tables.begin(), all_tables.end(), index_, begins_before);
  for (const auto& table : tables) table->text_ = &story_;
  all_tables.insert(next, std::make_move_iterator(tables.begin()),
                    std::make_move_iterator(tables.end()));
  for (const auto& paragraph : paragraphs) story_.length_ += paragraph->length();
  story_.length_ -= static_cast<int32_t>(offset_);
  story_.known_ = std::min(story_.known_, index_);
  if (story_.searched_.index >= index_) story_.searched_ = {};
  auto& all = story_.content_.paragraphs;
  all.insert(all.begin() + static_cast<ptrdiff_t>(index_),
             std::make_move_iterator(paragraphs.begin()),
             std::make_move_iterator(paragraphs.end()));
}

}  // namespace kestrelon::desktop::word
