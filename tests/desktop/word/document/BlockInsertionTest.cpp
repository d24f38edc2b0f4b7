#include <gtest/gtest.h>

#include "tests/desktop/word/document/Builders.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop::word {
namespace {

BlockSource Source(const std::string& markup) {
  return [markup](const InsertionPlace&) { return markup; };
}

const std::string kTable = Tbl(Tr(C("n")));
const std::string kCell = "<w:tc><w:tcPr><w:tcW w:w=\"2216\" w:type=\"dxa\"/></w:tcPr>";

struct Case {
  std::string body;
  Span span;
  std::string blocks;
  std::string saved;
};

class Insertion : public testing::TestWithParam<Case> {};

TEST_P(Insertion, LeavesTheDocumentThatIsExpected) {
  const auto& [body, span, blocks, saved] = GetParam();
  const auto document = Open(body);
  Story& story = document->Main();
  const TrackedSpan all(story, {0, story.Length()});
  const int32_t last = story.Length() - 1;
  const Span put = story.InsertBlocks(span, Source(blocks));
  EXPECT_EQ(SavedBody(*document), saved);
  EXPECT_EQ(put.start, std::min(span.start, last));
  EXPECT_EQ(all.span(), (Span{0, story.Length()}));
  EXPECT_EQ(TextOf(story), TextOf(Open(saved)->Main()));
}

const std::string kSection = "<w:pPr><w:jc/><w:sectPr/></w:pPr>";
const std::string kBold = "<w:b/>";

INSTANTIATE_TEST_SUITE_P(
    Places, Insertion,
    testing::Values(
        Case{P(R("ab")), {0, 0}, kTable, kTable + P(R("ab"))},
        Case{P(R("ab")), {2, 2}, kTable, P(R("ab")) + kTable + P()},
        Case{P(R("ab")), {3, 3}, kTable, P(R("ab")) + kTable + P()},
        Case{P(R("ab")), {0, 3}, P(R("x")), P(R("x")) + P()},
        Case{P(R("ab")), {1, 1}, "", P(R("ab"))},
        // What the blocks begin with joins the first half of a paragraph.
        Case{"<w:p>" + R("a", kBold) + "<w:hyperlink r:id=\"rId9\">" + R("bc", kBold) +
                 "</w:hyperlink></w:p>",
             {2, 2},
             P(R("x")) + kTable,
             "<w:p>" + R("a", kBold) +
                 "<w:hyperlink r:id=\"rId9\"><w:r><w:rPr><w:b/></w:rPr>"
                 "<w:t>b</w:t></w:r></w:hyperlink>" +
                 R("x") + "</w:p>" + kTable +
                 "<w:p><w:hyperlink r:id=\"rId9\"><w:r><w:rPr><w:b/></w:rPr><w:t>c</w:t></w:r>"
                 "</w:hyperlink></w:p>"},
        // The end of a section stays at the end.
        Case{"<w:p w14:paraId=\"1\">" + kSection + R("a") + R("b") + "</w:p>" + P(),
             {1, 1},
             kTable,
             "<w:p><w:pPr><w:jc/></w:pPr>" + R("a") + "</w:p>" + kTable + "<w:p w14:paraId=\"1\">" +
                 kSection + R("b") + "</w:p>" + P()},
        Case{P(R("a")) + "<w:sectPr/>", {1, 1}, kTable, P(R("a")) + kTable + P() + "<w:sectPr/>"},
        // A cell still ends with a paragraph; tables do not touch.
        Case{Tbl(Tr(C("c"))) + P(), {0, 2}, kTable, Tbl(Tr(Element("tc", kTable + P()))) + P()},
        Case{kTable + P(R("b")), {3, 3}, kTable, kTable + P() + kTable + P(R("b"))},
        Case{P(R("ab")) + kTable + P(R("c")), {0, 3}, kTable, kTable + P() + kTable + P(R("c"))},
        Case{Tbl(Tr("<w:tc/>")) + P(),
             {0, 0},
             P(R("x")),
             Tbl(Tr(Element("tc", P(R("x")) + P()))) + P()},
        // What is replaced goes, tables and paragraph marks too.
        Case{P(R("abcd")),
             {1, 3},
             kTable,
             P("<w:r><w:t>a</w:t></w:r>") + kTable + P("<w:r><w:t>d</w:t></w:r>")},
        Case{P(R("ab")) + P(R("cd")),
             {1, 4},
             P(R("x")),
             P("<w:r><w:t>a</w:t></w:r>" + R("x")) + P("<w:r><w:t>d</w:t></w:r>")},
        Case{kTable + P(R("b")), {0, 3}, P(R("x")), P(R("x")) + P(R("b"))}));

TEST(BlockInsertion, RefusesBeforeAnythingChanges) {
  const std::string control = Element("sdt", Element("sdtContent", R("ab")));
  std::string deep = P();
  for (int i = 0; i < 84; ++i) deep = Tbl(Tr(Element("tc", deep)));
  const std::tuple<std::string, Span, std::string, int32_t> cases[] = {
      {P(control), {1, 1}, kTable, 5904},
      {P(R("x"), Field("begin"), Code("ab"), Field("end")), {3, 3}, kTable, 5904},
      {kTable + P(), {2, 2}, kTable, 5904},
      {kTable + P() + kTable + P(), {0, 4}, kTable, 5904},
      {P(R("a")) + kTable + P(), {0, 3}, kTable, 5904},
      {P(R("ab")), {1, 2}, "<w:p>", 5792},
      {P(R("ab")), {0, 9}, kTable, 4608},
      {P(R("ab")), {1, 2}, deep, 5904},
  };
  for (const auto& [body, span, blocks, number] : cases) {
    SCOPED_TRACE(body);
    const auto document = Open(body);
    const auto& source = blocks;
    const auto& place = span;
    EXPECT_EQ(FailureOf([&] { document->Main().InsertBlocks(place, Source(source)); }).number(),
              number);
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
  EXPECT_EQ(story.TableCount(), 3);
  table.AddRow();
  table.CellAt(2, 1)->SetText(u"new");
  story.TableAt(1)->CellAt(1, 1)->SetText(u"N");
  EXPECT_EQ(TextOf(story),
            u"o\rN\r\a\r\ax\rn\r\a\r\ae\ra\r\an\r\a\r\a\r\a\r\anew\r\a\r\a\r\aend\r");
  EXPECT_EQ(story.Text(end.span()), u"end");
  EXPECT_EQ(TextOf(Document::Open(document->Save(DocumentKind::kDocx))->Main()), TextOf(story));
}

TEST(BlockInsertion, SaysWhatThePlaceIsLike) {
  const std::string page =
      "<w:sectPr><w:pgSz w:w=\"10000\"/><w:pgMar w:left=\"900\" "
      "w:right=\"100\"/></w:sectPr>";
  const auto document = Open(P(R("a")) + Tbl(Tr(kCell + P() + "</w:tc>", C("b"))) + P() + page);
  std::vector<int32_t> widths;
  for (const int32_t at : {0, 2, 3}) {
    document->Main().InsertBlocks({at, at}, [&](const InsertionPlace& place) {
      EXPECT_EQ(place.prefix, "w:");
      widths.push_back(place.width);
      return std::string();
    });
  }
  EXPECT_EQ(widths, (std::vector<int32_t>{9000, 2000, 4284}));
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
      const std::string& w = place.prefix;
      return "<" + w + "p " + w + "rsidR=\"1\"><" + w + "r><" + w + "t>x</" + w + "t></" + w +
             "r></" + w + "p>";
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
