#include <gtest/gtest.h>

#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"
#include "desktop/xml/XmlDocuments.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

Object Load(StringView markup) {
  const Object document = CreateXmlDocument();
  EXPECT_TRUE(document.Call(u"loadXML", markup).ToBoolean())
      << ToUtf8(document.GetChild(u"parseError").Get(u"reason").ToText());
  return document;
}

// The names (or, for text, values) of a collection, by index, and again by walking it.
String Names(const Object& list) {
  const auto name = [](const Object& node) {
    const Value value = node.Get(u"nodeValue");
    const String text = value.IsNull() ? u"" : u"=" + value.ToText();
    return node.Get(u"nodeName").ToText() + text + u" ";
  };
  String by_index;
  const int32_t length = list.Get(u"length").ToLong();
  for (int32_t i = 0; i < length; ++i) by_index += name(list.CallChild(u"item", i));
  String walked;
  const auto walk = list.Enumerate();
  while (const auto node = walk->Next()) walked += name(node->ToObject());
  EXPECT_EQ(by_index, walked);
  return by_index;
}

TEST(XmlDocument, DropsBlankTextAndKeepsEveryOtherNode) {
  const Object document = Load(
      u"<?xml version='1.0' encoding='utf-16'?>\n<!-- c -->\n<r>\n <a/> text <b> </b>\n"
      u"<![CDATA[ ]]><?p q?><c xml:space='preserve'> <d/></c>&lt;&#163;&#x1F600;</r>\n");
  EXPECT_EQ(Names(document.GetChild(u"childNodes")), u"xml=version=\"1.0\" #comment= c  r ");
  const Object root = document.GetChild(u"documentElement");
  EXPECT_EQ(Names(root.GetChild(u"childNodes")),
            u"a #text= text  b #cdata-section=  p=q c #text=<\u00A3\U0001F600 ");
  EXPECT_EQ(root.Get(u"text").ToText(), u"text   <\u00A3\U0001F600");
  EXPECT_EQ(document.Get(u"xml").ToText(),
            u"<?xml version=\"1.0\"?>\r\n<!-- c -->\r\n<r><a/> text <b/><![CDATA[ ]]><?p q?>"
            u"<c xml:space=\"preserve\"> <d/></c>&lt;\u00A3\U0001F600</r>\r\n");
}

TEST(XmlDocument, WalksFromNodeToNode) {
  const Object document = Load(u"<r a='1' p:b='2' xmlns:p='urn:p'>x<e/><p:f/></r>");
  const Object root = document.GetChild(u"documentElement");
  EXPECT_EQ(Names(root.GetChild(u"attributes")), u"a=1 p:b=2 ");
  EXPECT_EQ(root.GetChild(u"attributes").CallChild(u"getNamedItem", u"p:b").Get(u"text").ToText(),
            u"2");
  EXPECT_EQ(root.GetChild(u"lastChild").Get(u"nodeName").ToText(), u"p:f");
  const Object middle = root.GetChild(u"firstChild").GetChild(u"nextSibling");
  EXPECT_EQ(middle.Get(u"nodeType").ToLong(), 1);
  EXPECT_FALSE(middle.Call(u"hasChildNodes").ToBoolean());
  EXPECT_EQ(middle.GetChild(u"previousSibling").Get(u"nodeName").ToText(), u"#text");
  EXPECT_EQ(middle.GetChild(u"parentNode").GetChild(u"parentNode").Get(u"nodeType").ToLong(), 9);
  EXPECT_TRUE(document.GetChild(u"parentNode").IsNothing());
  const Object nodes = root.GetChild(u"childNodes");
  EXPECT_TRUE(nodes.CallChild(u"item", 3).IsNothing());
  EXPECT_TRUE(nodes.CallChild(u"item", -1).IsNothing());
  EXPECT_EQ(root.GetChild(u"childNodes", 1).Get(u"nodeName").ToText(), u"e");
  EXPECT_EQ(nodes.CallChild(u"nextNode").Get(u"nodeName").ToText(), u"#text");
  EXPECT_EQ(nodes.CallChild(u"nextNode").Get(u"nodeName").ToText(), u"e");
}

TEST(XmlDocument, ReadsAndWritesAttributesAndText) {
  const Object document = Load(u"<r empty=''>a<b>c</b><!--n--></r>");
  const Object root = document.GetChild(u"documentElement");
  EXPECT_TRUE(root.Call(u"getAttribute", u"absent").IsNull());
  EXPECT_EQ(root.Call(u"getAttribute", u"empty").ToText(), u"");
  EXPECT_TRUE(root.Get(u"nodeValue").IsNull());
  EXPECT_EQ(FailureOf([&] { document.Call(u"getAttribute", u"a"); }).number(), kMemberNotFound);
  EXPECT_EQ(FailureOf([&] { root.Call(u"loadXML", u"<a/>"); }).number(), kMemberNotFound);
  const Object inner = root.CallChild(u"selectSingleNode", u"b");
  root.Call(u"setAttribute", u"empty", u"<\u00A3&\"");
  root.Call(u"setAttribute", u"xml:lang", u"en");
  root.GetChild(u"firstChild").Put(u"nodeValue", u"&");
  EXPECT_EQ(root.Get(u"xml").ToText(),
            u"<r empty=\"&lt;\u00A3&amp;&quot;\" xml:lang=\"en\">&amp;<b>c</b><!--n--></r>");
  EXPECT_EQ(root.GetChild(u"childNodes").Get(u"length").ToLong(), 3);
  root.Put(u"text", u"<&>");
  EXPECT_EQ(root.GetChild(u"childNodes").Get(u"length").ToLong(), 1);
  EXPECT_EQ(root.Get(u"text").ToText(), u"<&>");
  EXPECT_EQ(inner.Get(u"text").ToText(), u"c") << "a node that was replaced lives on";
  const String forbidden(1, u'\x01');
  EXPECT_EQ(FailureOf([&] { root.Put(u"text", forbidden); }).number(), kInvalidProcedureCall);
  for (const auto* name : {u"", u"a b", u"q:x", u"xmlns"}) {
    EXPECT_EQ(FailureOf([&] { root.Call(u"setAttribute", name, u"v"); }).number(),
              kInvalidProcedureCall);
  }
  EXPECT_EQ(root.Get(u"text").ToText(), u"<&>");
}

TEST(XmlDocument, SelectsByXPathFromTheNodeAsked) {
  const Object document = Load(
      u"<record><Data><field name='a'/><field name='b'/></Data>"
      u"<listitemname listkey='x'><i/></listitemname><n:e xmlns:n='urn:n'/></record>");
  for (const auto& [from, query, length] : {std::tuple{u".", u"record", 1},
                                            {u"/*", u"Data", 1},
                                            {u".", u"record/listitemname[@listkey='x']", 1},
                                            {u".", u"//field/@name", 2},
                                            {u"//i", u"..|//field", 3},
                                            {u".", u"//m:e", 1},
                                            {u".", u"//namespace::*", 0}}) {
    document.Call(u"setProperty", u"SelectionLanguage", u"XPath");
    document.Call(u"setProperty", u"SelectionNamespaces", u"xmlns:m='urn:n'");
    const Object start = document.CallChild(u"selectSingleNode", from);
    const Object found = start.CallChild(u"selectNodes", query);
    EXPECT_EQ(found.Get(u"length").ToLong(), length) << ToUtf8(query);
    EXPECT_EQ(start.CallChild(u"selectSingleNode", query).IsNothing(), length == 0);
  }
  EXPECT_EQ(Names(document.CallChild(u"selectNodes", u"//i/..|//field[2]/@name|//Data")),
            u"Data name=b listitemname ");
}

TEST(XmlDocument, SaysWhatIsWrongWithAQuery) {
  const Object document = Load(u"<r/>");
  for (const auto* query : {u"r[", u"", u"count(r)", u"//p:r", u"nosuch(r)"}) {
    const AutomationError error = FailureOf([&] { document.Call(u"selectNodes", query); });
    EXPECT_EQ(error.number(), static_cast<int32_t>(0x80004005)) << ToUtf8(query);
    EXPECT_NE(error.description().find(u"\"" + String(query) + u"\""), String::npos);
  }
  for (const auto* bindings : {u"nonsense", u"/><a", u"x='1'"}) {
    EXPECT_EQ(FailureOf([&] {
                document.Call(u"setProperty", u"SelectionNamespaces", bindings);
              }).number(),
              kInvalidProcedureCall);
  }
}

String Nested(int depth) {
  String markup;
  for (int i = 0; i < depth; ++i) markup += u"<a>";
  for (int i = 0; i < depth; ++i) markup += u"</a>";
  return markup;
}

TEST(XmlDocument, RefusesMalformedAndHostileMarkup) {
  const String with_null(u"<a/>\0", 5);
  for (const auto& [markup, line, reason] :
       {std::tuple<String, int32_t, const char16_t*>{u"<a>\n<b></a>", 2, u"tag"},
        {u"", 1, u"empty"},
        {u"<a/><b/>", 1, u"Extra"},
        {u"<!DOCTYPE a [<!ENTITY x SYSTEM 'file:///etc/passwd'>]>\n<a>&x;</a>", 1, u"DOCTYPE"},
        {u"<!DOCTYPE a SYSTEM 'http://127.0.0.1/a.dtd'><a/>", 1, u"DOCTYPE"},
        {u"<a>&x;</a>", 1, u"'x'"},
        {u"<p:a/>", 1, u"prefix p"},
        {u"<a b='1' b='2'/>", 1, u"redefined"},
        {with_null, 1, u"NUL"},
        {Nested(300), 1, u"depth"}}) {
    const Object document = Load(u"<before/>");
    EXPECT_FALSE(document.Call(u"loadXML", markup).ToBoolean()) << ToUtf8(markup);
    const Object error = document.GetChild(u"parseError");
    EXPECT_NE(error.Get(u"errorCode").ToLong(), 0);
    EXPECT_EQ(error.Get(u"line").ToLong(), line) << ToUtf8(markup);
    EXPECT_GE(error.Get(u"linepos").ToLong(), 1);
    EXPECT_NE(error.Get(u"reason").ToText().find(reason), String::npos)
        << ToUtf8(error.Get(u"reason").ToText());
    EXPECT_TRUE(document.GetChild(u"documentElement").IsNothing());
  }
  EXPECT_EQ(Load(Nested(250)).GetChild(u"parseError").Get(u"errorCode").ToLong(), 0);
}

TEST(XmlDocument, LoadsAndSavesFiles) {
  const PrivateFolder folder("kestrelon-xml-test-");
  const auto path = folder.path() / "a.xml";
  WriteFileAtomically(path, "<?xml version='1.0' encoding='windows-1252'?><a b='\xA3\x80'/>");
  const Object document = CreateXmlDocument();
  document.Put(u"async", false);
  ASSERT_TRUE(document.Call(u"load", TextFromPath(path)).ToBoolean());
  document.Call(u"save", TextFromPath(path));
  EXPECT_EQ(ReadWholeFile(path), "<?xml version=\"1.0\"?>\r\n<a b=\"\xC2\xA3\xE2\x82\xAC\"/>\r\n");
  EXPECT_FALSE(document.Call(u"load", u"http://127.0.0.1/a.xml").ToBoolean());
  EXPECT_NE(document.GetChild(u"parseError").Get(u"errorCode").ToLong(), 0);
}

TEST(XmlDocument, LivesAsLongAsItsNodes) {
  Object document = Load(u"<a><b c='d'/></a>");
  const Object attribute = document.CallChild(u"selectSingleNode", u"a/b/@c");
  const Object list = document.GetChild(u"documentElement").GetChild(u"childNodes");
  document.Call(u"loadXML", u"<other/>");
  document.Release();
  EXPECT_EQ(attribute.Get(u"nodeValue").ToText(), u"d");
  EXPECT_EQ(list.CallChild(u"item", 0).Get(u"xml").ToText(), u"<b c=\"d\"/>");
}

TEST(ParseXmlDocument, ReadsBytesInTheirEncodingOrSaysWhereTheyBreak) {
  for (const std::string_view bytes :
       {std::string_view("<a>\xC2\xA3</a>"), std::string_view("\xEF\xBB\xBF<a>\xC2\xA3</a>"),
        std::string_view("<?xml version='1.0' encoding='iso-8859-1'?><a>\xA3</a>"),
        std::string_view("\xFF\xFE<\0a\0>\0\xA3\0<\0/\0a\0>\0", 18)}) {
    EXPECT_EQ(ParseXmlDocument(bytes).Get(u"text").ToText(), u"\u00A3");
  }
  const AutomationError error = FailureOf([] { ParseXmlDocument("<a>\n  <b>\n</a>"); });
  EXPECT_EQ(error.number(), kInvalidProcedureCall);
  EXPECT_NE(error.description().find(u"line 3, column "), String::npos) << error.what();
  for (const std::string_view bytes : {std::string_view("<a>\xA3</a>"),
                                       std::string_view("<a/>\0b", 6), std::string_view("\0", 1)}) {
    EXPECT_EQ(FailureOf([&] { ParseXmlDocument(bytes); }).number(), kInvalidProcedureCall);
  }
}

TEST(ParseHtmlDocument, GivesTheMarkupBack) {
  for (const std::string_view bytes :
       {std::string_view("<p id=x>\xC2\xA3<br>a&amp;b"),
        std::string_view("<p id=x>\xA3<br>a&amp;b"),
        std::string_view("<meta charset='iso-8859-1'><p id=x>\xA3<br>a&amp;b")}) {
    const String html =
        ParseHtmlDocument(bytes).GetChild(u"documentElement").Get(u"outerHTML").ToText();
    EXPECT_NE(html.find(u"<p id=\"x\">\u00A3<br>a&amp;b</p>"), String::npos) << ToUtf8(html);
  }
  EXPECT_EQ(ParseHtmlDocument("").GetChild(u"documentElement").Get(u"outerHTML").ToText(),
            u"<html></html>");
  std::string deep;
  for (int i = 0; i < 300; ++i) deep += "<div>";
  EXPECT_EQ(FailureOf([&] { ParseHtmlDocument(deep); }).number(), kInvalidProcedureCall);
}

}  // namespace
}  // namespace kestrelon::desktop
