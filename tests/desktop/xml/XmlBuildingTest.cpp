#include <gtest/gtest.h>

#include "desktop/xml/XmlDocuments.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

Object Load(StringView markup) {
  const Object document = CreateXmlDocument();
  EXPECT_TRUE(document.Call(u"loadXML", markup).ToBoolean()) << ToUtf8(markup);
  return document;
}

Object Append(const Object& document, const Object& parent, StringView name) {
  return parent.CallChild(u"appendChild", document.CallChild(u"createElement", name));
}

Object NewAttribute(const Object& document, StringView name, StringView value) {
  const Object attribute = document.CallChild(u"createAttribute", name);
  attribute.Put(u"text", value);
  return attribute;
}

String Xml(const Object& node) { return node.Get(u"xml").ToText(); }

TEST(XmlBuilding, BuildsWhatItsMarkupSays) {
  const Object document = CreateXmlDocument();
  const Object root = Append(document, document, u"p:root");
  root.Call(u"appendChild", NewAttribute(document, u"xmlns:p", u"urn:p"));
  root.Call(u"setAttributeNode", NewAttribute(document, u"p:a", u"<1>"));
  root.GetChild(u"attributes").Call(u"setNamedItem", NewAttribute(document, u"b", u"\u00A3"));
  Append(document, root, u"p:leaf").Put(u"text", u"\u00A3 & more");
  root.Call(u"appendChild", document.CallChild(u"createTextNode", u"x"));
  const Object last = root.CallChild(u"appendChild", document.CallChild(u"createTextNode", u"y"));
  EXPECT_EQ(last.Get(u"text").ToText(), u"y") << "texts stay apart";
  EXPECT_EQ(root.GetChild(u"childNodes").Get(u"length").ToLong(), 3);

  const String markup =
      u"<p:root xmlns:p=\"urn:p\" p:a=\"&lt;1&gt;\" b=\"\u00A3\"><p:leaf>\u00A3 &amp; more</p:leaf>"
      u"xy</p:root>\r\n";
  EXPECT_EQ(Xml(document), markup);
  EXPECT_EQ(Xml(Load(markup)), markup);
  document.Call(u"setProperty", u"SelectionNamespaces", u"xmlns:q='urn:p'");
  EXPECT_FALSE(document.CallChild(u"selectSingleNode", u"q:root[@q:a]/q:leaf").IsNothing());
}

TEST(XmlBuilding, DeclarationsReachWhatIsBelowThem) {
  const Object document = CreateXmlDocument();
  const Object root = Append(document, document, u"root");
  const Object inner = Append(document, Append(document, root, u"a"), u"p:b");
  const Object declaration = NewAttribute(document, u"xmlns:p", u"urn:old");
  root.Call(u"appendChild", declaration);
  declaration.Put(u"text", u"urn:p");
  const Object standalone = document.CallChild(u"createElement", u"p:c");
  Append(document, standalone, u"p:d");
  inner.Call(u"appendChild", standalone);
  document.Call(u"setProperty", u"SelectionNamespaces", u"xmlns:q='urn:p'");
  EXPECT_FALSE(document.CallChild(u"selectSingleNode", u"root/a/q:b/q:c/q:d").IsNothing());
  EXPECT_EQ(Xml(root), u"<root xmlns:p=\"urn:p\"><a><p:b><p:c><p:d/></p:c></p:b></a></root>");
}

TEST(XmlBuilding, NodesMoveWithTheirObjects) {
  const Object document = Load(u"<r><a x='1'/><b x='2'/></r>");
  const Object root = document.GetChild(u"documentElement");
  const Object children = root.GetChild(u"childNodes");
  EXPECT_EQ(children.Get(u"length").ToLong(), 2);
  const Object a = root.GetChild(u"firstChild");
  root.Call(u"appendChild", a);
  EXPECT_EQ(Xml(root), u"<r><b x=\"2\"/><a x=\"1\"/></r>");
  EXPECT_EQ(children.CallChild(u"item", 1).Get(u"nodeName").ToText(), u"a");
  const Object b = root.GetChild(u"firstChild");
  const Object replaced =
      a.CallChild(u"setAttributeNode", b.GetChild(u"attributes").CallChild(u"getNamedItem", u"x"));
  EXPECT_EQ(replaced.Get(u"text").ToText(), u"1");
  EXPECT_EQ(Xml(root), u"<r><b/><a x=\"2\"/></r>");

  Object other = Load(u"<o xmlns:p='urn:p'><p:c y='3'>t</p:c></o>");
  const Object moved = other.CallChild(u"selectSingleNode", u"o/*");
  b.Call(u"appendChild", moved);
  moved.Call(u"setAttribute", u"y", u"4");
  EXPECT_EQ(Xml(other), u"<o xmlns:p=\"urn:p\"/>\r\n");
  other.Release();
  EXPECT_EQ(Xml(root), u"<r><b><p:c xmlns:p=\"urn:p\" y=\"4\">t</p:c></b><a x=\"2\"/></r>");
}

TEST(XmlBuilding, RefusesWhatWouldBeNoTree) {
  const Object document = Load(u"<r a='1'><b><c/></b>t</r>");
  const Object root = document.GetChild(u"documentElement");
  const Object b = root.GetChild(u"firstChild");
  const Object text = root.GetChild(u"lastChild");
  const Object attribute = NewAttribute(document, u"x", u"1");
  const std::pair<Object, Object> cases[] = {
      {b, root},
      {root, root},
      {b, document},
      {document, b},
      {document, text},
      {text, attribute},
      {document, attribute},
      {document, document.CallChild(u"createElement", u"second")}};
  const String before = Xml(document);
  for (const auto& [parent, child] : cases) {
    EXPECT_EQ(
        NumberOf([&, &parent = parent, &child = child] { parent.Call(u"appendChild", child); }),
        kInvalidProcedureCall)
        << ToUtf8(Xml(child));
  }
  EXPECT_EQ(NumberOf([&] { root.Call(u"appendChild", u"text"); }), kObjectRequired);
  for (const auto* name : {u"", u"a b", u":a", u"1a"}) {
    EXPECT_EQ(NumberOf([&] { document.Call(u"createElement", name); }), kInvalidProcedureCall);
    EXPECT_EQ(NumberOf([&] { document.Call(u"createAttribute", name); }), kInvalidProcedureCall);
  }
  EXPECT_EQ(Xml(document), before);
}

}  // namespace
}  // namespace kestrelon::desktop
