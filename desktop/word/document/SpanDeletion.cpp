#include "desktop/word/document/SpanDeletion.h"

#include <algorithm>

#include "desktop/word/document/ParagraphEditor.h"
#include "desktop/word/document/WordErrors.h"

namespace kestrelon::desktop::word {
namespace {

int DepthOf(const Cell* cell) {
  int depth = 0;
  for (; cell != nullptr; cell = cell->table().parent()) ++depth;
  return depth;
}

}  // namespace

SpanDeletion::SpanDeletion(StoryText& story, Span span)
    : story_(story), tree_(story.tree()), span_(span) {
  do {
    if (span_.start >= span_.end) return;
    first_ = story_.Locate(span_.start);
    last_ = story_.Locate(span_.end - 1);
  } while (LeaveLastMark());
  if (story_.At(first_.index).flow != story_.At(last_.index).flow) throw CannotEditRange();
  FindCommonCell();
  CheckTables();
}

// The last mark of a story stays, and so does that of a cell that is emptied as a whole.
bool SpanDeletion::LeaveLastMark() {
  const Paragraph& last = story_.At(last_.index);
  if (last_.offset < last.text.size() || !last.is_last) return false;
  if (last.mark == Mark::kCell) {
    if (last.cell->span().start != span_.start) return false;
  } else if (story_.At(first_.index).flow != last.flow) {
    return false;
  }
  --span_.end;
  return true;
}

void SpanDeletion::FindCommonCell() {
  Cell* a = story_.At(first_.index).cell;
  Cell* b = story_.At(last_.index).cell;
  int depth_a = DepthOf(a);
  int depth_b = DepthOf(b);
  for (; depth_a > depth_b; --depth_a) a = a->table().parent();
  for (; depth_b > depth_a; --depth_b) b = b->table().parent();
  while (a != b) {
    a = a->table().parent();
    b = b->table().parent();
  }
  common_ = a;
}

bool SpanDeletion::IsDirect(const Paragraph& paragraph) const {
  return paragraph.cell == common_ && paragraph.mark != Mark::kRow;
}

Table* SpanDeletion::TableInCommonCell(const Paragraph& paragraph) const {
  Table* table = StoryText::TableAround(paragraph);
  while (table != nullptr && table->parent() != common_) table = &table->parent()->table();
  return table;
}

void SpanDeletion::CheckTables() {
  for (size_t i = first_.index; i <= last_.index; ++i) {
    const Paragraph& paragraph = story_.At(i);
    if (IsDirect(paragraph)) {
      const bool takes_mark = i < last_.index || last_.offset == paragraph.text.size();
      if (paragraph.mark == Mark::kCell && takes_mark) throw CannotEditRange();
      continue;
    }
    Table* const table = TableInCommonCell(paragraph);
    const size_t begin = story_.IndexOf(table->FirstParagraph());
    const size_t end = story_.IndexOf(table->LastMark());
    const bool whole =
        begin >= first_.index && end <= last_.index && (begin > first_.index || first_.offset == 0);
    if (!whole) throw CannotEditRange();
    tables_.push_back(table);
    i = end;
  }
}

bool SpanDeletion::LeavesParagraph() const {
  const Paragraph& last = story_.At(last_.index);
  if (IsDirect(last) && last_.offset < last.text.size()) return true;
  return last_.index + 1 < story_.Count() && IsDirect(story_.At(last_.index + 1));
}

void SpanDeletion::Execute() {
  if (span_.start >= span_.end) return;
  Paragraph& first = story_.At(first_.index);
  Paragraph& last = story_.At(last_.index);
  if (&first == &last && last_.offset < last.text.size()) {
    ParagraphEditor(story_, first).Replace(first_.offset, last_.offset + 1, {});
    return;
  }
  Paragraph* const survivor = FindSurvivor();
  if (survivor != nullptr) {
    const bool ends_within = survivor == &last;
    MergeInto(*survivor, ends_within ? std::min(last_.offset + 1, last.text.size()) : 0);
    return;
  }
  // A table follows, which cannot take up what is left of the first paragraph.
  const bool keeps_first = IsDirect(first) && (first_.offset > 0 || FollowsTable());
  if (keeps_first) {
    ParagraphEditor(story_, first).Replace(first_.offset, first.text.size(), {});
    MoveAnchors(first, first_.offset);
  } else {
    MoveAnchors(story_.At(last_.index + 1), 0);
  }
  RemoveItems(first_.index + keeps_first, last_.index + 1);
}

bool SpanDeletion::FollowsTable() const {
  if (first_.index == 0) return false;
  const Paragraph& before = story_.At(first_.index - 1);
  return before.mark == Mark::kRow && before.cell == common_;
}

// The paragraph whose mark ends what is left: the last one when its mark stays, else the one behind
// it. A table there cannot be it: then the last paragraph keeps its mark, unless nothing is left to
// be ended and no other table precedes. nullptr when there is none.
Paragraph* SpanDeletion::FindSurvivor() {
  Paragraph& last = story_.At(last_.index);
  const bool is_direct = IsDirect(last);
  if (is_direct && last_.offset < last.text.size()) return &last;
  Paragraph& behind = story_.At(last_.index + 1);
  if (IsDirect(behind) && behind.flow == last.flow) return &behind;
  const bool leaves_nothing =
      (first_.offset == 0 || !IsDirect(story_.At(first_.index))) && !FollowsTable();
  return is_direct && !leaves_nothing ? &last : nullptr;
}

void SpanDeletion::MergeInto(Paragraph& survivor, size_t cut) {
  Paragraph& first = story_.At(first_.index);
  ParagraphEditor(story_, survivor).Replace(&survivor == &first ? first_.offset : 0, cut, {});
  if (&survivor == &first) return;
  const bool has_head = IsDirect(first);
  if (has_head) {
    ParagraphEditor(story_, first).Replace(first_.offset, first.text.size(), {});
  }
  const size_t end = story_.IndexOf(survivor);
  const size_t kept = has_head ? first.text.size() : 0;
  // From the last to the first, because each goes to the front.
  for (size_t i = end; i-- > first_.index;) {
    Paragraph& paragraph = story_.At(i);
    if (!IsDirect(paragraph)) continue;
    if (i != first_.index) {
      ParagraphEditor(story_, paragraph).Replace(0, paragraph.text.size(), {});
    }
    MoveChildren(paragraph, survivor);
    MoveText(paragraph, survivor);
  }
  MoveAnchors(survivor, kept);
  RemoveItems(first_.index, end);
}

// What the deletion has left of a paragraph, its anchors and kept fields among it, goes on in the
// survivor.
void SpanDeletion::MoveChildren(const Paragraph& from, Paragraph& to) {
  const NodeId target = ParagraphEditor(story_, to).EnsureParagraph();
  const NodeId properties = tree_.Child(target, Name::kParagraphProperties);
  const NodeId before = properties == kNoNode ? tree_.first_child(target) : tree_.next(properties);
  for (NodeId child = tree_.first_child(from.node); child != kNoNode;) {
    const NodeId next = tree_.next(child);
    if (tree_.name(child) != Name::kParagraphProperties) {
      tree_.Remove(child);
      tree_.Insert(target, before, child);
    }
    child = next;
  }
}

void SpanDeletion::MoveText(Paragraph& from, Paragraph& to) {
  const auto count = static_cast<uint32_t>(from.text.size());
  for (Piece& piece : to.pieces) piece.begin += count;
  to.pieces.insert(to.pieces.begin(), from.pieces.begin(), from.pieces.end());
  to.text.insert(0, from.text);
  to.units.reset();
  to.has_fields = to.has_fields || from.has_fields;
  for (TrackedEnds* anchors : story_.tracked_) {
    for (auto* anchor : {&anchors->start, &anchors->end}) {
      if (anchor->paragraph == &to) anchor->offset += count;
      if (anchor->paragraph == &from) anchor->paragraph = &to;
    }
  }
  from.text.clear();
  from.pieces.clear();
}

// Ends of tracked spans in what goes collapse to where the deletion was.
void SpanDeletion::MoveAnchors(Paragraph& survivor, size_t kept) {
  for (TrackedEnds* anchors : story_.tracked_) {
    for (auto* anchor : {&anchors->start, &anchors->end}) {
      if (anchor->paragraph == &survivor) continue;
      const size_t index = story_.IndexOf(*anchor->paragraph);
      if (index >= first_.index && index <= last_.index) *anchor = {&survivor, kept};
    }
  }
}

void SpanDeletion::RemoveItems(size_t begin, size_t end) {
  auto& paragraphs = story_.content_.paragraphs;
  const Paragraph& first = *paragraphs[first_.index];
  story_.ForgetFrom(first, first_.offset);
  for (size_t i = begin; i < end; ++i) {
    const Paragraph& paragraph = *paragraphs[i];
    story_.length_ -= paragraph.length();
    if (IsDirect(paragraph)) RemoveParagraphNode(paragraph.node);
  }
  for (Table* table : tables_) RemoveTable(*table);
  paragraphs.erase(paragraphs.begin() + static_cast<ptrdiff_t>(begin),
                   paragraphs.begin() + static_cast<ptrdiff_t>(end));
  story_.known_ = std::min(story_.known_, begin);
  story_.part().edited = true;
}

// A content control that is left without a paragraph goes with it.
void SpanDeletion::RemoveParagraphNode(NodeId node) {
  NodeId around = tree_.parent(node);
  tree_.Remove(node);
  while (tree_.name(around) == Name::kControlContent) {
    for (NodeId child = tree_.first_child(around); child != kNoNode; child = tree_.next(child)) {
      if (tree_.name(child) != Name::kGap) return;
    }
    const NodeId control = tree_.parent(around);
    around = tree_.parent(control);
    tree_.Remove(control);
  }
}

void SpanDeletion::RemoveTable(Table& table) {
  tree_.Remove(table.node_);
  auto& tables = story_.content_.tables;
  const auto lies_within = [&](const Table* inner) {
    while (inner != &table && inner->parent() != nullptr) inner = &inner->parent()->table();
    return inner == &table;
  };
  for (auto& one : tables) {
    if (!lies_within(one.get())) continue;
    one->deleted_ = true;
    story_.deleted_tables_.push_back(std::move(one));
  }
  std::erase(tables, nullptr);
}

}  // namespace kestrelon::desktop::word
