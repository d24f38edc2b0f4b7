// Finding tags however a file splits them, and what replacing makes of the XML.
#include <gmock/gmock.h>

#include "tests/desktop/word/document/Builders.h"

namespace kestrelon::desktop::word {
namespace {

struct SplitCase {
  const char* name;
  std::string before;
  std::string after;  // with "<n>" replaced by "Ann", "&gt;" shown as ">"
};

std::string Bold(const std::string& text) { return R(text, "<w:b/>"); }

const std::string kMark = "<w:proofErr w:type=\"spellStart\"/>";
const std::string kBookmark =
    "<w:bookmarkStart w:id=\"1\" w:name=\"x\"/><w:bookmarkEnd w:id=\"1\"/>";
const std::string kSeparator = Field("separate");

std::string T(const std::string& text) { return Rx("<w:t>" + Escaped(text) + "</w:t>"); }
std::string BoldT(const std::string& text) {
  return Rx("<w:rPr><w:b/></w:rPr><w:t>" + Escaped(text) + "</w:t>");
}

const SplitCase kSplits[] = {
    {"one run", P(R("a<n>b")), P(T("aAnnb"))},
    {"no preserve needed any more", P(R(" <n> ")), P(R(" Ann "))},
    {"every character in a run", P(Bold("<"), R("n"), R(">")), P(BoldT("Ann"))},
    {"tail keeps its run", P(R("x<"), Bold("n>y")), P(T("xAnn"), BoldT("y"))},
    {"proofing and bookmarks", P(R("<"), kMark, R("n"), kBookmark, R(">")),
     P(T("Ann"), kMark, kBookmark)},
    {"comment anchors",
     P(R("<"), "<w:commentRangeStart w:id=\"0\"/>", R("n"),
       Rx("<w:annotationRef/><w:commentReference w:id=\"0\"/>"), R(">")),
     P(T("Ann"), "<w:commentRangeStart w:id=\"0\"/>",
       Rx("<w:annotationRef/><w:commentReference w:id=\"0\"/>"))},
    {"hyperlink", P(R("<"), Element("hyperlink r:id=\"rId1\"", R("n>"))),
     P(T("Ann"), "<w:hyperlink r:id=\"rId1\"></w:hyperlink>")},
    {"insertion", P(Element("ins w:id=\"1\"", R("<n")), R(">")),
     P("<w:ins w:id=\"1\">" + T("Ann") + "</w:ins>")},
    {"deleted text between",
     P(R("<"), Element("del w:id=\"1\"", Rx("<w:delText>zz</w:delText>")), R("n>")),
     P(T("Ann"), "<w:del w:id=\"1\"><w:r><w:delText>zz</w:delText></w:r></w:del>")},
    {"content control keeps a run",
     P(R("<"),
       Element("sdt", "<w:sdtPr><w:showingPlcHdr/></w:sdtPr>" + Element("sdtContent", R("n"))),
       R(">")),
     P(T("Ann"), "<w:sdt><w:sdtPr></w:sdtPr><w:sdtContent><w:r></w:r></w:sdtContent></w:sdt>")},
    {"smart tag, custom XML, simple field",
     P(Element("smartTag", R("<")), Element("customXml", R("n")), Element("fldSimple", R(">"))),
     P("<w:smartTag>" + T("Ann") +
       "</w:smartTag><w:customXml></w:customXml><w:fldSimple>"
       "</w:fldSimple>")},
    {"inside a field's result",
     P(Field("begin"), Code("MERGEFIELD n"), kSeparator, R("<n>"), Field("end")),
     P(Field("begin"), Code("MERGEFIELD n"), kSeparator, T("Ann"), Field("end"))},
    {"a whole field within",
     P(R("<"), Field("begin"), Code("X"), kSeparator, R("n"), Field("end"), R(">")), P(T("Ann"))},
    {"half a field stays",
     P(R("<"), Field("begin"), Code("X"), kSeparator, R("n>"), R("z"), Field("end")),
     P(T("Ann"), Field("begin"), Code("X"), kSeparator, R("z"), Field("end"))},
    {"alternative branches",
     P("<mc:AlternateContent><mc:Choice Requires=\"q\">" + R("<n>") + "</mc:Choice><mc:Fallback>" +
       Bold("<n>") + "</mc:Fallback></mc:AlternateContent>"),
     P("<mc:AlternateContent><mc:Choice Requires=\"q\">" + T("Ann") + "</mc:Choice><mc:Fallback>" +
       T("Ann") + "</mc:Fallback></mc:AlternateContent>")},
    {"references and CDATA", P(Rx("<w:t>&#60;<![CDATA[n>]]> &amp; caf\xC3\xA9</w:t>")),
     P(Rx("<w:t>Ann &amp; caf\xC3\xA9</w:t>"))},
    {"pretty-printed", P("\n  ", Rx("\n <w:t>x<!-- c -->&lt;n></w:t>\n"), "\n"),
     P("\n  ", Rx("\n <w:t>xAnn</w:t>\n"), "\n")},
    {"self-closing neighbours", P("<w:r/>", R("<n>"), "<w:r/>"), P("<w:r/>", T("Ann"), "<w:r/>")},
};

TEST(Tag, IsFoundAndReplacedHoweverItIsSplit) {
  for (const SplitCase& one : kSplits) {
    SCOPED_TRACE(one.name);
    const std::string around = P(R("keep <me>")) + "<w:sectPr />";
    const auto document = Open(one.before + around);
    EXPECT_EQ(ReplaceEvery(document->Main(), u"<N>", u"Ann"), 1);
    std::string saved = SavedBody(*document);
    for (size_t at; (at = saved.find("&gt;")) != std::string::npos;) saved.replace(at, 4, ">");
    EXPECT_EQ(saved, one.after + around);
  }
}

TEST(Tag, IsNotFoundWhereThereIsNone) {
  const std::string cases[] = {
      P(R("<")) + P(R("n>")),
      P(Element("del", R("<n>"))),
      P(Element("moveFrom", R("<n>"))),
      P(Rx("<w:delText>&lt;n></w:delText>")),
      P(Code("&lt;n>")),
      P(R("<"), Rx("<w:drawing/>"), R("n>")),
      P(R("<"), Rx("<w:br/>"), R("n>")),
      Tbl(Tr(C("<"), C("n>"))),
  };
  for (const std::string& blocks : cases) {
    SCOPED_TRACE(blocks);
    const auto document = Open(blocks);
    EXPECT_EQ(document->Main().Find(FindPattern(u"<n>", false), 0, document->Main().Length()),
              std::nullopt);
    EXPECT_FALSE(document->changed());
  }
}

struct ValueCase {
  String value;
  std::string content;  // of the run
};

TEST(Tag, ValueBecomesBreaksTabsAndAllowedCharacters) {
  const ValueCase cases[] = {
      {u"a\r\nb\nc\rd\ve",
       "<w:t>xa</w:t><w:br/><w:t>b</w:t><w:br/><w:t>c</w:t><w:br/><w:t>d</w:t>"
       "<w:br/><w:t>ey</w:t>"},
      {u"a\tb", "<w:t>xa</w:t><w:tab/><w:t>by</w:t>"},
      {u"\n", "<w:t>x</w:t><w:br/><w:t>y</w:t>"},
      {u" & <\u00A3>\"", "<w:t>x &amp; &lt;\xC2\xA3&gt;\"y</w:t>"},
      {u"\u0001\u000B\uFFFE\xD800q\xDC00\U0001F600",
       "<w:t>x</w:t><w:br/><w:t>q\xF0\x9F\x98\x80y</w:t>"},
      {u"", "<w:t>xy</w:t>"},
  };
  for (const ValueCase& one : cases) {
    SCOPED_TRACE(one.content);
    const auto document = Open(P(R("x<n>y")));
    Story& main = document->Main();
    ReplaceEvery(main, u"<n>", one.value);
    EXPECT_EQ(SavedBody(*document), P(Rx(one.content)));
    const auto again = Document::Open(document->Save(DocumentKind::kDocx));
    EXPECT_EQ(TextOf(again->Main()), TextOf(main));
  }
}

TEST(Tag, EmptiedRunGoesUnlessItHoldsMore) {
  const auto document =
      Open(P(R("<n>"), Rx("<w:t>&lt;n></w:t><w:lastRenderedPageBreak/>"), R("z")));
  ReplaceEvery(document->Main(), u"<n>", u"");
  EXPECT_EQ(SavedBody(*document), P(Rx("<w:lastRenderedPageBreak/>"), R("z")));
}

TEST(Tag, OfStrictFilesAndOtherPrefixes) {
  const std::string strict = Main(P(R("<n>")), "http://purl.oclc.org/ooxml/wordprocessingml/main");
  const std::string unprefixed = "<document xmlns=\"" + std::string(kWordUri) +
                                 "\"><body><p><r><t>&lt;n></t></r></p></body></document>";
  const std::string rebound = "<a:document xmlns:a=\"" + std::string(kWordUri) +
                              "\" xmlns:w=\"urn:other\"><a:body><w:p/><a:p><a:r><a:t>&lt;n></a:t>"
                              "</a:r></a:p></a:body></a:document>";
  for (const std::string& main : {strict, unprefixed, rebound}) {
    SCOPED_TRACE(main);
    const auto document = Document::Open(Packed(main));
    EXPECT_EQ(ReplaceEvery(document->Main(), u"<n>", u"A\nB"), 1);
    const auto again = Document::Open(document->Save(DocumentKind::kDocx));
    EXPECT_EQ(TextOf(again->Main()), u"A\vB\r");
  }
}

TEST(Tag, InsertionTakesTheFormattingBeforeIt) {
  struct Case {
    std::string before;
    int32_t at;
    std::string after;
  };
  const std::string mark = "<w:pPr><w:rPr><w:ins w:id=\"1\"/><w:i/></w:rPr></w:pPr>";
  const Case cases[] = {
      {P(Bold("ab"), R("c")), 2, P(BoldT("abX"), R("c"))},
      {P(R("a"), Bold("b")), 0, P(T("Xa"), Bold("b"))},
      {P(Rx("<w:tab/>"), R("b")), 1, P(Rx("<w:tab/><w:t>X</w:t>"), R("b"))},
      {"<w:p/>", 0, P(T("X"))},
      {P(mark), 0, P(mark, Rx("<w:rPr><w:i/></w:rPr><w:t>X</w:t>"))},
      {P(Element("r", "<w:rPr><w:u/></w:rPr>")), 0, P(Rx("<w:rPr><w:u/></w:rPr><w:t>X</w:t>"))},
      {P(Field("begin"), Code("c"), Field("end")), 3,
       P(Field("begin"), Code("c"), Field("end"), T("X"))},
      {"", 0, P(T("X"))},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.after);
    const auto document = Open(one.before);
    EXPECT_EQ(document->Main().Replace({one.at, one.at}, u"X"), (Span{one.at, one.at + 1}));
    EXPECT_EQ(SavedBody(*document), one.after);
  }
}

}  // namespace
}  // namespace kestrelon::desktop::word
