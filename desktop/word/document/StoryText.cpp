#include "desktop/word/document/StoryText.h"

#include <algorithm>

#include "automation/AutomationError.h"
#include "desktop/word/document/BlockInsertion.h"
#include "desktop/word/document/ParagraphEditor.h"
#include "desktop/word/document/SpanDeletion.h"
#include "desktop/word/document/StoryReader.h"
#include "desktop/word/document/WordErrors.h"
#include "desktop/word/xml/XmlText.h"

namespace kestrelon::desktop::word {
namespace {

StringView MarkText(Mark mark) {
  switch (mark) {
    case Mark::kSection:
      return u"\f";
    case Mark::kCell:
    case Mark::kRow:
      return u"\r\a";
    default:
      return u"\r";
  }
}

// The whole element of a text piece.
std::string TextElement(const XmlTree& tree, NodeId node, StringView text) {
  const std::string name = std::string(tree.Prefix(node)) + "t";
  const bool blank_ends = !text.empty() && (text.front() == u' ' || text.back() == u' ');
  std::string element = "<" + name + (blank_ends ? " xml:space=\"preserve\">" : ">");
  EncodeXml(text, element);
  element += "</" + name + ">";
  return element;
}

}  // namespace

StoryText::StoryText(DocumentPart& part, const std::vector<NodeId>& containers) : part_(part) {
  StoryReader reader(part.tree, content_);
  for (const NodeId container : containers) reader.ReadContainer(container);
  for (const auto& paragraph : content_.paragraphs) length_ += paragraph->length();
  for (const auto& table : content_.tables) table->text_ = this;
  part_.texts.push_back(this);
}

StoryText::~StoryText() { std::erase(part_.texts, this); }

std::vector<Table*> StoryText::TopTables() const {
  std::vector<Table*> tables;
  for (const auto& table : content_.tables) {
    if (table->parent() == nullptr) tables.push_back(table.get());
  }
  return tables;
}

void StoryText::ExtendTo(size_t count) {
  for (; known_ < count; ++known_) {
    Paragraph& paragraph = At(known_);
    paragraph.index = static_cast<uint32_t>(known_);
    paragraph.start = known_ == 0 ? 0 : EndOf(known_ - 1);
  }
}

StoryText::Place StoryText::Locate(int32_t position) {
  const size_t last = Count() - 1;
  const int32_t last_start = length_ - At(last).length();
  if (position >= last_start) return {last, static_cast<size_t>(position - last_start)};
  while (known_ == 0 || EndOf(known_ - 1) <= position) ExtendTo(known_ + 1);
  const auto begin = content_.paragraphs.begin();
  const auto behind = std::upper_bound(
      begin, begin + static_cast<ptrdiff_t>(known_), position,
      [](int32_t value, const auto& paragraph) { return value < paragraph->start; });
  const auto index = static_cast<size_t>(behind - begin) - 1;
  return {index, static_cast<size_t>(position - At(index).start)};
}

size_t StoryText::IndexOf(const Paragraph& paragraph) {
  if (&At(Count() - 1) == &paragraph) return Count() - 1;
  while (paragraph.index >= known_ || &At(paragraph.index) != &paragraph) ExtendTo(known_ + 1);
  return paragraph.index;
}

int32_t StoryText::StartOf(const Paragraph& paragraph) {
  if (&At(Count() - 1) == &paragraph) return length_ - paragraph.length();
  return At(IndexOf(paragraph)).start;
}

void StoryText::CheckSpan(Span span) const {
  if (span.start < 0 || span.start > span.end || span.end > length_) throw ValueOutOfRange();
}

String StoryText::Text(Span span) {
  CheckSpan(span);
  String text;
  if (span.start == span.end) return text;
  Place place = Locate(span.start);
  for (auto left = static_cast<size_t>(span.end - span.start); left > 0;) {
    const Paragraph& paragraph = At(place.index);
    const size_t count = std::min(left, paragraph.text.size() - place.offset);
    text.append(paragraph.text, place.offset, count);
    left -= count;
    if (left == 0) break;
    text += MarkText(paragraph.mark);
    --left;
    place = {place.index + 1, 0};
  }
  return text;
}

Table* StoryText::TableAround(const Paragraph& paragraph) {
  if (paragraph.table != nullptr) return paragraph.table;
  return paragraph.cell == nullptr ? nullptr : &paragraph.cell->table();
}

bool StoryText::IsInTable(Span span) {
  CheckSpan(span);
  const auto top_table = [&](int32_t position) {
    Table* table = TableAround(At(Locate(position).index));
    while (table != nullptr && table->parent() != nullptr) table = &table->parent()->table();
    return table;
  };
  const Table* const first = top_table(span.start);
  return first != nullptr && first == top_table(std::max(span.start, span.end - 1));
}

Span StoryText::Replace(Span span, StringView text) {
  CheckSpan(span);
  const String before = mirror_ == nullptr ? String() : Text(span);
  const Span put = ReplaceHere(span, CleanText(text));
  EditMirror(span, before, text);
  return put;
}

Span StoryText::ReplaceHere(Span span, const String& clean) {
  span.end = std::max(span.start, std::min(span.end, length_ - 1));
  span.start = std::min(span.start, length_ - 1);
  const Place first = Locate(span.start);
  Paragraph& paragraph = At(first.index);
  if (paragraph.mark == Mark::kRow) throw CannotEditRange();
  const size_t end = first.offset + static_cast<size_t>(span.end - span.start);
  if (end <= paragraph.text.size()) {
    const size_t at = ParagraphEditor(*this, paragraph).Replace(first.offset, end, clean);
    const int32_t start = StartOf(paragraph) + static_cast<int32_t>(at);
    return {start, start + static_cast<int32_t>(clean.size())};
  }
  return ReplaceAcross(span, clean);
}

// What is refused is refused before anything changes.
Span StoryText::ReplaceAcross(Span span, const String& clean) {
  SpanDeletion deletion(*this, span);
  if (deletion.starts_with_table()) {
    deletion.Execute();
    return ReplaceHere({span.start, span.start}, clean);
  }
  const Place first = Locate(span.start);
  Paragraph& paragraph = At(first.index);
  const int32_t before = length_;
  const size_t at =
      ParagraphEditor(*this, paragraph).Replace(first.offset, paragraph.text.size(), clean);
  const int32_t start = StartOf(paragraph) + static_cast<int32_t>(at);
  const int32_t mark = StartOf(paragraph) + paragraph.length() - 1;
  SpanDeletion(*this, {mark, span.end + length_ - before}).Execute();
  return {start, start + static_cast<int32_t>(clean.size())};
}

void StoryText::Delete(Span span) {
  CheckSpan(span);
  if (mirror_ != nullptr && span.end <= mirror_->length() && mirror_->Text(span) == Text(span)) {
    mirror_->Delete(span);
  }
  SpanDeletion(*this, span).Execute();
}

// The blocks go before the span, which then goes; what is refused is refused before anything
// changes. A span that starts with a table goes first, because its first position is in a cell.
Span StoryText::InsertBlocks(Span span, const BlockSource& blocks) {
  CheckSpan(span);
  const bool reaches_mirror =
      mirror_ != nullptr && span.end <= mirror_->length() && mirror_->Text(span) == Text(span);
  const Span asked = span;
  span.end = std::max(span.start, std::min(span.end, length_ - 1));
  span.start = std::min(span.start, length_ - 1);
  SpanDeletion deletion(*this, span);
  span = deletion.span();
  const bool goes_first = span.start < span.end && deletion.starts_with_table();
  if (goes_first && !deletion.LeavesParagraph()) throw CannotEditRange();
  const std::vector<NodeId> prepared =
      BlockInsertion(*this, goes_first ? span.end : span.start).Prepare(blocks);
  if (reaches_mirror) mirror_->InsertBlocks(asked, blocks);
  if (goes_first) {
    deletion.Execute();
    return BlockInsertion(*this, span.start).Execute(prepared);
  }
  const Span put = BlockInsertion(*this, span.start).Execute(prepared);
  SpanDeletion(*this, {put.end, put.end + span.end - span.start}).Execute();
  return put;
}

int32_t StoryText::MoveByParagraph(int32_t position, bool down) {
  CheckSpan({position, position});
  const Place place = Locate(position);
  size_t index = place.index;
  if (!down && place.offset > 0 && At(index).mark != Mark::kRow) return StartOf(At(index));
  do {
    if (down && index == Count() - 1) return length_;
    if (!down && index == 0) return 0;
    down ? ++index : --index;
  } while (At(index).mark == Mark::kRow);
  return StartOf(At(index));
}

// A mirror that reads as this text did takes the same edit; one that differs, the first place where
// the replaced text stands.
void StoryText::EditMirror(Span span, const String& before, StringView text) {
  if (mirror_ == nullptr) return;
  if (span.end <= mirror_->length() && mirror_->Text(span) == before) {
    mirror_->Replace(span, text);
    return;
  }
  for (size_t i = 0; !before.empty() && i < mirror_->Count(); ++i) {
    const size_t at = mirror_->At(i).text.find(before);
    if (at == String::npos) continue;
    const int32_t start = mirror_->StartOf(mirror_->At(i)) + static_cast<int32_t>(at);
    mirror_->Replace({start, start + static_cast<int32_t>(before.size())}, text);
    return;
  }
}

void StoryText::SetText(Paragraph& paragraph, StringView text) {
  if (mirror_ != nullptr) {
    const int32_t start = StartOf(paragraph);
    Replace({start, start + paragraph.length() - 1}, text);
    return;
  }
  ParagraphEditor(*this, paragraph).Replace(0, paragraph.text.size(), CleanText(text));
}

void StoryText::AppendRow(Table& table, NodeId row, Paragraph& after) {
  StoryContent added;
  StoryReader(tree(), added).ReadRow(table, row);
  for (const auto& paragraph : added.paragraphs) {
    length_ += paragraph->length();
    paragraph->flow = after.flow;
  }
  const size_t index = IndexOf(after) + 1;
  known_ = std::min(known_, index);
  if (searched_.index >= index) searched_ = {};
  content_.paragraphs.insert(content_.paragraphs.begin() + static_cast<ptrdiff_t>(index),
                             std::make_move_iterator(added.paragraphs.begin()),
                             std::make_move_iterator(added.paragraphs.end()));
  part_.edited = true;
  if (mirror_ != nullptr) AppendMirrorRow(table);
}

// The table at the same place of the mirror, when there is one.
void StoryText::AppendMirrorRow(const Table& table) {
  const auto same = [&](const auto& one) { return one.get() == &table; };
  const auto& tables = content_.tables;
  const auto index = std::find_if(tables.begin(), tables.end(), same) - tables.begin();
  auto& mirrored = mirror_->content_.tables;
  if (index < static_cast<ptrdiff_t>(mirrored.size()))
    mirrored[static_cast<size_t>(index)]->AddRow();
}

void StoryText::Untrack(TrackedEnds& anchors) { std::erase(tracked_, &anchors); }

TrackedEnd StoryText::AnchorAt(int32_t position) {
  const Place place = Locate(position);
  return {&At(place.index), place.offset};
}

int32_t StoryText::PositionOf(const TrackedEnd& anchor) {
  return StartOf(*anchor.paragraph) + static_cast<int32_t>(anchor.offset);
}

void StoryText::NoteInserted(Paragraph& paragraph, size_t at, size_t count) {
  length_ += static_cast<int32_t>(count);
  paragraph.units.reset();
  ForgetFrom(paragraph, at);
  for (TrackedEnds* anchors : tracked_) {
    for (TrackedEnd* anchor : {&anchors->start, &anchors->end}) {
      if (anchor->paragraph == &paragraph && anchor->offset > at) anchor->offset += count;
    }
  }
}

void StoryText::NoteRemoved(Paragraph& paragraph, size_t from, size_t to) {
  length_ -= static_cast<int32_t>(to - from);
  paragraph.units.reset();
  ForgetFrom(paragraph, from);
  for (TrackedEnds* anchors : tracked_) {
    for (TrackedEnd* anchor : {&anchors->start, &anchors->end}) {
      if (anchor->paragraph != &paragraph || anchor->offset <= from) continue;
      anchor->offset = anchor->offset >= to ? anchor->offset - (to - from) : from;
    }
  }
}

// The text of the paragraph has changed at `offset`. A paragraph whose place is not known lies
// behind all that is known.
void StoryText::ForgetFrom(const Paragraph& paragraph, size_t offset) {
  if (paragraph.index >= known_ || &At(paragraph.index) != &paragraph) return;
  known_ = std::min<size_t>(known_, paragraph.index + 1);
  if (paragraph.index > searched_.index || !searched_.pattern) return;
  const auto reach = static_cast<size_t>(searched_.pattern->longest_match());
  const size_t clear = offset < reach ? 0 : offset - reach;
  searched_.offset = paragraph.index == searched_.index ? std::min(searched_.offset, clear) : clear;
  searched_.index = paragraph.index;
}

void StoryText::WriteText() {
  for (const auto& paragraph : content_.paragraphs) {
    for (Piece& piece : paragraph->pieces) {
      if (!piece.changed || piece.kind != PieceKind::kText) continue;
      piece.changed = false;
      const StringView text = StringView(paragraph->text).substr(piece.begin, piece.length);
      tree().SetLeaf(piece.node, TextElement(tree(), piece.node, text));
    }
  }
}

}  // namespace kestrelon::desktop::word
