// Range and Selection.
#pragma once

#include <optional>

#include "desktop/word/objects/TextObject.h"

namespace kestrelon::desktop::word {

class RangeObject final : public TextObject<RangeObject> {
 public:
  RangeObject(Owner owner, Story& story, Span span)
      : TextObject(std::move(owner)), tracked_(std::in_place, story, span) {}
  // The content of a cell. Its text is read and written without its position, which in a long table
  // would cost a walk; the position is found when it is first asked for.
  RangeObject(Owner owner, Cell& cell) : TextObject(std::move(owner)), cell_(&cell) {}

  static const MemberTable<RangeObject>& Members();

  Story& story() override { return tracked().story(); }
  Span span() override { return tracked().span(); }
  void MoveTo(Span span) override { tracked().Set(span); }
  void TakeInserted(Span span) { MoveTo(span); }
  FindSettings& find_settings() override { return find_; }

  Value GetText();
  void PutText(const Value& value);
  Value GetNextStoryRange();
  Value GetShapeRange();
  Value Select(const MethodArguments&);

 private:
  TrackedSpan& tracked();

  Cell* cell_ = nullptr;
  std::optional<TrackedSpan> tracked_;
  FindSettings find_;
};

class SelectionObject final : public TextObject<SelectionObject> {
 public:
  using TextObject::TextObject;

  static const MemberTable<SelectionObject>& Members();

  Story& story() override { return document().selection().story(); }
  Span span() override { return document().selection().span(); }
  void MoveTo(Span span) override { document().Select(story(), span); }
  void TakeInserted(Span span) { MoveTo({span.end, span.end}); }
  FindSettings& find_settings() override { return document().selection_find(); }

  Value GetText() { return story().Text(span()); }
  void PutText(const Value& value) { Type(value.ToText(), /*collapse=*/false); }
  Value TypeText(const MethodArguments& arguments);
  // By paragraphs (4) alone; error 4120 for lines and anything else that only a page has. How many
  // the selection was moved or extended by.
  Value MoveDown(const MethodArguments& arguments) { return MoveBy(arguments, 1); }
  Value MoveUp(const MethodArguments& arguments) { return MoveBy(arguments, -1); }

 private:
  int32_t MoveBy(const MethodArguments& arguments, int32_t direction);
  void Type(const String& text, bool collapse);
};

}  // namespace kestrelon::desktop::word
