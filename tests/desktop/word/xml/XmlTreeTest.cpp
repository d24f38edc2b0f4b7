// The tree over the bytes of a part: what it refuses, and what it leaves as it was.
#include <gmock/gmock.h>

#include "desktop/word/xml/XmlText.h"
#include "desktop/word/xml/XmlTree.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop::word {
namespace {

constexpr char kUri[] = "http://schemas.openxmlformats.org/wordprocessingml/2006/main";

std::string Refusal(const std::string& xml) {
  return ToUtf8(FailureOf([&] { XmlTree(xml, "/p.xml"); }).description());
}

std::string Nested(int depth) {
  std::string xml;
  for (int i = 0; i < depth; ++i) xml += "<a>";
  for (int i = 0; i < depth; ++i) xml += "</a>";
  return xml;
}

TEST(XmlTree, RefusesWhatIsNotWellFormed) {
  const std::pair<std::string, const char*> cases[] = {
      {"", "holds no element"},
      {"  <!-- only -->", "holds no element"},
      {"<a>", "ends before its elements do"},
      {"<a", "ends within a tag"},
      {"<a></b>", "does not match"},
      {"<a></ab>", "does not match"},
      {"<a></a", "does not match"},
      {"</a>", "without a start tag"},
      {"<a/><b/>", "more than one root"},
      {"<a/>text", "text outside"},
      {"text<a/>", "text outside"},
      {"<a x></a>", "without a value"},
      {"<a x=1/>", "without a value"},
      {"<a x='1/>", "unfinished attribute"},
      {"<a x='<'/>", "\"<\" in an attribute"},
      {"<a x='1'y='2'/>", "nothing separates"},
      {"<a x='1' x='2'/>", "an attribute twice"},
      {"<a/ >", "broken tag"},
      {"< a/>", "without a name"},
      {"<a><!-- -- --></a>", "broken comment"},
      {"<a><![CDATA[x</a>", "unfinished CDATA"},
      {"<a><?x</a>", "unfinished instruction"},
      {"<!DOCTYPE a><a/>", "DOCTYPE"},
      {"<a><!ENTITY x 'y'></a>", "not known"},
      {"<?xml version='1.0' encoding='iso-8859-1'?><a/>", "encoding"},
      {Nested(257), "deeper than 256"},
      {Nested(256), "no error"},
      {"<?xml version='1.0' encoding='UTF-8'?>\r\n<a b = \"1'2\" c='\"' ><?p?> &amp; </a "
       ">\n<!---->",
       "no error"},
  };
  for (const auto& [xml, what] : cases) EXPECT_THAT(Refusal(xml), testing::HasSubstr(what)) << xml;
}

TEST(XmlTree, WritesBackWhatItRead) {
  const std::string xml =
      "\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<w:body xmlns:w='" + std::string(kUri) +
      "'> <w:p  a = '1'><!-- <x> --><w:r><w:rPr ><w:b/></w:rPr><w:t>a</w:t ></w:r >"
      "</w:p>\t<q:z xmlns:q=''/><?pi x?></w:body> ";
  XmlTree tree(xml, "/p.xml");
  EXPECT_EQ(tree.Write(), xml);
  EXPECT_FALSE(tree.changed());
  const NodeId paragraph = tree.Child(tree.root(), Name::kParagraph);
  const NodeId run = tree.Child(paragraph, Name::kRun);
  tree.SetLeaf(tree.Child(run, Name::kText), "<w:t>b&amp;</w:t>");
  std::string expected = xml;
  expected.replace(expected.find("<w:t>a</w:t >"), 13, "<w:t>b&amp;</w:t>");
  EXPECT_EQ(tree.Write(), expected);
  EXPECT_TRUE(tree.changed());
}

TEST(XmlTree, TakesNewAndMovedNodes) {
  XmlTree tree("<w:body xmlns:w='" + std::string(kUri) + "'><w:p a='1' x:b='2' /><w:tbl/></w:body>",
               "/p.xml");
  const NodeId paragraph = tree.Child(tree.root(), Name::kParagraph);
  const NodeId run = tree.NewElement(Name::kRun, "<w:r>", "</w:r>");
  tree.Insert(run, kNoNode, tree.NewLeaf(Name::kText, "<w:t>x</w:t>"));
  tree.Insert(paragraph, kNoNode, run);
  tree.Insert(tree.root(), paragraph, tree.CopyOf(paragraph));
  tree.InsertAfter(run, tree.CopyOf(run));
  tree.Remove(tree.Child(tree.root(), Name::kTable));
  const std::string one = "<w:p a='1' x:b='2'><w:r><w:t>x</w:t></w:r>";
  EXPECT_EQ(tree.Write(), "<w:body xmlns:w='" + std::string(kUri) + "'>" + one + "</w:p>" + one +
                              "<w:r><w:t>x</w:t></w:r></w:p></w:body>");
  EXPECT_EQ(tree.Attribute(paragraph, "b"), "2");
  EXPECT_EQ(tree.OpenTagWithout(paragraph, {"b"}), "<w:p a='1'>");
  tree.Remove(run);
  EXPECT_FALSE(tree.IsAttached(run));
}

TEST(XmlTree, KnowsNamesByNamespaceInScope) {
  const XmlTree tree("<a:body xmlns:a='" + std::string(kUri) + "' xmlns:w='urn:x'><w:p xmlns='" +
                         kUri + "'><p/><q xmlns:a='urn:y'><a:p/></q><a:p/></w:p></a:body>",
                     "/p.xml");
  EXPECT_EQ(tree.name(tree.root()), Name::kBody);
  const NodeId other = tree.first_child(tree.root());
  EXPECT_EQ(tree.name(other), Name::kOther);
  const NodeId plain = tree.first_child(other);
  EXPECT_EQ(tree.name(plain), Name::kParagraph);
  EXPECT_EQ(tree.name(tree.first_child(tree.next(plain))), Name::kOther);
  EXPECT_EQ(tree.name(tree.next(tree.next(plain))), Name::kParagraph);
}

TEST(XmlTree, ReadsUtf16) {
  const String xml = u"<?xml version='1.0' encoding='UTF-16'?><a>\u00E9\U0001F600</a>";
  std::string little = "\xFF\xFE";
  std::string big = "\xFE\xFF";
  for (const char16_t unit : xml) {
    little += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    big += {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
  }
  EXPECT_EQ(XmlTree(little, "/p").Write(), "<a>\xC3\xA9\xF0\x9F\x98\x80</a>");
  EXPECT_EQ(XmlTree(big, "/p").Write(), "<a>\xC3\xA9\xF0\x9F\x98\x80</a>");
}

TEST(XmlText, DecodesAndRefuses) {
  String text;
  DecodeXml("a&#x1F600;&lt;<!-- > --><![CDATA[&<]]>\r\n&apos;&quot;\xE2\x82\xAC", text);
  EXPECT_EQ(text, u"a\U0001F600<&<  '\"\u20AC");
  for (const char* bad : {"&x;", "&#0;", "&#xD800;", "&#1114112;", "&", "&amp", "\x80", "\xE2\x82",
                          "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xC1\xBF"}) {
    EXPECT_THROW(DecodeXml(bad, text), AutomationError) << bad;
  }
}

}  // namespace
}  // namespace kestrelon::desktop::word
