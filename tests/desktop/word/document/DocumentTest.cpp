// Stories beside the main text, and what saving does to the package.
#include <gmock/gmock.h>

#include "desktop/word/package/Package.h"
#include "tests/desktop/word/document/Builders.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop::word {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::string Root(const std::string& name, const std::string& content) {
  return "<w:" + name + " xmlns:w=\"" + kWordUri + "\">" + content + "</w:" + name + ">";
}

std::string Section(const std::string& references) { return Element("sectPr", references); }
std::string Reference(const std::string& kind, const std::string& type, int id) {
  return "<w:" + kind + "Reference w:type=\"" + type + "\" r:id=\"rId" + std::to_string(id) +
         "\"/>";
}

std::vector<String> Chain(Document& document, StoryType type) {
  std::vector<String> texts;
  for (Story* story : document.FirstStories()) {
    for (; story != nullptr && story->type() == type; story = document.NextStory(*story)) {
      texts.push_back(TextOf(*story));
    }
  }
  return texts;
}

TEST(Stories, AreLinkedBySection) {
  const auto document = Open(
      P("<w:pPr>" + Section(Reference("header", "default", 1) + Reference("footer", "first", 2)) +
        "</w:pPr>") +
          P(Rx("<w:footnoteReference w:id=\"1\"/>")) +
          Section(Reference("header", "default", 3) + Reference("header", "first", 1) +
                  Reference("header", "even", 4) + Reference("footer", "default", 9)),
      {{"/x/one.xml", "/header", Root("hdr", P(R("one")))},
       {"/x/two.xml", "/footer", Root("ftr", P(R("two")))},
       {"/x/three.xml", "/header", Root("hdr", P(R("three")))},
       {"/x/four.xml", "/header", Root("hdr", "")},
       {"/x/notes.xml", "/footnotes",
        Root("footnotes", Element("footnote w:type=\"separator\" w:id=\"0\"", P(R("-"))) +
                              Element("footnote w:id=\"1\"", P(R("<n>"))) +
                              Element("footnote w:id=\"2\"", P(R("b"))))},
       {"/x/comments.xml", "/comments", Root("comments", "")}});
  std::vector<StoryType> types;
  for (const Story* story : document->FirstStories()) types.push_back(story->type());
  EXPECT_THAT(types,
              ElementsAre(StoryType::kMain, StoryType::kFootnotes, StoryType::kEvenPagesHeader,
                          StoryType::kPrimaryHeader, StoryType::kFirstPageFooter));
  EXPECT_THAT(Chain(*document, StoryType::kPrimaryHeader), ElementsAre(u"one\r", u"three\r"));
  EXPECT_THAT(Chain(*document, StoryType::kFootnotes), ElementsAre(u"<n>\rb\r"));
  Story& notes = *document->FirstStories()[1];
  EXPECT_EQ(notes.ReplaceAll(FindPattern(u"<n>", false), u"Ann"), 1);
  EXPECT_EQ(NumberOf([&] { notes.Delete({2, 5}); }), 5904);
  Story& even = *document->FirstStories()[2];
  even.Replace({0, 0}, u"e");
  const std::string saved = document->Save(DocumentKind::kDocx);
  EXPECT_THAT(PartOf(saved, "/x/notes.xml"), HasSubstr("<w:t>Ann</w:t>"));
  EXPECT_THAT(PartOf(saved, "/x/four.xml"),
              HasSubstr("<w:p><w:r><w:t>e</w:t></w:r></w:p></w:hdr>"));
}

TEST(Stories, TextBoxesFillBothCopies) {
  const auto document = Open(P(TextBox(P(R("<a"), R(">")) + P(R("x")), P(R("<a>")) + P(R("x")))) +
                             P(TextBox(P(R("1<a>")), P(R("<a> only")))) +
                             P(Rx("<w:pict><v>" + Element("txbxContent", P()) + "</v></w:pict>")));
  Story& main = document->Main();
  ASSERT_EQ(main.TextBoxCount(), 3);
  EXPECT_EQ(main.TextBoxAt(3)->Length(), 1);
  EXPECT_EQ(NumberOf([&] { main.TextBoxAt(4); }), 5941);
  EXPECT_THAT(Chain(*document, StoryType::kTextFrame), ElementsAre(u"<a>\rx\r", u"1<a>\r", u"\r"));
  EXPECT_EQ(main.ReplaceAll(FindPattern(u"<a>", false), u"no"), 0);
  EXPECT_EQ(ReplaceEvery(*main.TextBoxAt(1), u"<a>", u"Ann"), 1);
  main.TextBoxAt(1)->Delete({4, 5});
  EXPECT_EQ(ReplaceEvery(*main.TextBoxAt(2), u"<a>", u"Bob"), 1);
  const std::string body = SavedBody(*document);
  const std::string ann = P(Rx("<w:t>Ann</w:t>")) + P();
  EXPECT_EQ(body, P(TextBox(ann, ann)) +
                      P(TextBox(P(Rx("<w:t>1Bob</w:t>")), P(Rx("<w:t>Bob only</w:t>")))) +
                      P(Rx("<w:pict><v><w:txbxContent><w:p></w:p></w:txbxContent></v></w:pict>")));
  main.Delete({0, 2});
  EXPECT_EQ(main.TextBoxCount(), 2);
}

TEST(Stories, TextBoxesWithinTextBoxesFillAllTheirCopies) {
  const std::string inner = P(R("<n>"));
  const std::string plain = Rx(Element("pict", Element("txbxContent", inner)));
  const std::string outer = R("outer <n>");
  const auto document = Open(P(TextBox(P(outer, TextBox(inner, inner)), P(outer, plain))));
  EXPECT_THAT(Chain(*document, StoryType::kTextFrame), ElementsAre(u"outer <n>\x1\r", u"<n>\r"));
  Story& main = document->Main();
  ASSERT_EQ(main.TextBoxCount(), 2);
  for (const int32_t box : {1, 2}) EXPECT_EQ(ReplaceEvery(*main.TextBoxAt(box), u"<n>", u"9"), 1);
  const std::string body = SavedBody(*document);
  EXPECT_EQ(std::count(body.begin(), body.end(), '9'), 5) << "two of the outer, three of the inner";
  EXPECT_THAT(body, Not(HasSubstr("&lt;n>")));
}

TEST(Save, LeavesUntouchedPartsAlone) {
  const std::string odd = "\xEF\xBB\xBF<?xml version='1.0'?>\n<!-- c --><w:hdr xmlns:w = '" +
                          std::string(kWordUri) + "' ><w:p\n/></w:hdr>\n";
  const std::string main = Main(P(R("<n>")) + Section(Reference("header", "default", 1)));
  const auto document = Document::Open(Packed(main, {{"/x/h.xml", "/header", odd}}));
  document->FirstStories();
  EXPECT_FALSE(document->changed());
  EXPECT_EQ(PartOf(document->Save(DocumentKind::kDocx), "/letter/main.xml"), main);
  ReplaceEvery(document->Main(), u"<n>", u"Ann");
  EXPECT_TRUE(document->changed());
  const std::string saved = document->Save(DocumentKind::kDocx);
  EXPECT_EQ(PartOf(saved, "/x/h.xml"), odd);
  EXPECT_EQ(document->Save(DocumentKind::kDocx), saved);
  document->Main().Replace({0, 3}, u"Bob");
  EXPECT_THAT(SavedBody(*document), HasSubstr("<w:t>Bob</w:t>"));
  EXPECT_TRUE(document->changed());
}

TEST(Save, ChangesTheKindAndLeavesMacrosOut) {
  const std::string macro_template =
      "application/vnd.ms-word.template.macroEnabledTemplate.main+xml";
  const std::vector<SidePart> parts = {
      {"/x/macros.bin", "/vbaProject", "macros", "application/vnd.ms-office.vbaProject"},
      {"/x/data.xml", "/wordVbaData", "<a/>", "application/vnd.ms-word.vbaData+xml"},
      {"/x/kept.xml", "/other", "<a/>"}};
  const auto document = Document::Open(Packed(Main(P()), parts, macro_template));
  auto package = Package::Open(document->Save(DocumentKind::kDocm));
  EXPECT_EQ(package->ContentType("/letter/main.xml"),
            "application/vnd.ms-word.document.macroEnabled.main+xml");
  EXPECT_TRUE(package->HasPart("/x/macros.bin"));
  package = Package::Open(document->Save(DocumentKind::kDocx));
  EXPECT_EQ(package->ContentType("/letter/main.xml"),
            "application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml");
  EXPECT_FALSE(package->HasPart("/x/macros.bin"));
  EXPECT_FALSE(package->HasPart("/x/data.xml"));
  EXPECT_EQ(package->Relationships("/letter/main.xml").size(), 1u);
}

TEST(Save, BoundControlsKeepTheirNewText) {
  const auto control = [](const std::string& binding, const std::string& content) {
    return P(Element("sdt", "<w:sdtPr>" + binding + "</w:sdtPr>" + Element("sdtContent", content)));
  };
  const std::string found =
      "<w:dataBinding w:prefixMappings=\"xmlns:k='urn:k'\" w:xpath=\"/k:a[1]/k:b[1]\" "
      "w:storeItemID=\"{abc}\"/>";
  const std::string attribute =
      "<w:dataBinding w:prefixMappings=\"xmlns:k='urn:k'\" "
      "w:xpath=\"/k:a/@q\" w:storeItemID=\"{ABC}\"/>";
  const std::string lost = "<w:dataBinding w:xpath=\"/none\" w:storeItemID=\"{ABC}\"/>";
  const std::string elsewhere = "<w:dataBinding w:xpath=\"/a\" w:storeItemID=\"{OTHER}\"/>";
  const std::string broken = "<w:dataBinding w:xpath=\"/k:a[\" w:storeItemID=\"{ABC}\"/>";
  const std::string blocks = control(found, R("x <n> y")) + control(attribute, R("<n>\t&")) +
                             control(lost, R("<n>")) + control(elsewhere, R("<n>")) +
                             control(broken, R("<n>")) + control(lost, R("untouched"));
  std::string package = Packed(Main(blocks), {{"/x/data.xml", "/customXml",
                                               "<k:a xmlns:k=\"urn:k\" q=\"1\"><k:b>old</k:b>"
                                               "<k:c>kept</k:c></k:a>"}});
  auto open = Package::Open(package);
  open->Add("/x/props.xml", "application/xml", "<p:i xmlns:p=\"urn:p\" p:itemID=\"{Abc}\"/>");
  open->AddRelationship("/x/data.xml", "http://r/customXmlProps", "/x/props.xml");
  const auto document = Document::Open(open->Write());
  ReplaceEvery(document->Main(), u"<n>", u"A\nB");
  const std::string saved = document->Save(DocumentKind::kDocx);
  const std::string data = PartOf(saved, "/x/data.xml");
  EXPECT_THAT(data, HasSubstr("<k:b>x A\nB y</k:b><k:c>kept</k:c>"));
  EXPECT_THAT(data, HasSubstr("q=\"A&#10;B &amp;\""));
  const std::string body = PartOf(saved, "/letter/main.xml");
  EXPECT_THAT(body, HasSubstr(found));
  EXPECT_THAT(body, HasSubstr(attribute));
  EXPECT_THAT(body, HasSubstr("<w:sdtPr></w:sdtPr>"));
  EXPECT_THAT(body, HasSubstr(lost + "</w:sdtPr><w:sdtContent>" + R("untouched")));
  EXPECT_THAT(body, Not(HasSubstr("OTHER")));
  EXPECT_THAT(body, Not(HasSubstr("/k:a[\"")));
}

TEST(Open, RefusesWhatIsNoDocument) {
  const std::string cases[] = {
      Packed(Main(P()), {}, "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"),
      Packed("<w:document xmlns:w=\"" + std::string(kWordUri) + "\"/>"),
      Packed("<document><body/></document>"),
      Packed(Main("<w:p>")),
      Packed(Main(P(Rx("<w:t>&unknown;</w:t>")))),
      Packed(Main(P(Rx("<w:t>\xC0\x80</w:t>")))),
      "no zip",
  };
  for (const std::string& bytes : cases) {
    EXPECT_EQ(NumberOf([&] { Document::Open(bytes); }), 5792);
  }
  const auto document = Open(P() + Section(Reference("header", "default", 1)),
                             {{"/x/h.xml", "/header", "<broken></other>"}});
  EXPECT_EQ(NumberOf([&] { document->FirstStories(); }), 5792);
  EXPECT_EQ(NumberOf([&] { document->FirstStories(); }), 5792);
  document->Main().Replace({0, 0}, u"x");
  EXPECT_THAT(SavedBody(*document), HasSubstr("<w:t>x</w:t>"));
}

}  // namespace
}  // namespace kestrelon::desktop::word
