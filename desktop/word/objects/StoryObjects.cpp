#include "desktop/word/objects/StoryObjects.h"

#include "desktop/word/objects/TextObject.h"

namespace kestrelon::desktop::word {

const MemberTable<StoryRangesObject>& StoryRangesObject::Members() {
  static const MemberTable<StoryRangesObject> table =
      MemberTable<StoryRangesObject>(u"StoryRanges")
          .Property(u"Count", &StoryRangesObject::GetCount)
          .Method(u"Item", &StoryRangesObject::ItemOfType, {u"Index"})
          .Method(u"", &StoryRangesObject::ItemOfType, {u"Index"});
  return table;
}

Value StoryRangesObject::At(int32_t index) {
  Story& story = *document().engine().FirstStories()[static_cast<size_t>(index - 1)];
  return MakeRange(owner(), story, {0, story.Length()});
}

Value StoryRangesObject::ItemOfType(const MethodArguments& arguments) {
  const auto type = static_cast<StoryType>(arguments.Require(0).ToLong());
  for (Story* story : document().engine().FirstStories()) {
    if (story->type() == type) return MakeRange(owner(), *story, {0, story->Length()});
  }
  throw NoSuchMember();
}

const MemberTable<ShapeRangeObject>& ShapeRangeObject::Members() {
  static const MemberTable<ShapeRangeObject> table = CollectionMembers(u"ShapeRange");
  return table;
}

Value ShapeRangeObject::At(int32_t index) {
  return MakeObject<ShapeObject>(owner(), *story_.TextBoxAt(index));
}

const MemberTable<ShapeObject>& ShapeObject::Members() {
  static const MemberTable<ShapeObject> table =
      MemberTable<ShapeObject>(u"Shape").Property(u"TextFrame", &ShapeObject::GetTextFrame);
  return table;
}

Value ShapeObject::GetTextFrame() { return MakeObject<TextFrameObject>(owner(), text_); }

const MemberTable<TextFrameObject>& TextFrameObject::Members() {
  static const MemberTable<TextFrameObject> table =
      MemberTable<TextFrameObject>(u"TextFrame")
          .Property(u"HasText", &TextFrameObject::GetHasText)
          .Property(u"TextRange", &TextFrameObject::GetTextRange);
  return table;
}

Value TextFrameObject::GetTextRange() { return MakeRange(owner(), text_, {0, text_.Length()}); }

}  // namespace kestrelon::desktop::word
