#include <gtest/gtest.h>

#include "documents/TagReplacement.h"
#include "tests/desktop/word/objects/WordWorld.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon::desktop::word {
namespace {

// What a letter does with each of its tags.
void ReplaceTag(const WordWorld& world, const Object& letter, StringView tag, StringView value,
                const String& in_header = u"") {
  kestrelon::testing::ScriptedDesktop screen;
  ControlContext context{screen};
  context.state.tag_table.Reset(0);
  context.state.tag_table.Tags[0] = tag;
  context.state.tag_table.TagReplacements[0] = value;
  ReplaceOneTag(context, letter, world.word, 0, in_header);
  EXPECT_TRUE(screen.messages.empty());
}

TEST(Letter, ABlankValueInACellTakesTheCharacterBeforeItWhereWordAllowsIt) {
  const WordWorld world;
  const Object letter = world.NewLetter(Tbl(Tr(C("a-<x>b"), C("<x>"))) + P(R("")));
  ReplaceTag(world, letter, u"<x>", u"");
  const Object table = letter.GetChild(u"Tables", 1);
  EXPECT_EQ(table.CallChild(u"Cell", 1, 1).GetChild(u"Range").Get(u"Text").ToText(), u"ab\r\a");
  EXPECT_EQ(table.CallChild(u"Cell", 1, 2).GetChild(u"Range").Get(u"Text").ToText(), u"\r\a");
}

TEST(Letter, ReplacesInEveryStoryAndItsTextBoxes) {
  const WordWorld world;
  const Object letter =
      world.NewLetter(P(R("<x>")), P(R("to <X>")) + P(TextBox(P(R("box <x>")), P(R("box <x>")))));
  ReplaceTag(world, letter, u"<x>", u"you", u"true");
  EXPECT_EQ(TextOf(letter), u"you\r");
  const String header = letter.GetChild(u"StoryRanges", 7).Get(u"Text").ToText();
  EXPECT_TRUE(header.starts_with(u"to you\r")) << ToUtf8(header);
  const Object shapes = letter.GetChild(u"StoryRanges", 7).GetChild(u"ShapeRange");
  ASSERT_EQ(shapes.Get(u"Count").ToLong(), 1);
  const Object frame = shapes.GetChild(u"Item", 1).GetChild(u"TextFrame");
  EXPECT_TRUE(frame.Get(u"HasText").ToBoolean());
  EXPECT_EQ(frame.GetChild(u"TextRange").Get(u"Text").ToText(), u"box you\r");
  EXPECT_EQ(FailureOf([&] { letter.GetChild(u"StoryRanges", 6); }).number(), 5941);
}

struct FindCase {
  const char* name;
  int32_t start, end;  // where the search stands in "ab AB ab"
  int32_t wrap;
  bool match_case;
  bool forward;
  int32_t found_at;  // -1: nothing found, the range stays
};

TEST(Find, SearchesFromItsRangeAndWrapsOnlyWhenToldTo) {
  const FindCase cases[] = {
      {"whole text, from the start", 0, 9, 0, false, true, 0},
      {"whole text, backward from its end", 0, 9, 0, false, false, 6},
      {"exact case only", 1, 1, 0, true, true, 6},
      {"behind the caret", 1, 1, 0, false, true, 3},
      {"before the caret", 6, 6, 0, false, false, 3},
      {"inside the range first", 2, 9, 1, false, true, 3},
      {"not beyond the range", 1, 3, 0, false, true, -1},
      {"beyond the range when it may continue", 1, 3, 1, false, true, 3},
      {"on from a match", 0, 2, 0, false, true, 3},
      {"back from a match", 6, 8, 0, false, false, 3},
      {"no further than the end", 6, 8, 0, false, true, -1},
      {"around from the last match", 6, 8, 1, false, true, 0},
      {"around from the first match backward", 0, 2, 1, false, false, 6},
  };
  const WordWorld world;
  const Object letter = world.NewLetter(P(R("ab AB ab")));
  for (const FindCase& test : cases) {
    SCOPED_TRACE(test.name);
    const Object range = letter.CallChild(u"Range", test.start, test.end);
    const Object find = range.GetChild(u"Find");
    const bool found = find.Call(u"Execute", u"ab", test.match_case, Named(u"Wrap", test.wrap),
                                 Named(u"forward", test.forward))
                           .ToBoolean();
    EXPECT_EQ(found, test.found_at >= 0);
    EXPECT_EQ(find.Get(u"Found").ToBoolean(), found);
    EXPECT_EQ(range.Get(u"Start").ToLong(), found ? test.found_at : test.start);
    EXPECT_EQ(range.Get(u"End").ToLong(), found ? test.found_at + 2 : test.end);
  }
}

TEST(Find, ReplacesOneOrAllWithinItsRange) {
  const WordWorld world;
  const Object letter = world.NewLetter(P(R("ab ab ab")));
  const auto replace = [](const Object& range, const char16_t* with, int32_t how_many) {
    EXPECT_TRUE(
        range.GetChild(u"Find")
            .Call(u"Execute", u"AB", Named(u"ReplaceWith", with), Named(u"Replace", how_many))
            .ToBoolean());
  };
  replace(letter.CallChild(u"Range", 3, 8), u"<^&>", 2);
  EXPECT_EQ(TextOf(letter), u"ab <ab> <ab>\r");
  const Object content = letter.GetChild(u"Content");
  replace(content, u"^t", 1);
  EXPECT_EQ(TextOf(letter), u"\t <ab> <ab>\r");
  EXPECT_EQ(content.Get(u"Text").ToText(), u"\t");
}

TEST(Find, RefusesWhatItCannotSearchFor) {
  const WordWorld world;
  const Object letter = world.NewLetter(P(R("text")));
  const Object find = letter.GetChild(u"Content").GetChild(u"Find");
  const String longest(255, u'x');
  find.Put(u"Text", longest);
  EXPECT_FALSE(find.Call(u"Execute").ToBoolean());
  const struct {
    std::function<void()> action;
    int32_t number;
  } cases[] = {
      {[&] { find.Put(u"Text", longest + u"x"); }, 5854},
      {[&] { find.GetChild(u"Replacement").Put(u"Text", longest + u"x"); }, 5854},
      {[&] { find.Call(u"Execute", u"t", Named(u"MatchWildcards", true)); }, 4120},
      {[&] { find.Call(u"Execute", u"t", Named(u"Replace", 3)); }, 4120},
      {[&] { find.Put(u"Wrap", 7); }, 4120},
      {[&] { find.Call(u"Execute", Named(u"Pattern", u"t")); }, kNamedArgumentNotFound},
      {[&] { find.Get(u"Style"); }, kMemberNotFound},
  };
  for (const auto& test : cases) EXPECT_EQ(FailureOf(test.action).number(), test.number);
  EXPECT_EQ(find.Get(u"Text").ToText(), u"t");
}

}  // namespace
}  // namespace kestrelon::desktop::word
