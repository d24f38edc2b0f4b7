// The stories of a document beyond its main text, and the text boxes anchored in them.
#pragma once

#include "desktop/word/objects/WordObject.h"

namespace kestrelon::desktop::word {

// The first story of each type that the document has. Item takes the type.
class StoryRangesObject final : public WordCollection<StoryRangesObject> {
 public:
  using WordCollection::WordCollection;
  static const MemberTable<StoryRangesObject>& Members();

  int32_t Size() { return static_cast<int32_t>(document().engine().FirstStories().size()); }
  Value At(int32_t index);
  Value ItemOfType(const MethodArguments& arguments);
};

// The text boxes anchored in a story.
class ShapeRangeObject final : public WordCollection<ShapeRangeObject> {
 public:
  ShapeRangeObject(Owner owner, Story& story) : WordCollection(std::move(owner)), story_(story) {}
  static const MemberTable<ShapeRangeObject>& Members();

  int32_t Size() { return story_.TextBoxCount(); }
  Value At(int32_t index);

 private:
  Story& story_;
};

class ShapeObject final : public WordObject<ShapeObject> {
 public:
  ShapeObject(Owner owner, Story& text) : WordObject(std::move(owner)), text_(text) {}
  static const MemberTable<ShapeObject>& Members();

  Value GetTextFrame();

 private:
  Story& text_;
};

class TextFrameObject final : public WordObject<TextFrameObject> {
 public:
  TextFrameObject(Owner owner, Story& text) : WordObject(std::move(owner)), text_(text) {}
  static const MemberTable<TextFrameObject>& Members();

  // True as Word writes it here: -1. A box holds text when there is more than its paragraph mark.
  Value GetHasText() { return text_.Length() > 1 ? -1 : 0; }
  Value GetTextRange();

 private:
  Story& text_;
};

}  // namespace kestrelon::desktop::word
