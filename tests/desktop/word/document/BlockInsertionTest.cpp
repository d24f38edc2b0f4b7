#include <gtest/gtest.h>

#include <regex>

#include "tests/desktop/word/document/Builders.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop::word {
namespace {

BlockSource Source(const std::string& markup) {
  return [markup](const InsertionPlace&) { return markup; };
}

const std::string kTable = Tbl(Tr(C("n")));

const std::string kSection = "<w:pPr><w:jc/><w:sectPr/></w:pPr>";

TEST(BlockInsertion, LeavesTheDocumentThatIsExpected) {
  const auto bold = [](const std::string& text) {
    return Rx("<w:rPr><w:b/></w:rPr><w:t>" + text + "</w:t>");
  };
  const auto plain = [](const std::string& text) { return P(Rx("<w:t>" + text + "</w:t>")); };
  const std::string field = Field("begin") + Code("d") + Field("separate") + R("a") + Field("end");
  const auto find = [](Story& story, const char16_t* text) {
    return story.Find(FindPattern(text, true), 0, story.Length());
  };
  const std::tuple<std::string, Span, std::string, std::string> cases[] = {
      {P(R("ab")), {0, 0}, kTable, kTable + P(R("ab"))},
      {P(R("ab")), {3, 3}, kTable, P(R("ab")) + kTable + P()},
      {P(R("ab")), {0, 3}, P(R("x")), P(R("x")) + P()},
      // What the blocks begin with joins the first half of a paragraph.
      {P(bold("a"), Element("hyperlink", bold("bc"))),
       {2, 2},
       P(R("x")) + kTable,
       P(bold("a"), Element("hyperlink", bold("b")), R("x")) + kTable +
           P(Element("hyperlink", bold("c")))},
      // The end of a section stays at the end, with the ids.
      {"<w:p w14:paraId=\"1\">" + kSection + R("a") + R("b") + "</w:p><w:sectPr/>",
       {1, 1},
       kTable,
       P("<w:pPr><w:jc/></w:pPr>", R("a")) + kTable + "<w:p w14:paraId=\"1\">" + kSection + R("b") +
           "</w:p><w:sectPr/>"},
      // A cell still ends with a paragraph; tables do not touch.
      {Tbl(Tr(C("c"))) + P(), {0, 2}, kTable, Tbl(Tr(Element("tc", kTable + P()))) + P()},
      {kTable + P(R("b")), {3, 3}, kTable, kTable + P() + kTable + P(R("b"))},
      {P(R("ab")) + kTable + P(R("c")), {0, 3}, kTable, kTable + P() + kTable + P(R("c"))},
      {Tbl(Tr("<w:tc/>")) + P(), {0, 0}, P(R("x")), Tbl(Tr(Element("tc", P(R("x")) + P()))) + P()},
      // What is replaced goes, tables and paragraph marks too.
      {P(R("abcd")), {1, 3}, kTable, plain("a") + kTable + plain("d")},
      {P(R("ab")) + P(R("cd")), {1, 4}, kTable, plain("a") + kTable + plain("d")},
      {kTable + P(R("b")), {0, 3}, P(R("x")), P(R("x")) + P(R("b"))},
      {Tbl(Tr(C("c")), Tr(C("d"))) + P(),
       {3, 3},
       kTable,
       Tbl(Tr(C("c")), Tr(Element("tc", kTable + P(R("d"))))) + P()},
      {Tbl(Tr(C("ab"))) + P(),
       {1, 1},
       P(R("x")),
       Tbl(Tr(Element("tc", P(Rx("<w:t>a</w:t>"), R("x")) + plain("b")))) + P()},
      {P(field, R("bd")), {6, 6}, kTable, P(field, Rx("<w:t>b</w:t>")) + kTable + plain("d")},
  };
  for (const auto& [body, span, blocks, saved] : cases) {
    SCOPED_TRACE(saved);
    const auto document = Open(body);
    Story& story = document->Main();
    const TrackedSpan all(story, {0, story.Length()});
    for (const auto* text : {u"d", u"x"}) find(story, text);
    story.InsertBlocks(span, Source(blocks));
    EXPECT_EQ(SavedBody(*document), saved);
    EXPECT_EQ(all.span(), (Span{0, story.Length()}));
    const auto again = Open(saved);
    EXPECT_EQ(TextOf(story), TextOf(again->Main()));
    for (const auto* text : {u"x", u"d"}) EXPECT_EQ(find(story, text), find(again->Main(), text));
    const auto remove = [](Story& from) { return NumberOf([&] { from.Delete({1, 4}); }); };
    EXPECT_EQ(remove(story), remove(again->Main()));
    EXPECT_EQ(TextOf(story), TextOf(again->Main()));
  }
}

TEST(BlockInsertion, RefusesBeforeAnythingChanges) {
  const std::string control = Element("sdt", Element("sdtContent", R("ab")));
  std::string deep = P();
  for (int i = 0; i < 84; ++i) deep = Tbl(Tr(Element("tc", deep)));
  const std::tuple<std::string, Span, std::string, int32_t> cases[] = {
      {P(control), {1, 1}, kTable, 5904},
      {P(R("x"), Field("begin"), Code("ab"), Field("end")), {3, 3}, kTable, 5904},
      {kTable + P(), {2, 2}, kTable, 5904},
      {kTable + P() + kTable + P(), {0, 4}, kTable, 5904},
      {P(R("ab")), {1, 2}, "<w:p>", 5792},
      {P(R("ab")), {1, 2}, deep, 5904},
  };
  for (const auto& [body, span, blocks, number] : cases) {
    SCOPED_TRACE(body);
    const auto document = Open(body);
    const auto insert = [&, at = span, source = Source(blocks)] {
      document->Main().InsertBlocks(at, source);
    };
    EXPECT_EQ(NumberOf(insert), number);
    EXPECT_EQ(SavedBody(*document), body);
  }
}

TEST(BlockInsertion, KeepsTablesAndSpansUsable) {
  const auto document = Open(P(R("one")) + Tbl(Tr(C("a"), C("b"))) + P(R("end")));
  Story& story = document->Main();
  Table& table = *story.TableAt(1);
  const TrackedSpan end(story, {9, 12});
  story.InsertBlocks({1, 2}, Source(kTable + P(R("x")) + kTable));
  ASSERT_EQ(story.TableCount(), 3);
  EXPECT_EQ(story.TableAt(3), &table);
  story.InsertBlocks(table.CellAt(1, 2)->span(), Source(kTable));
  table.AddRow();
  table.CellAt(2, 1)->SetText(u"new");
  story.TableAt(1)->CellAt(1, 1)->SetText(u"N");
  EXPECT_EQ(TextOf(story),
            u"o\rN\r\a\r\ax\rn\r\a\r\ae\ra\r\an\r\a\r\a\r\a\r\anew\r\a\r\a\r\aend\r");
  EXPECT_EQ(story.Text(end.span()), u"end");
  EXPECT_EQ(TextOf(Document::Open(document->Save(DocumentKind::kDocx))->Main()), TextOf(story));
}

TEST(BlockInsertion, SaysHowWideThePlaceIs) {
  const std::string cell = "<w:tc><w:tcPr><w:tcW w:w=\"2216\" w:type=\"dxa\"/></w:tcPr></w:tc>";
  const auto document =
      Open(Tbl(Tr(cell, C("b"))) +
           "<w:sectPr><w:pgSz w:w=\"10000\"/><w:pgMar w:left=\"900\"/></w:sectPr>");
  for (const auto& [at, width] : {std::pair(0, 2000), std::pair(1, 4334), std::pair(4, 9100)}) {
    document->Main().InsertBlocks({at, at}, [expected = width](const InsertionPlace& place) {
      EXPECT_EQ(place.width, expected);
      return std::string();
    });
  }
}

// Attributes need a prefix even where elements have none.
TEST(BlockInsertion, FindsOrDeclaresAPrefix) {
  const std::string uri = "http://purl.oclc.org/ooxml/wordprocessingml/main";
  for (const std::string& declared :
       std::vector<std::string>{"", " xmlns:q=\"" + uri + "\"", " xmlns:w=\"urn:other\""}) {
    const auto document = Document::Open(
        Packed("<document xmlns=\"" + uri + "\"" + declared + "><body><p/></body></document>"));
    document->Main().InsertBlocks({0, 0}, [](const InsertionPlace& place) {
      EXPECT_TRUE(place.strict);
      return std::regex_replace(std::string("<:p :rsidR='1'><:r><:t>x</:t></:r></:p>"),
                                std::regex(":"), place.prefix);
    });
    document->Main().Replace({1, 1}, u"y");
    const auto again = Document::Open(document->Save(DocumentKind::kDocx));
    EXPECT_EQ(TextOf(again->Main()), u"xy\r\r") << declared;
  }
}

TEST(BlockInsertion, ReachesBothCopiesOfATextBox) {
  const auto document = Open(P(TextBox(P(R("ab")), P(R("ab")))));
  document->Main().TextBoxAt(1)->InsertBlocks({0, 2}, Source(kTable));
  EXPECT_EQ(SavedBody(*document), P(TextBox(kTable + P(), kTable + P())));
}

}  // namespace
}  // namespace kestrelon::desktop::word
