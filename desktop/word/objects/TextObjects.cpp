#include "desktop/word/objects/TextObjects.h"

#include <cstdlib>

#include "desktop/word/html/InsertedFile.h"
#include "desktop/word/objects/StoryObjects.h"

namespace kestrelon::desktop::word {
namespace {

constexpr int32_t kUnitCharacter = 1;
constexpr int32_t kUnitParagraph = 4;
constexpr int32_t kUnitLine = 5;
constexpr int32_t kUnitStory = 6;
constexpr int32_t kWithInTable = 12;

// A character beyond U+FFFF, two units, begins at `position`.
bool IsPair(const Story& story, int32_t position) {
  if (position < 0 || position + 2 > story.Length()) return false;
  const String text = story.Text({position, position + 2});
  return text.size() == 2 && (text[0] & 0xFC00) == 0xD800 && (text[1] & 0xFC00) == 0xDC00;
}

// Where `position` lands when it is moved by `count` units.
int32_t Moved(const Story& story, int32_t position, int32_t unit, int32_t count) {
  const int32_t length = story.Length();
  if (unit == kUnitStory && count != 0) return count < 0 ? 0 : length;
  if (unit != kUnitCharacter && unit != kUnitStory) {
    throw BadParameter(u"Unit " + Value(unit).ToText() +
                       u" is not known here. Use 1 (character) or 6 (story).");
  }
  if (unit == kUnitStory) return position;
  for (; count > 0 && position < length; --count) position += IsPair(story, position) ? 2 : 1;
  for (; count < 0 && position > 0; ++count) position -= IsPair(story, position - 2) ? 2 : 1;
  return position;
}

}  // namespace

Span WithoutLastMark(const Story& story, Span span) {
  const int32_t last = story.Length() - 1;
  return {std::min(span.start, last), std::min(span.end, last)};
}

Span MoveStartOf(const Story& story, Span span, int32_t unit, int32_t count) {
  const int32_t start = Moved(story, span.start, unit, count);
  return {start, std::max(start, span.end)};
}

Span MoveEndOf(const Story& story, Span span, int32_t unit, int32_t count) {
  const int32_t end = Moved(story, span.end, unit, count);
  return {std::min(span.start, end), end};
}

Span CheckedSpan(const Story& story, int32_t start, int32_t end) {
  if (start < 0 || start > end || end > story.Length()) throw ValueOutOfRange();
  return {start, end};
}

Value InformationOf(const Story& story, Span span, int32_t type) {
  if (type == kWithInTable) return story.IsInTable(span);
  throw BadParameter(u"Information " + Value(type).ToText() +
                     u" is not known here. Use 12 (within a table).");
}

int32_t DeleteAt(Story& story, Span span, int32_t unit, int32_t count) {
  int32_t pieces = 1;
  if (span.start == span.end) {
    const Span ahead =
        count < 0 ? MoveStartOf(story, span, unit, count) : MoveEndOf(story, span, unit, count);
    span = ahead;
    pieces = span.end - span.start;
  }
  span = WithoutLastMark(story, span);
  if (span.start == span.end) return 0;
  story.Delete(span);
  return pieces;
}

Span InsertFileAt(const Owner& owner, Story& story, Span span, const MethodArguments& arguments) {
  enum Parameter : size_t { kFileName, kRange, kConfirmConversions, kLink };
  if (arguments.Has(kRange) && !arguments[kRange].ToText().empty()) {
    throw BadParameter(u"files are inserted as a whole here. Leave Range out.");
  }
  if (arguments.Has(kLink) && arguments[kLink].ToBoolean()) {
    throw BadParameter(u"files are not linked here. Leave Link out.");
  }
  const auto path = owner.session->Resolve(arguments.Require(kFileName).ToText());
  const BlockSource blocks =
      NamingMissing(path, kFileNotOpened, u"The file", [&] { return html::BlocksOfFile(path); });
  return story.InsertBlocks(span, blocks);
}

Value MakeRange(const Owner& owner, Story& story, Span span) {
  return MakeObject<RangeObject>(owner, story, span);
}

const MemberTable<RangeObject>& RangeObject::Members() {
  static const MemberTable<RangeObject> table =
      TextMembers(u"Range")
          .Property(u"", &RangeObject::GetText, &RangeObject::PutText)
          .Property(u"Text", &RangeObject::GetText, &RangeObject::PutText)
          .Property(u"NextStoryRange", &RangeObject::GetNextStoryRange)
          .Property(u"ShapeRange", &RangeObject::GetShapeRange)
          .Property(u"Duplicate", &RangeObject::GetDuplicate)
          .Method(u"Select", &RangeObject::Select);
  return table;
}

TrackedSpan& RangeObject::tracked() {
  if (!tracked_) tracked_.emplace(cell_->story(), cell_->span());
  return *tracked_;
}

Value RangeObject::GetText() { return tracked_ ? story().Text(span()) : cell_->Text(); }

void RangeObject::PutText(const Value& value) {
  const String text = value.ToText();
  if (tracked_) {
    MoveTo(story().Replace(WithoutLastMark(story(), span()), text));
  } else {
    cell_->SetText(text);
  }
  document().NoteEdit();
}

Value RangeObject::GetNextStoryRange() {
  Story* next = document().engine().NextStory(story());
  if (next == nullptr) return Object();
  return MakeRange(owner(), *next, {0, next->Length()});
}

Value RangeObject::GetShapeRange() { return MakeObject<ShapeRangeObject>(owner(), story()); }

Value RangeObject::Select(const MethodArguments&) {
  document().Select(story(), span());
  owner().session->active = owner().document;
  return {};
}

const MemberTable<SelectionObject>& SelectionObject::Members() {
  static const MemberTable<SelectionObject> table =
      TextMembers(u"Selection")
          .Property(u"", &SelectionObject::GetText, &SelectionObject::PutText)
          .Property(u"Text", &SelectionObject::GetText, &SelectionObject::PutText)
          .Property(u"Range", &SelectionObject::GetDuplicate)
          .Method(u"TypeText", &SelectionObject::TypeText, {u"Text"})
          .Method(u"MoveDown", &SelectionObject::MoveDown, {u"Unit", u"Count", u"Extend"})
          .Method(u"MoveUp", &SelectionObject::MoveUp, {u"Unit", u"Count", u"Extend"});
  return table;
}

Value SelectionObject::TypeText(const MethodArguments& arguments) {
  Type(arguments.Require(0).ToText(), /*collapse=*/true);
  return {};
}

// An extended selection keeps the end that does not move; any other becomes a caret first, at the
// end that lies in the direction.
int32_t SelectionObject::MoveBy(const MethodArguments& arguments, int32_t direction) {
  const int32_t unit = arguments.Has(0) ? arguments[0].ToLong() : kUnitLine;
  const int32_t count = arguments.Has(1) ? arguments[1].ToLong() : 1;
  const bool extends = arguments.Has(2) && arguments[2].ToLong() != 0;
  if (unit != kUnitParagraph) {
    throw BadParameter(u"Unit " + Value(unit).ToText() +
                       u" is not known here, where text has no lines. Use 4 (paragraph).");
  }
  const bool down = count < 0 ? direction < 0 : direction > 0;
  const Span before = span();
  const bool moves_start = extends ? document().moves_start() : !down;
  const int32_t anchor = moves_start ? before.end : before.start;
  const int32_t last = extends ? story().Length() : story().Length() - 1;
  int32_t active = moves_start ? before.start : before.end;
  int32_t moved = 0;
  for (; moved < std::abs(int64_t{count}); ++moved) {
    const int32_t next = std::min(story().MoveByParagraph(active, down), last);
    if (next == active) break;
    active = next;
  }
  if (moved == 0) return 0;
  if (!extends) {
    MoveTo({active, active});
    return moved;
  }
  MoveTo({std::min(anchor, active), std::max(anchor, active)});
  document().SetMovesStart(active < anchor);
  return moved;
}

void SelectionObject::Type(const String& text, bool collapse) {
  Span typed = story().Replace(WithoutLastMark(story(), span()), text);
  document().NoteEdit();
  if (collapse) typed.start = typed.end;
  MoveTo(typed);
}

}  // namespace kestrelon::desktop::word
