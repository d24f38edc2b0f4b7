#include "desktop/word/document/ParagraphEditor.h"

#include <algorithm>
#include <string>

#include "desktop/word/document/StoryReader.h"
#include "desktop/word/xml/XmlText.h"

namespace kestrelon::desktop::word {
namespace {

constexpr StringView kBreakOrTab = u"\v\t";

// What became of the mark itself is no formatting of a run.
bool IsTracking(Name name) {
  return name == Name::kInserted || name == Name::kDeleted || name == Name::kMovedFrom ||
         name == Name::kMovedTo || name == Name::kRunPropertiesChange;
}

bool IsContent(Name name) { return name != Name::kGap && name != Name::kRunProperties; }

}  // namespace

String CleanText(StringView text) {
  String lines;
  lines.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const bool pair = text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
    if (pair) ++i;
    lines += text[i] == u'\r' || text[i] == u'\v' ? u'\n' : text[i];
  }
  String clean = WithoutForbidden(lines);
  std::replace(clean.begin(), clean.end(), u'\n', kLineBreakUnit);
  return clean;
}

size_t ParagraphEditor::Replace(size_t from, size_t to, StringView clean) {
  const std::vector<NodeId> whole_fields = WholeFields(from, to);
  const size_t at = InsertionPoint(from, to);
  if (!clean.empty()) InsertTokens(TextPieceAt(from, to, at), at, clean);
  const size_t behind = at + clean.size();
  Remove(behind, to + clean.size(), whole_fields);
  const size_t before = paragraph_.text.size();
  Remove(from, at, whole_fields);
  return at - (before - paragraph_.text.size());
}

// The nodes of the fields that begin and end within the span.
std::vector<NodeId> ParagraphEditor::WholeFields(size_t from, size_t to) const {
  std::vector<NodeId> whole;
  if (!paragraph_.has_fields) return whole;
  std::vector<size_t> open;  // places in `pending` where the open fields begin
  std::vector<NodeId> pending;
  for (const Piece& piece : paragraph_.pieces) {
    if (!IsField(piece.kind) || piece.begin < from || piece.end() > to) continue;
    if (piece.kind == PieceKind::kFieldBegin) open.push_back(pending.size());
    if (open.empty()) continue;
    pending.push_back(piece.node);
    if (piece.kind != PieceKind::kFieldEnd) continue;
    whole.insert(whole.end(), pending.begin() + static_cast<ptrdiff_t>(open.back()), pending.end());
    pending.resize(open.back());
    open.pop_back();
  }
  return whole;
}

// New text stands where the first visible character of the span does, or behind the field code that
// the span begins in.
size_t ParagraphEditor::InsertionPoint(size_t from, size_t to) const {
  if (!paragraph_.has_fields) return from;
  size_t at = from;
  bool in_code = false;
  for (const Piece& piece : paragraph_.pieces) {
    if (!IsField(piece.kind)) {
      if (piece.end() > from && piece.begin < to) return std::max<size_t>(from, piece.begin);
      continue;
    }
    if ((in_code && at == piece.begin) || (at > piece.begin && at < piece.end())) at = piece.end();
    in_code = piece.kind == PieceKind::kFieldBegin || piece.kind == PieceKind::kFieldCode;
  }
  return at;
}

// The text piece that takes new text at `at`: that of the first character of the span, for an
// insertion that of the character before it, or a new one beside it.
size_t ParagraphEditor::TextPieceAt(size_t from, size_t to, size_t at) {
  const auto& pieces = paragraph_.pieces;
  size_t behind = 0;  // the first piece that does not begin before `at`
  while (behind < pieces.size() && pieces[behind].begin < at) ++behind;
  const bool has_before = behind > 0 && !IsField(pieces[behind - 1].kind);
  const bool reaches_in = has_before && pieces[behind - 1].end() > at;
  if (reaches_in) return behind - 1;
  const bool has_behind = behind < pieces.size() && !IsField(pieces[behind].kind);
  if (!has_before && !has_behind) return PieceInNewRun(behind, at);
  const bool takes_before = has_before && (from == to || !has_behind);
  const Piece& host = pieces[takes_before ? behind - 1 : behind];
  if (host.kind == PieceKind::kText) return takes_before ? behind - 1 : behind;
  const Name name = tree_.name(host.node);
  if (name == Name::kMath || name == Name::kMathParagraph) return PieceInNewRun(behind, at);
  return NewTextPiece(behind, at, tree_.parent(host.node),
                      takes_before ? tree_.next(host.node) : host.node);
}

// An empty text piece; it takes text at once.
size_t ParagraphEditor::NewTextPiece(size_t index, size_t at, NodeId parent, NodeId next) {
  const std::string prefix(tree_.Prefix(paragraph_.node));
  const NodeId node = tree_.NewLeaf(Name::kText, "<" + prefix + "t/>");
  tree_.Insert(parent, next, node);
  Piece piece{static_cast<uint32_t>(at), 0, node, PieceKind::kText};
  piece.changed = true;
  paragraph_.pieces.insert(paragraph_.pieces.begin() + static_cast<ptrdiff_t>(index), piece);
  return index;
}

// Beside a field or formula, or in a paragraph without text. A run that waits there empty is used.
size_t ParagraphEditor::PieceInNewRun(size_t index, size_t at) {
  const NodeId paragraph = EnsureParagraph();
  if (paragraph_.pieces.empty()) {
    NodeId run = FirstRun(tree_, paragraph);
    if (run == kNoNode) {
      run = NewRun();
      tree_.Insert(paragraph, kNoNode, run);
    }
    return NewTextPiece(index, at, run, kNoNode);
  }
  const bool is_before = index < paragraph_.pieces.size();
  NodeId neighbour = paragraph_.pieces[is_before ? index : index - 1].node;
  while (tree_.name(neighbour) != Name::kRun &&
         tree_.name(tree_.parent(neighbour)) != Name::kParagraph) {
    neighbour = tree_.parent(neighbour);
  }
  const NodeId run = NewRun();
  tree_.Insert(tree_.parent(neighbour), is_before ? neighbour : tree_.next(neighbour), run);
  return NewTextPiece(index, at, run, kNoNode);
}

NodeId ParagraphEditor::EnsureParagraph() {
  if (paragraph_.node != kNoNode) return paragraph_.node;
  const std::string name = std::string(tree_.Prefix(paragraph_.container)) + "p";
  const NodeId container = paragraph_.container;
  // The properties of the last section stay at the end of the body.
  const NodeId section = tree_.Child(container, Name::kSectionProperties);
  paragraph_.node = tree_.NewElement(Name::kParagraph, "<" + name + ">", "</" + name + ">");
  tree_.Insert(container, section, paragraph_.node);
  return paragraph_.node;
}

// With the formatting of the paragraph mark.
NodeId ParagraphEditor::NewRun() {
  const std::string name = std::string(tree_.Prefix(paragraph_.node)) + "r";
  const NodeId run = tree_.NewElement(Name::kRun, "<" + name + ">", "</" + name + ">");
  const NodeId properties = tree_.Child(paragraph_.node, Name::kParagraphProperties);
  const NodeId mark =
      properties == kNoNode ? kNoNode : tree_.Child(properties, Name::kRunProperties);
  if (mark == kNoNode) return run;
  const NodeId formatting =
      tree_.NewElement(Name::kRunProperties, "<" + name + "Pr>", "</" + name + "Pr>");
  for (NodeId child = tree_.first_child(mark); child != kNoNode; child = tree_.next(child)) {
    if (!IsTracking(tree_.name(child))) tree_.Insert(formatting, kNoNode, tree_.CopyOf(child));
  }
  tree_.Insert(run, kNoNode, formatting);
  return run;
}

// Text up to the first break or tab joins the piece, the rest gets nodes of its own behind it.
void ParagraphEditor::InsertTokens(size_t index, size_t at, StringView clean) {
  const size_t first_break = clean.find_first_of(kBreakOrTab);
  if (first_break == StringView::npos) return InsertUnits(index, at, clean);
  const bool has_tail = SplitPiece(index, at);
  const size_t head = index;
  InsertUnits(index, at, clean.substr(0, first_break));
  for (size_t i = first_break; i < clean.size();) {
    if (kBreakOrTab.find(clean[i]) != StringView::npos) {
      index = InsertCharacter(index, clean[i++]);
      continue;
    }
    const size_t end = std::min(clean.find_first_of(kBreakOrTab, i), clean.size());
    const Piece before = paragraph_.pieces[index];
    const bool joins_tail = has_tail && end == clean.size();
    if (!joins_tail) {
      NewTextPiece(index + 1, before.end(), tree_.parent(before.node), tree_.next(before.node));
    }
    InsertUnits(++index, before.end(), clean.substr(i, end - i));
    i = end;
  }
  if (paragraph_.pieces[head].length == 0) DropPiece(head);
}

void ParagraphEditor::SplitAt(size_t at) {
  for (size_t i = 0; i < paragraph_.pieces.size(); ++i) {
    const Piece& piece = paragraph_.pieces[i];
    if (piece.begin < at && at < piece.end()) {
      story_.part().Touch(piece.node);
      SplitPiece(i, at);
      return;
    }
  }
}

// What follows `at` in the piece becomes a piece of its own. False when nothing does.
bool ParagraphEditor::SplitPiece(size_t index, size_t at) {
  const Piece whole = paragraph_.pieces[index];
  if (at == whole.end()) return false;
  NewTextPiece(index + 1, at, tree_.parent(whole.node), tree_.next(whole.node));
  paragraph_.pieces[index + 1].length = static_cast<uint32_t>(whole.end() - at);
  paragraph_.pieces[index].length = static_cast<uint32_t>(at - whole.begin);
  paragraph_.pieces[index].changed = true;
  return true;
}

void ParagraphEditor::InsertUnits(size_t index, size_t at, StringView units) {
  auto& pieces = paragraph_.pieces;
  const auto count = static_cast<uint32_t>(units.size());
  pieces[index].length += count;
  pieces[index].changed = true;
  for (size_t i = index + 1; i < pieces.size(); ++i) pieces[i].begin += count;
  paragraph_.text.insert(at, units);
  story_.part().Touch(pieces[index].node);
  story_.NoteInserted(paragraph_, at, count);
}

// A break or tab behind the piece; returns the place of its own piece.
size_t ParagraphEditor::InsertCharacter(size_t index, char16_t unit) {
  auto& pieces = paragraph_.pieces;
  const Piece before = pieces[index];
  const Name name = unit == kTabUnit ? Name::kTab : Name::kBreak;
  const std::string prefix(tree_.Prefix(paragraph_.node));
  const NodeId node = tree_.NewLeaf(name, "<" + prefix + (name == Name::kTab ? "tab/>" : "br/>"));
  tree_.InsertAfter(before.node, node);
  const uint32_t at = before.end();
  pieces.insert(pieces.begin() + static_cast<ptrdiff_t>(index) + 1,
                Piece{at, 1, node, PieceKind::kCharacter});
  for (size_t i = index + 2; i < pieces.size(); ++i) pieces[i].begin += 1;
  paragraph_.text.insert(at, 1, unit);
  story_.part().Touch(node);
  story_.NoteInserted(paragraph_, at, 1);
  return index + 1;
}

void ParagraphEditor::Remove(size_t from, size_t to, const std::vector<NodeId>& whole_fields) {
  for (size_t i = paragraph_.pieces.size(); from < to && i-- > 0;) {
    const Piece piece = paragraph_.pieces[i];
    if (piece.begin >= to) continue;
    if (piece.end() <= from) break;
    const bool stays = IsField(piece.kind) && std::find(whole_fields.begin(), whole_fields.end(),
                                                        piece.node) == whole_fields.end();
    if (!stays) {
      CutPiece(i, std::max<size_t>(from, piece.begin), std::min<size_t>(to, piece.end()));
    }
  }
}

void ParagraphEditor::CutPiece(size_t index, size_t from, size_t to) {
  auto& pieces = paragraph_.pieces;
  const auto count = static_cast<uint32_t>(to - from);
  story_.part().Touch(pieces[index].node);
  paragraph_.text.erase(from, count);
  pieces[index].length -= count;
  pieces[index].changed = true;
  for (size_t i = index + 1; i < pieces.size(); ++i) pieces[i].begin -= count;
  if (pieces[index].length == 0) DropPiece(index);
  story_.NoteRemoved(paragraph_, from, to);
}

// Takes out the node, and its run when that holds nothing else. A content control keeps its last
// run, because it must not be empty.
void ParagraphEditor::DropPiece(size_t index) {
  const NodeId node = paragraph_.pieces[index].node;
  paragraph_.pieces.erase(paragraph_.pieces.begin() + static_cast<ptrdiff_t>(index));
  const NodeId run = tree_.parent(node);
  tree_.Remove(node);
  if (tree_.name(run) != Name::kRun) return;
  for (NodeId child = tree_.first_child(run); child != kNoNode; child = tree_.next(child)) {
    if (IsContent(tree_.name(child))) return;
  }
  const NodeId around = tree_.parent(run);
  if (tree_.name(around) == Name::kControlContent) {
    size_t elements = 0;
    for (NodeId child = tree_.first_child(around); child != kNoNode; child = tree_.next(child)) {
      elements += tree_.name(child) != Name::kGap;
    }
    if (elements == 1) return;
  }
  tree_.Remove(run);
}

}  // namespace kestrelon::desktop::word
