#include "desktop/word/objects/TextObjects.h"

#include "desktop/word/objects/StoryObjects.h"

namespace kestrelon::desktop::word {
namespace {

constexpr int32_t kUnitCharacter = 1;
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
          .Method(u"TypeText", &SelectionObject::TypeText, {u"Text"});
  return table;
}

Value SelectionObject::TypeText(const MethodArguments& arguments) {
  Type(arguments.Require(0).ToText(), /*collapse=*/true);
  return {};
}

void SelectionObject::Type(const String& text, bool collapse) {
  Span typed = story().Replace(WithoutLastMark(story(), span()), text);
  document().NoteEdit();
  if (collapse) typed.start = typed.end;
  MoveTo(typed);
}

}  // namespace kestrelon::desktop::word
