#include "documents/TagReplacement.h"

#include "Control/ErrorReporting.h"
#include "documents/WordConstants.h"

namespace kestrelon {
namespace {

// Beyond the body a value travels as replacement text, which Word limits.
constexpr size_t kReplacementLimit = 255;

// Takes the selected tag out of the document.
void DeleteSelectedTag(const Object& target, const Object& selection) {
  const Object range =
      target.CallChild(u"Range", Named(u"Start", selection.GetChild(u"Range").Get(u"Start")),
                       Named(u"End", selection.GetChild(u"Range").Get(u"End")));
  if (!range.Call(u"Information", wdWithInTable).ToBoolean()) {
    range.Call(u"Delete", Named(u"count", 0));
    return;
  }
  // NOTE: in a table the character before the tag goes with it, so that a blank line of an address
  // cell closes up; where Word refuses, as at the start of a cell, the tag alone goes.
  range.Call(u"moveStart", wdCharacter, -1);
  const auto refused = IgnoreFailures([&] { range.Call(u"Delete"); });
  if (refused && refused->number() == kCannotEditRange) {
    IgnoreFailures([&] { range.Call(u"moveStart", wdCharacter, 1); },
                   [&] { range.Call(u"Delete"); });
  }
}

// True when an occurrence was found in the main text and dealt with.
bool ReplaceNextInBody(const Object& target, const Object& wordApp, const String& tag,
                       const String& value) {
  const Object selection = wordApp.GetChild(u"Selection");
  if (!FindAndSelect(selection, tag)) return false;
  if (Trim(value).empty()) {
    DeleteSelectedTag(target, selection);
  } else {
    selection.Call(u"TypeText", value);
  }
  target.Call(u"Select");
  return true;
}

void ReplaceInRange(const Object& range, const String& tag, const String& value) {
  const Object find = range.GetChild(u"Find");
  find.Call(u"ClearFormatting");
  find.GetChild(u"Replacement").Call(u"ClearFormatting");
  find.Put(u"Text", tag);
  find.GetChild(u"Replacement").Put(u"Text", value);
  find.Put(u"Wrap", wdFindContinue);
  find.Call(u"Execute", Named(u"Replace", wdReplaceAll));
}

void ReplaceInShapes(const Object& story, const String& tag, const String& value) {
  const int32_t type = story.Get(u"StoryType").ToLong();
  if (type < wdEvenPagesHeaderStory || type > wdFirstPageFooterStory) return;
  const Object shapes = story.GetChild(u"ShapeRange");
  if (shapes.Get(u"Count").ToLong() < 1) return;
  const auto walk = shapes.Enumerate();
  while (const std::optional<Value> shape = walk->Next()) {
    IgnoreFailures([&] {
      const Object frame = shape->ToObject().GetChild(u"TextFrame");
      if (frame.Get(u"HasText").ToBoolean())
        ReplaceInRange(frame.GetChild(u"TextRange"), tag, value);
    });
  }
}

// The main text is itself a story, so what the selection left behind is caught here as well.
void ReplaceInStories(const String& tag, const String& value, const Object& document) {
  const auto walk = document.GetChild(u"StoryRanges").Enumerate();
  while (const std::optional<Value> first = walk->Next()) {
    Object story = first->ToObject();
    do {
      ReplaceInRange(story, tag, value);
      IgnoreFailures([&] { ReplaceInShapes(story, tag, value); });
      story = story.GetChild(u"NextStoryRange");
    } while (story);
  }
}

}  // namespace

bool FindAndSelect(const Object& selection, const String& text) {
  const Object find = selection.GetChild(u"Find");
  find.Put(u"MatchCase", false);
  find.Put(u"forward", true);
  find.Put(u"wrap", wdFindContinue);
  find.Put(u"text", text);
  find.Call(u"Execute");
  return find.Get(u"Found").ToBoolean();
}

void ReplaceOneTag(ControlContext& context, const Object& target, const Object& wordApp,
                   int16_t index, const String& replaceInHeader) {
  target.Call(u"Select");
  const auto replace = [&] {
    const TagTable& table = context.state.tag_table;
    if (index < 0 || index > table.UpperBound()) throw AutomationError(kSubscriptOutOfRange);
    const String& tag = table.Tags[static_cast<size_t>(index)];
    const String& value = table.TagReplacements[static_cast<size_t>(index)];
    if (tag.empty()) return;
    while (ReplaceNextInBody(target, wordApp, tag, value)) {
    }
    if (value.size() < kReplacementLimit && replaceInHeader == u"true") {
      ReplaceInStories(tag, value, target);
    }
  };
  Attempt(replace, [&](const AutomationError& error) {
    ShowMessage(context, u"Error in ReplaceOneTag - " + error.description());
  });
}

}  // namespace kestrelon
