#include <gtest/gtest.h>

#include "tests/desktop/word/objects/WordWorld.h"

namespace kestrelon::desktop::word {
namespace {

TEST(Range, KeepsItsPlaceWithinTheStory) {
  const WordWorld world;
  const Object letter = world.NewLetter(P(R("0123456789")));
  const Object range = letter.CallChild(u"Range", Named(u"end", 5), Named(u"START", 2));
  EXPECT_EQ(range.Get(u"Text").ToText(), u"234");
  EXPECT_EQ(range.Call(u"MoveStart", 1, -9).ToLong(), -2);
  EXPECT_EQ(range.Call(u"MoveStart", Named(u"Count", 7)).ToLong(), 7);
  EXPECT_EQ(range.Get(u"End").ToLong(), 7);
  EXPECT_EQ(range.Call(u"MoveEnd", 1, 99).ToLong(), 4);
  range.Put(u"Start", 9);
  EXPECT_EQ(range.Get(u"Text").ToText(), u"9\r");
  range.Put(u"End", 3);
  EXPECT_EQ(range.Get(u"Start").ToLong(), 3);
  EXPECT_EQ(FailureOf([&] { letter.Call(u"Range", 5, 3); }).number(), 4608);
  EXPECT_EQ(FailureOf([&] { letter.Call(u"Range", 0, 12); }).number(), 4608);
  EXPECT_EQ(FailureOf([&] { range.Put(u"Start", -1); }).number(), 4608);
  EXPECT_EQ(FailureOf([&] { range.Call(u"MoveStart", 5); }).number(), 4120);
  EXPECT_EQ(FailureOf([&] { range.Call(u"Information", 3); }).number(), 4120);
}

TEST(Range, MovesWithTheTextAroundIt) {
  const WordWorld world;
  const Object letter = world.NewLetter(P(R("one two three")));
  const Object two = letter.CallChild(u"Range", 4, 7);
  letter.CallChild(u"Range", 0, 3).Put(u"Text", u"twenty");
  EXPECT_EQ(two.Get(u"Text").ToText(), u"two");
  EXPECT_EQ(two.Get(u"Start").ToLong(), 7);
  two.Put(u"Text", u"");
  EXPECT_EQ(TextOf(letter), u"twenty  three\r");
}

TEST(Range, DeletesItselfWhateverTheCountOrSoManyCharactersBeside) {
  const WordWorld world;
  const Object letter = world.NewLetter(P(R("0123456789")));
  letter.CallChild(u"Range", 0, 2).Call(u"Delete", Named(u"Count", 0));
  EXPECT_EQ(TextOf(letter), u"23456789\r");
  const Object caret = letter.CallChild(u"Range", 4, 4);
  EXPECT_EQ(caret.Call(u"Delete", 1, 0).ToLong(), 0);
  EXPECT_EQ(caret.Call(u"Delete", 1, -3).ToLong(), 3);
  EXPECT_EQ(caret.Call(u"Delete").ToLong(), 1);
  EXPECT_EQ(TextOf(letter), u"2789\r");
  letter.GetChild(u"Content").Call(u"Delete");
  EXPECT_EQ(TextOf(letter), u"\r");
}

TEST(Selection, TypesOverWhatIsSelectedAndStandsBehindIt) {
  const WordWorld world;
  EXPECT_TRUE(world.word.GetChild(u"Selection").IsNothing());
  const Object letter = world.NewLetter(P(R("Dear you")));
  letter.CallChild(u"Range", 5, 8).Call(u"Select");
  const Object selection = world.word.GetChild(u"Selection");
  EXPECT_EQ(selection.Get(u"Text").ToText(), u"you");
  selection.Call(u"TypeText", u"all\r\nof");
  selection.Call(u"TypeText", u"^p you");
  EXPECT_EQ(TextOf(letter), u"Dear all\vof^p you\r");
  EXPECT_EQ(selection.Get(u"Start").ToLong(), 17);
  letter.Call(u"Select");
  selection.Call(u"TypeText", u"x");
  EXPECT_EQ(TextOf(letter), u"x\r");
  EXPECT_EQ(FailureOf([&] { selection.Call(u"TypeText"); }).number(), kArgumentNotOptional);
}

TEST(Table, IsFilledRowByRow) {
  const WordWorld world;
  const Object letter =
      world.NewLetter(P(R("List")) + Tbl(Tr(C("<c_name>"), C("<c_town>"))) + P(R("end")));
  EXPECT_EQ(letter.CallChild(u"Range", 0, 4).GetChild(u"Tables").Get(u"Count").ToLong(), 0);
  const Object table = letter.GetChild(u"Tables").CallChild(u"item", 1);
  EXPECT_EQ(table.GetChild(u"Columns").Get(u"Count").ToLong(), 2);
  EXPECT_EQ(table.CallChild(u"Cell", 1, 1).GetChild(u"Range").Get(u"Text").ToText(),
            u"<c_name>\r\a");
  for (int32_t row = 2; row <= 3; ++row) {
    table.GetChild(u"Rows").Call(u"Add");
    table.CallChild(u"Cell", row, 1).GetChild(u"Range").Put(u"Text", Value(row).ToText());
  }
  EXPECT_EQ(table.GetChild(u"Rows").Get(u"Count").ToLong(), 3);
  const Object third = table.CallChild(u"Cell", 3, 1).GetChild(u"Range");
  EXPECT_TRUE(third.Call(u"Information", 12).ToBoolean());
  EXPECT_EQ(third.Get(u"Text").ToText(), u"3\r\a");
  EXPECT_EQ(FailureOf([&] { table.Call(u"Cell", 4, 1); }).number(), 5941);
  EXPECT_EQ(FailureOf([&] { letter.GetChild(u"Tables", 2); }).number(), 5941);
  world.word.GetChild(u"ActiveDocument").Call(u"SaveAs", world.Path("list.docx"));
  EXPECT_EQ(world.TextOfFile("list.docx"), TextOf(letter));
}

TEST(Table, IsGoneWithTheTextThatHeldIt) {
  const WordWorld world;
  const Object letter = world.NewLetter(P(R("a")) + Tbl(Tr(C("x"))) + P(R("b")));
  const Object table = letter.GetChild(u"Tables", 1);
  const Object cell = table.CallChild(u"Cell", 1, 1).GetChild(u"Range");
  letter.CallChild(u"Range", 0, 1).Put(u"Text", u"longer");
  EXPECT_EQ(cell.Get(u"Text").ToText(), u"x\r\a");
  letter.GetChild(u"Content").Call(u"Delete");
  EXPECT_EQ(TextOf(letter), u"\r");
  EXPECT_EQ(FailureOf([&] { table.GetChild(u"Rows").Get(u"Count"); }).number(), 5825);
  EXPECT_EQ(FailureOf([&] { cell.Put(u"Text", u"y"); }).number(), 5825);
}

TEST(Word, RefusesEverythingOnceItHasQuitOrTheDocumentIsClosed) {
  const WordWorld world;
  const Object first = world.NewLetter(P(R("first")));
  const Object second = world.NewLetter(P(R("second")));
  const Object documents = world.word.GetChild(u"Documents");
  const Object range = second.GetChild(u"Content");
  EXPECT_EQ(documents.Get(u"Count").ToLong(), 2);
  EXPECT_EQ(documents.GetChild(u"Item", u"document1").Get(u"Name").ToText(), u"Document1");
  second.Call(u"Close");
  EXPECT_EQ(FailureOf([&] { second.Get(u"Name"); }).number(), 5825);
  EXPECT_EQ(FailureOf([&] { range.Get(u"Text"); }).number(), 5825);
  EXPECT_EQ(world.word.GetChild(u"ActiveDocument").Get(u"Name").ToText(), u"Document1");
  world.word.Call(u"Quit", 0);
  for (const auto& action : std::initializer_list<std::function<void()>>{
           [&] { world.word.Get(u"Visible"); }, [&] { world.word.Call(u"Quit"); },
           [&] { world.word.Get(u"Nonsense"); }, [&] { documents.Get(u"Count"); },
           [&] { documents.Enumerate(); }, [&] { first.Get(u"Name"); },
           [&] { range.Get(u"Text"); }}) {
    EXPECT_EQ(FailureOf(action).number(), kServerUnavailable);
  }
}

TEST(Word, ADocumentOutlivesTheReferenceToItsApplication) {
  WordWorld world;
  const Object letter = world.NewLetter(P(R("text")));
  world.word.Release();
  EXPECT_EQ(TextOf(letter), u"text\r");
  EXPECT_EQ(letter.GetChild(u"Application").Get(u"Version").ToText(), u"16.0");
}

TEST(Range, MovesOverPairsOfSurrogatesAsOneCharacter) {
  const WordWorld world;
  const Object letter = world.NewLetter(Tbl(Tr(C("a\xF0\x9F\x98\x80"))) + P(R("b")));
  const Object range = letter.CallChild(u"Range", 0, 4);
  EXPECT_EQ(range.Call(u"MoveEnd", 1, -1).ToLong(), -1);
  EXPECT_EQ(range.Call(u"MoveEnd", 1, -1).ToLong(), -2);
  EXPECT_EQ(range.Call(u"MoveStart", 1, 2).ToLong(), 3);
  range.Call(u"Delete", 1, -1);
  EXPECT_EQ(TextOf(letter), u"a\r\a\r\ab\r");
}

}  // namespace
}  // namespace kestrelon::desktop::word
