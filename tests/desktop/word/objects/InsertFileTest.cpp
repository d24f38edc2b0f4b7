#include <gtest/gtest.h>

#include "tests/desktop/word/objects/WordWorld.h"

namespace kestrelon::desktop::word {
namespace {

TEST(InsertFile, PutsATableInThePlaceOfItsMarker) {
  const WordWorld world;
  world.Write("Table.htm", "<table><tr><td>&lt;item&gt;</td><td>2</td></tr></table>");
  const Object letter =
      world.NewLetter(P(R("a")) + P(R("see <html"), R("table> Table.htm")) + P(R("z")));
  const Object selection = world.word.GetChild(u"Selection");
  selection.GetChild(u"Find").Call(u"Execute", Named(u"FindText", u"<HTMLTABLE>"));
  EXPECT_EQ(selection.Call(u"MoveDown", Named(u"Unit", 4), Named(u"Extend", 1)).ToLong(), 1);
  EXPECT_EQ(selection.Get(u"Text").ToText(), u"<htmltable> Table.htm\r");
  selection.Call(u"MoveEnd", 1, -1);
  selection.Call(u"Delete");
  world.word.Call(u"ChangeFileOpenDirectory", world.Path("."));
  selection.GetChild(u"Range").Call(u"InsertFile", Named(u"FileName", u"Table.htm"),
                                    Named(u"link", false), Named(u"Attachment", false));
  letter.GetChild(u"Content")
      .GetChild(u"Find")
      .Call(u"Execute", Named(u"FindText", u"<item>"), Named(u"ReplaceWith", u"chair"),
            Named(u"Replace", 2));
  letter.Call(u"SaveAs", world.Path("quote.docx"));
  EXPECT_EQ(world.TextOfFile("quote.docx"), u"a\rsee \rchair\r\a2\r\a\r\a\rz\r");
  selection.Call(u"InsertFile", world.Write("end.txt", "1\r\n2\n"));
  EXPECT_EQ(TextOf(letter), u"a\rsee 1\r2\r\rchair\r\a2\r\a\r\a\rz\r");
  EXPECT_EQ(selection.Get(u"Start").ToLong(), 10);
}

TEST(InsertFile, RefusesWhatItCannotInsert) {
  const WordWorld world;
  const Object range = world.NewLetter(P(R("text"))).GetChild(u"Content");
  const std::pair<std::function<void()>, int32_t> cases[] = {
      {[&] { range.Call(u"InsertFile", world.Path("missing.htm")); }, 5174},
      {[&] { range.Call(u"InsertFile", world.Write("a.htm", "PK\x03\x04")); }, 4198},
      {[&] { range.Call(u"InsertFile", u"a.htm", Named(u"Link", true)); }, 4120},
      {[&] { world.word.Call(u"ChangeFileOpenDirectory", world.Path("none")); }, 4172},
  };
  for (const auto& [action, number] : cases) EXPECT_EQ(NumberOf(action), number);
  EXPECT_EQ(range.Get(u"Text").ToText(), u"text\r");
}

TEST(Selection, MovesByParagraphs) {
  // one \r 3 cells of a row \r\a each, its mark, end \r
  const std::tuple<Span, StringView, int, int, int, Span> steps[] = {
      {{1, 2}, u"MoveDown", 1, 0, 1, {4, 4}},  {{1, 1}, u"MoveUp", 1, 0, 1, {0, 0}},
      {{4, 4}, u"MoveUp", 1, 0, 1, {0, 0}},    {{6, 6}, u"MoveDown", 1, 0, 1, {9, 9}},
      {{1, 2}, u"MoveDown", 9, 1, 4, {1, 13}}, {{9, 9}, u"MoveDown", 2, 0, 1, {12, 12}},
      {{5, 7}, u"MoveUp", 1, 1, 1, {5, 6}},    {{5, 7}, u"MoveUp", 2, 1, 2, {4, 5}},
      {{0, 0}, u"MoveUp", 1, 0, 0, {0, 0}},    {{4, 4}, u"MoveDown", -1, 1, 1, {0, 4}},
  };
  const WordWorld world;
  const Object letter = world.NewLetter(P(R("one")) + Tbl(Tr(C("a"), C("b"))) + P(R("end")));
  const Object selection = world.word.GetChild(u"Selection");
  for (const auto& [from, member, count, extend, moved, to] : steps) {
    letter.CallChild(u"Range", from.start, from.end).Call(u"Select");
    EXPECT_EQ(selection.Call(member, 4, count, extend).ToLong(), moved);
    EXPECT_EQ((Span{selection.Get(u"Start").ToLong(), selection.Get(u"End").ToLong()}), to);
  }
  // The end that an extension has moved goes on moving.
  letter.CallChild(u"Range", 5, 5).Call(u"Select");
  selection.Call(u"MoveUp", 4, 2, 1);
  selection.Call(u"MoveDown", 4, 1, 1);
  EXPECT_EQ(selection.Get(u"Text").ToText(), u"a");
  EXPECT_EQ(NumberOf([&] { selection.Call(u"MoveDown"); }), 4120);
}

}  // namespace
}  // namespace kestrelon::desktop::word
