#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "documents/TagReplacement.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon {
namespace {

using Lines = std::vector<std::string>;

class TagReplacement : public ::testing::Test {
 protected:
  TagReplacement() {
    desktop.Answer("D.StoryRanges.Each", {Value(Value::Array{})});
    SetFound({false});
  }
  void SetFound(std::deque<Value> answers) {
    desktop.Answer("W.Selection.Find.Found", std::move(answers));
  }
  void Replace(const String& tag, const String& value, const String& in_header = u"") {
    context.state.tag_table.Reset(0);
    context.state.tag_table.Tags[0] = tag;
    context.state.tag_table.TagReplacements[0] = value;
    desktop.log.clear();
    ReplaceOneTag(context, desktop.NamedObject("D").ToObject(), desktop.NamedObject("W").ToObject(),
                  0, in_header);
  }
  testing::ScriptedDesktop desktop;
  ControlContext context{desktop};
  const Lines search = {"D.Select()",
                        "W.Selection",
                        "W.Selection.Find",
                        "W.Selection.Find.MatchCase = False",
                        "W.Selection.Find.forward = True",
                        "W.Selection.Find.wrap = 1",
                        "W.Selection.Find.text = \"<t>\"",
                        "W.Selection.Find.Execute()",
                        "W.Selection.Find.Found"};
};

TEST_F(TagReplacement, SearchesTheWholeTargetUntilNothingIsFound) {
  SetFound({true, false});
  Replace(u"<t>", u"value");
  Lines expected = search;
  expected.emplace_back("W.Selection.TypeText(\"value\")");
  expected.insert(expected.end(), search.begin(), search.end());
  EXPECT_EQ(desktop.log, expected);
}

TEST_F(TagReplacement, AnEmptySlotOnlySelects) {
  Replace(u"", u"value", u"true");
  EXPECT_EQ(desktop.log, (Lines{"D.Select()"}));
}

const char* const kRange = "D.Range(Start:=7, End:=10)";  // where the scripted selection stands

TEST_F(TagReplacement, ABlankValueDeletesTheTagAndInATableTheCharacterBeforeWhereWordAllowsIt) {
  desktop.Answer("W.Selection.Range.Start", {7});
  desktop.Answer("W.Selection.Range.End", {10});
  const std::string range = kRange;
  const auto replaced = [&](bool in_table) {
    desktop.Answer(range + ".Information(12)", {in_table});
    SetFound({true, false});
    Replace(u"<t>", u"  ");
    std::erase_if(desktop.log, [&](const auto& line) { return !line.starts_with(range + "."); });
    for (std::string& line : desktop.log) line.erase(0, range.size());
    return desktop.log;
  };
  EXPECT_EQ(replaced(false), (Lines{".Information(12)", ".Delete(count:=0)"}));
  Lines expected = {".Information(12)", ".moveStart(1, -1)", ".Delete()"};
  EXPECT_EQ(replaced(true), expected);
  desktop.Fail(range + ".Delete()", AutomationError(5904));
  expected.insert(expected.end(), {".moveStart(1, 1)", ".Delete()"});
  EXPECT_EQ(replaced(true), expected);
  EXPECT_TRUE(desktop.messages.empty());
}

TEST_F(TagReplacement, VisitsEveryLinkedStoryAndTheShapesOfHeaders) {
  const auto shapes = [&](const std::string& story) {
    desktop.Answer(story + ".ShapeRange.Count", {2});
    desktop.Answer(story + ".ShapeRange.Each",
                   {Value(Value::Array{desktop.NamedObject("Box"), desktop.NamedObject("Line")})});
  };
  desktop.Answer("D.StoryRanges.Each",
                 {Value(Value::Array{desktop.NamedObject("Main"), desktop.NamedObject("Head")})});
  desktop.Answer("Main.StoryType", {1});
  desktop.Answer("Main.NextStoryRange", {Value(DispatchPointer())});
  desktop.Answer("Head.StoryType", {7});
  desktop.Answer("Head.NextStoryRange", {desktop.NamedObject("Head2")});
  desktop.Answer("Head2.StoryType", {11});
  desktop.Answer("Head2.NextStoryRange", {Value(DispatchPointer())});
  shapes("Main");
  shapes("Head");
  desktop.Answer("Head2.ShapeRange.Count", {0});
  desktop.Answer("Box.TextFrame.HasText", {true});
  desktop.Fail("Line.TextFrame", AutomationError(438));
  Replace(u"<t>", u"value", u"true");
  Lines replaced;
  for (const std::string& line : desktop.log) {
    if (line.ends_with(".Execute(Replace:=2)")) replaced.push_back(line);
  }
  EXPECT_EQ(replaced, (Lines{"Main.Find.Execute(Replace:=2)", "Head.Find.Execute(Replace:=2)",
                             "Box.TextFrame.TextRange.Find.Execute(Replace:=2)",
                             "Head2.Find.Execute(Replace:=2)"}));
  EXPECT_TRUE(desktop.messages.empty());
  EXPECT_THAT(desktop.log, ::testing::Contains("Head.Find.Replacement.Text = \"value\""));
}

TEST_F(TagReplacement, LeavesTheStoriesAloneUnlessAskedExactlyAndTheValueIsShort) {
  const auto visited = [&] {
    return std::find(desktop.log.begin(), desktop.log.end(), "D.StoryRanges") != desktop.log.end();
  };
  for (const auto& [length, in_header, expected] :
       {std::tuple<size_t, String, bool>{254, u"true", true},
        {255, u"true", false},
        {3, u"True", false},
        {3, u"", false}}) {
    Replace(u"<t>", String(length, u'x'), in_header);
    EXPECT_EQ(visited(), expected) << length << " " << ToUtf8(in_header);
  }
}

TEST_F(TagReplacement, ReportsAFailureButNotThatOfTheFirstSelection) {
  desktop.Fail("W.Selection.Find.Execute", AutomationError(5854, u"String parameter too long."));
  Replace(u"<t>", u"v");
  ASSERT_EQ(desktop.messages.size(), 1U);
  EXPECT_EQ(desktop.messages[0],
            (testing::ShownMessage{u"Error in ReplaceOneTag - String parameter too long.", 0,
                                   std::nullopt}));
  desktop.Fail("D.Select", AutomationError(462));
  EXPECT_THROW(Replace(u"<t>", u"v"), AutomationError);
}

TEST_F(TagReplacement, AValueThatHoldsItsTagNeverEnds) {
  SetFound({true});
  desktop.cut_at = 500;
  EXPECT_THROW(Replace(u"<t>", u"a <t>"), testing::LoopCut);
}

}  // namespace
}  // namespace kestrelon
