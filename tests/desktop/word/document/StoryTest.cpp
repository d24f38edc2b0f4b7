// Positions, deleting over marks, tables, tracked spans and patterns.
#include <gmock/gmock.h>

#include <algorithm>

#include "tests/desktop/word/document/Builders.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop::word {
namespace {

using testing::ElementsAre;

TEST(Story, CountsPositionsAsWordDoes) {
  struct Case {
    std::string blocks;
    String text;
    int32_t length;
  };
  const Case cases[] = {
      {P(R("ab")), u"ab\r", 3},
      {"", u"\r", 1},
      {P() + P(), u"\r\r", 2},
      {Tbl(Tr(C("a"), C("b"))) + P(), u"a\r\ab\r\a\r\a\r", 6},
      {Tbl(Tr(Element("tc", P(R("x")) + P(R("y"))))) + P(), u"x\ry\r\a\r\a\r", 6},
      {Tbl(Tr(Element("tc", Tbl(Tr(C("n"))) + P()))) + P(), u"n\r\a\r\a\r\a\r\a\r", 6},
      {Tbl(Tr(Element("tc", "<w:tcPr/>"))), u"\r\a\r\a\r", 3},
      {P(Rx("<w:tab/><w:br/><w:br w:type=\"page\"/><w:cr/><w:noBreakHyphen/><w:softHyphen/>")),
       u"\t\v\f\v\x1E\x1F\r", 7},
      {P(Rx("<w:drawing/><w:footnoteReference w:id=\"2\"/><w:sym w:char=\"F0A7\"/>")),
       u"\x01\x02\uF0A7\r", 4},
      {P(Field("begin"), Code("PAGE"), Field("separate"), R("1"), Field("end")),
       u"\x13PAGE\x14"
       u"1\x15\r",
       9},
      {P("<w:pPr><w:sectPr/></w:pPr>", R("a")) + P(), u"a\f\r", 3},
      {Element("sdt", "<w:sdtPr/>" + Element("sdtContent", P(R("a")) + P())), u"a\r\r", 3},
      {P(R("a"), Element("del", R("b")), Rx("<w:t> c </w:t><w:t>  </w:t>")), u"ac\r", 3},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.blocks);
    const auto document = Open(one.blocks);
    EXPECT_EQ(TextOf(document->Main()), one.text);
    EXPECT_EQ(document->Main().Length(), one.length);
  }
}

TEST(Story, KnowsWhatLiesInATable) {
  // a \r | n \a \a | \r  at 0 1 | 2 3 4 | 5
  const auto document = Open(P(R("a")) + Tbl(Tr(C("n"))) + P());
  const Story& main = document->Main();
  EXPECT_TRUE(main.IsInTable({2, 3}));
  EXPECT_TRUE(main.IsInTable({4, 4}));
  EXPECT_FALSE(main.IsInTable({1, 3}));
  EXPECT_FALSE(main.IsInTable({4, 6}));
  EXPECT_FALSE(main.IsInTable({0, 1}));
  EXPECT_EQ(NumberOf([&] { main.IsInTable({0, 7}); }), 4608);
  EXPECT_EQ(NumberOf([&] { main.Text({-1, 0}); }), 4608);
}

struct DeleteCase {
  std::string blocks;
  Span span;
  std::string after;  // the body; "5904" when it is refused
};

TEST(Story, DeletesOverMarks) {
  const std::string left = "<w:pPr><w:jc w:val=\"left\"/></w:pPr>";
  const std::string right = "<w:pPr><w:jc w:val=\"right\"/></w:pPr>";
  const std::string mark = "<w:bookmarkStart w:id=\"1\"/>";
  const std::string table = Tbl(Tr(C("n"), C("m")));  // n \a m \a \a
  const std::string wide = Element("tc", P(R("a")) + P(R("b")));
  const DeleteCase cases[] = {
      {P(left, R("ab")) + P(right, R("cd")),
       {1, 4},
       P(right, Rx("<w:t>a</w:t>"), Rx("<w:t>d</w:t>"))},
      {P(left, R("ab")) + P(right, R("cd")), {0, 3}, P(right, R("cd"))},
      {P(left, R("ab")) + P(right, R("cd")), {2, 3}, P(right, R("ab"), R("cd"))},
      {P(R("a"), mark) + P(R("b"), mark) + P(R("c")), {0, 4}, P(mark, mark, R("c"))},
      {P(R("ab")), {1, 3}, P(Rx("<w:t>a</w:t>"))},
      {P(R("a")) + table + P(R("z")), {1, 3}, "5904"},
      {P(R("a")) + table + P(R("z")), {3, 5}, "5904"},
      {P(R("a")) + table + P(R("z")), {6, 7}, "5904"},
      {P(R("a")) + table + P(R("z")), {6, 8}, "5904"},
      {P(R("a")) + table + P(R("z")), {2, 7}, P(R("a")) + P(R("z"))},
      {P(R("a")) + table + P(R("z")), {0, 7}, P(R("z"))},
      {P(R("a")) + table + P(R("zy")), {1, 8}, P(R("a"), Rx("<w:t>y</w:t>"))},
      {P(R("a")) + table + P(R("z")),
       {2, 4},
       P(R("a")) + Tbl(Tr(Element("tc", P()), C("m"))) + P(R("z"))},
      // The mark before a table stays; an empty paragraph may go.
      {P(R("a")) + table + P(R("z")), {1, 2}, P(R("a")) + table + P(R("z"))},
      {P(R("q")) + P() + table + P(), {2, 3}, P(R("q")) + table + P()},
      {table + P() + table + P(), {5, 6}, table + P() + table + P()},
      {Tbl(Tr(wide)) + P(), {1, 2}, Tbl(Tr(Element("tc", P(R("a"), R("b"))))) + P()},
      {Element("sdt", Element("sdtContent", P(R("a")))) + P(R("b")), {0, 2}, P(R("b"))},
      {P(R("ab")) + table + table + P(), {1, 8}, P(Rx("<w:t>a</w:t>")) + table + P()},
      {table + table + P(), {0, 5}, table + P()},
  };
  for (const DeleteCase& one : cases) {
    SCOPED_TRACE(one.blocks + " " + std::to_string(one.span.start) + ".." +
                 std::to_string(one.span.end));
    const auto document = Open(one.blocks);
    Story& main = document->Main();
    const String before = TextOf(main);
    if (one.after == "5904") {
      EXPECT_EQ(NumberOf([&] { main.Delete(one.span); }), 5904);
      EXPECT_EQ(TextOf(main), before);
      EXPECT_FALSE(document->changed());
      continue;
    }
    const int32_t length = main.Length();
    std::vector<TrackedSpan> places;
    for (int32_t at = 0; at < length; ++at) places.emplace_back(main, Span{at, at});
    main.Delete(one.span);
    for (int32_t at = one.span.start; at < length; ++at) {
      const int32_t moved = std::max(at - (length - main.Length()), one.span.start);
      EXPECT_EQ(places[static_cast<size_t>(at)].span(), (Span{moved, moved})) << at;
    }
    EXPECT_EQ(SavedBody(*document), one.after);
    EXPECT_EQ(TextOf(Document::Open(document->Save(DocumentKind::kDocx))->Main()), TextOf(main));
  }
}

TEST(Story, RefusesToReplaceAnEndOfRow) {
  const auto document = Open(P(R("ad")) + Tbl(Tr(C("x"))) + P(R("z")));
  Story& main = document->Main();  // a d \r | x \a \a | z \r
  EXPECT_EQ(NumberOf([&] { main.Replace({1, 4}, u"-"); }), 5904);
  EXPECT_EQ(NumberOf([&] { main.Replace({5, 5}, u"-"); }), 5904);
  EXPECT_EQ(main.Replace({3, 6}, u"t"), (Span{3, 4}));
  EXPECT_EQ(TextOf(main), u"ad\rtz\r");
}

TEST(Story, TrackedSpansAreMovedAndSet) {
  const auto document = Open(P(R("abc")));
  TrackedSpan moved(document->Main(), {1, 2});
  TrackedSpan span = std::move(moved);
  document->Main().Replace({0, 1}, u"XYZ");
  EXPECT_EQ(span.span(), (Span{3, 4}));
  span.Set({4, 5});
  document->Main().Delete({0, 4});
  EXPECT_EQ(span.span(), (Span{0, 1}));
  EXPECT_EQ(NumberOf([&] { span.Set({0, 9}); }), 4608);
}

TEST(Story, FindsPatterns) {
  struct Case {
    String pattern;
    std::vector<Span> matches;  // one after the other, forward
  };
  //                           0123456 7  8 910 11 12
  const auto document =
      Open(P(R("aB1  \xE2\x80\x99^"), Rx("<w:tab/>"), R("b\xC3\x84")) + P(R("x")) + P());
  Story& main = document->Main();
  const Case cases[] = {
      {u"b", {{1, 2}, {8, 9}}},
      {u"\u00E4", {{9, 10}}},
      {u"'^^", {{5, 7}}},
      {u"^t", {{7, 8}}},
      {u"^9b", {{7, 9}}},
      {u"^0066", {{1, 2}, {8, 9}}},
      {u"^#", {{2, 3}}},
      {u"^$^#", {{1, 3}}},
      {u"1^w", {{2, 5}}},
      {u"^?^t", {{6, 8}}},
      {u"^px", {{10, 12}}},
      {u"^p^p", {{12, 14}}},
      {u"^", {{6, 7}}},
      {u"^k", {}},
      {u"", {}},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(ToUtf8(one.pattern));
    const FindPattern pattern(one.pattern, false);
    std::vector<Span> matches;
    for (int32_t from = 0; const auto match = main.Find(pattern, from, main.Length());) {
      matches.push_back(*match);
      from = match->end;
    }
    EXPECT_EQ(matches, one.matches);
    const auto last = main.Find(pattern, 0, main.Length(), false);
    EXPECT_EQ(last, matches.empty() ? std::nullopt : std::optional(matches.back()));
  }
  EXPECT_EQ(main.Find(FindPattern(u"b", true), 0, 14), (Span{8, 9}));
  EXPECT_EQ(main.Find(FindPattern(u"b", false), 2, 8), std::nullopt);
  EXPECT_EQ(main.Find(FindPattern(u"^t^0098", false), 0, 8), std::nullopt);
  EXPECT_EQ(NumberOf([] { FindPattern(String(256, u'a'), false); }), 5854);
  EXPECT_EQ(NumberOf([] { FindPattern(String(255, u'a'), false); }), 0);
}

TEST(Story, ReplacesAllWithCodes) {
  const auto document = Open(P(R("a<x>b<X>")) + P(R("<x>")));
  Story& main = document->Main();
  EXPECT_EQ(main.ReplaceAll(FindPattern(u"<x>", false), u"[^&^t^l^^^+^0065^q]"), 3);
  EXPECT_EQ(TextOf(main), u"a[<x>\t\v^\u2014A^q]b[<X>\t\v^\u2014A^q]\r[<x>\t\v^\u2014A^q]\r");
  EXPECT_EQ(main.ReplaceAll(FindPattern(u"^p", false), u"|"), 1);
  EXPECT_EQ(main.ReplaceAll(FindPattern(u"none", false), u""), 0);
  EXPECT_EQ(NumberOf([&] { main.ReplaceAll(FindPattern(u"none", false), String(256, u'a')); }),
            5854);
}

TEST(Table, GivesCellsAndTheirText) {
  const std::string merged =
      Element("tc", "<w:tcPr><w:gridSpan w:val=\"2\"/></w:tcPr>" + P(R("c")));
  const auto document = Open(
      P() + Tbl(Tr(C("a"), Element("tc", P(R("b")) + Tbl(Tr(C("n"))) + P(R("e")))), Tr(merged)) +
      P());
  Story& main = document->Main();
  ASSERT_EQ(main.TableCount(), 1);
  Table& table = *main.TableAt(1);
  EXPECT_EQ(table.ColumnCount(), 2);
  EXPECT_EQ(table.CellAt(1, 2)->Text(), u"b\rn\r\a\r\ae\r\a");
  EXPECT_EQ(table.CellAt(1, 2)->span(), (Span{3, 10}));
  EXPECT_EQ(table.CellAt(2, 1)->span(), (Span{11, 13}));
  EXPECT_EQ(table.span(), (Span{1, 14}));
  for (const auto& [row, column] : {std::pair{0, 1}, {1, 0}, {3, 1}, {2, 2}}) {
    EXPECT_EQ(NumberOf([&] { table.CellAt(row, column); }), 5941);
  }
  table.CellAt(1, 1)->SetText(u"x\ny");
  EXPECT_EQ(table.CellAt(1, 1)->Text(), u"x\vy\r\a");
  table.CellAt(1, 2)->SetText(u"z");
  EXPECT_EQ(table.CellAt(1, 2)->Text(), u"z\r\a");
  main.Delete({main.TableAt(1)->span()});
  EXPECT_EQ(main.TableCount(), 0);
  EXPECT_EQ(NumberOf([&] { table.RowCount(); }), 5825);
  EXPECT_EQ(NumberOf([&] { main.TableAt(1); }), 5941);
}

TEST(Table, AddsRowsLikeTheLastOne) {
  const std::string cell =
      "<w:tc><w:tcPr><w:tcW w:w=\"9\"/></w:tcPr><w:p w14:paraId=\"1\" w:rsidR=\"2\">"
      "<w:pPr><w:jc/></w:pPr>" +
      R("<a_b>", "<w:b/>") + R("c") + "</w:p>" + P(R("more")) + "</w:tc>";
  const std::string row =
      "<w:tr w14:paraId=\"3\" w:rsidR=\"4\"><w:tblPrEx/><w:trPr><w:cantSplit/><w:tblHeader/>"
      "</w:trPr>" +
      cell + Element("sdt", Element("sdtContent", "<w:tc/>")) + "</w:tr>";
  const auto document = Open("<w:tbl><w:tblPr/><w:tblGrid/>" + row + "</w:tbl>" + P(R("z")));
  Story& main = document->Main();
  Table& table = *main.TableAt(1);
  const TrackedSpan behind(main, {main.Length() - 2, main.Length()});
  table.AddRow();
  table.AddRow();
  EXPECT_EQ(table.RowCount(), 3);
  EXPECT_EQ(main.Text(behind.span()), u"z\r");
  table.CellAt(3, 1)->SetText(u"v");
  table.CellAt(3, 2)->SetText(u"w");
  const std::string start =
      "<w:tr w:rsidR=\"4\"><w:tblPrEx/><w:trPr><w:cantSplit/></w:trPr><w:tc><w:tcPr>"
      "<w:tcW w:w=\"9\"/></w:tcPr><w:p w:rsidR=\"2\"><w:pPr><w:jc/></w:pPr><w:r>"
      "<w:rPr><w:b/></w:rPr>";
  EXPECT_EQ(SavedBody(*document), "<w:tbl><w:tblPr/><w:tblGrid/>" + row + start +
                                      "</w:r></w:p></w:tc><w:tc><w:p></w:p></w:tc></w:tr>" + start +
                                      "<w:t>v</w:t></w:r></w:p></w:tc><w:tc><w:p><w:r><w:t>w</"
                                      "w:t></w:r></w:p></w:tc></w:tr></w:tbl>" +
                                      P(R("z")));
}

}  // namespace
}  // namespace kestrelon::desktop::word
