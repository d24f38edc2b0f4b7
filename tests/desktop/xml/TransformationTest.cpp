#include <gtest/gtest.h>

#include <cstdlib>

#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"
#include "desktop/xml/XmlDocuments.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

constexpr auto kUnspecifiedError = static_cast<int32_t>(0x80004005);

Object Load(StringView markup) {
  const Object document = CreateXmlDocument();
  EXPECT_TRUE(document.Call(u"loadXML", markup).ToBoolean()) << ToUtf8(markup);
  return document;
}

Object Sheet(const String& content) {
  return Load(u"<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>" +
              content + u"</xsl:stylesheet>");
}

Object TransformToObject(const Object& source, const Object& sheet) {
  const Object result = Load(u"<before/>");
  source.Call(u"transformNodeToObject", sheet, result);
  return result;
}

class Sorting : public ::testing::Test {
 protected:
  void SetUp() override { unsetenv("LC_ALL"), unsetenv("LC_COLLATE"), unsetenv("LANG"); }
  void TearDown() override { SetUp(); }

  // The items "KEY" or "KEY:SECOND" in the order of the sort elements.
  static String Sort(const std::vector<const char16_t*>& items, const String& sorts) {
    String source;
    for (const char16_t* item : items) source += u"<i>" + String(item) + u"</i>";
    const Object sheet = Sheet(
        u"<xsl:output method='text'/><xsl:template match='/'><xsl:for-each select='r/i'>" + sorts +
        u"<xsl:value-of select='.'/><xsl:text> </xsl:text></xsl:for-each></xsl:template>");
    return Load(u"<r>" + source + u"</r>").Call(u"transformNode", sheet).ToText();
  }
};

TEST_F(Sorting, FollowsTheInstruction) {
  const String key = u"select=\"substring-before(concat(., ':'), ':')\"";
  const String second = u"select=\"substring-after(., ':')\"";
  const struct {
    std::vector<const char16_t*> items;
    String sorts;
    const char16_t* sorted;
  } cases[] = {
      {{u"Ab", u"ab", u"AB", u"aa", u"ac"}, u"<xsl:sort/>", u"aa ab Ab AB ac "},
      {{u"ab", u"Ab", u"aa"}, u"<xsl:sort case-order='upper-first'/>", u"aa Ab ab "},
      {{u"9", u"10", u"y", u"-1", u"x"},
       u"<xsl:sort data-type='{\"number\"}' order='{\"descending\"}'/>",
       u"10 9 -1 y x "},
      {{u"b:1", u"a:2", u"b:0", u"a:10"},
       u"<xsl:sort " + key + u" order='descending'/><xsl:sort " + second + u" data-type='number'/>",
       u"b:0 b:1 a:2 a:10 "},
      {{u"b:1", u"a:2", u"b:0", u"a:1"}, u"<xsl:sort " + key + u"/>", u"a:2 a:1 b:1 b:0 "},
      {{u"z", u"\u00E4", u"a"}, u"<xsl:sort lang='no such'/>", u"a \u00E4 z "},
  };
  for (const auto& example : cases) {
    EXPECT_EQ(Sort(example.items, example.sorts), example.sorted) << ToUtf8(example.sorts);
  }
}

TEST_F(Sorting, FollowsTheUsersLanguage) {
  const std::vector<const char16_t*> items = {u"z", u"\u00E4", u"a"};
  EXPECT_EQ(Sort(items, u"<xsl:sort/>"), u"a \u00E4 z ");
  const struct {
    const char* variable;
    const char* value;
    const char16_t* sorted;
  } steps[] = {{"LANG", "sv_SE.UTF-8", u"a z \u00E4 "},
               {"LC_COLLATE", "de_DE.UTF-8@euro", u"a \u00E4 z "},
               {"LC_ALL", "sv_SE", u"a z \u00E4 "},
               {"LC_ALL", "POSIX", u"a \u00E4 z "}};
  for (const auto& step : steps) {
    setenv(step.variable, step.value, 1);
    EXPECT_EQ(Sort(items, u"<xsl:sort/>"), step.sorted) << step.value;
  }
}

TEST(Transformation, WritesDocumentsAndText) {
  const String identity =
      u"<xsl:template match='@*|node()'><xsl:copy><xsl:apply-templates select='@*|node()'/>"
      u"</xsl:copy></xsl:template>";
  const Object source = Load(u"<?xml version='1.0'?><r a='\u00A3'><b/> t<b>1</b></r>");
  EXPECT_EQ(TransformToObject(source, Sheet(identity)).Get(u"xml").ToText(),
            u"<r a=\"\u00A3\"><b/> t<b>1</b></r>\r\n");
  EXPECT_EQ(source.Call(u"transformNode", Sheet(u"<xsl:output encoding='iso-8859-1'/>" + identity))
                .ToText(),
            u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n"
            u"<r a=\"\u00A3\"><b/> t<b>1</b></r>\n");
  EXPECT_EQ(source
                .Call(u"transformNode", Sheet(u"<xsl:output method='text'/>"
                                              u"<xsl:template match='/'/>"))
                .ToText(),
            u"");
  const Object inner = source.CallChild(u"selectSingleNode", u"r/b[2]");
  EXPECT_EQ(TransformToObject(inner, Sheet(u"<xsl:strip-space elements='*'/>" + identity))
                .Get(u"xml")
                .ToText(),
            u"<b>1</b>\r\n");
  EXPECT_EQ(source.Get(u"xml").ToText(),
            u"<?xml version=\"1.0\"?>\r\n<r a=\"\u00A3\"><b/> t<b>1</b></r>\r\n");
}

TEST(Transformation, LeavesItsSourceToBeChanged) {
  const Object source = Load(u"<r><a/><b/><c/><d/></r>");
  const Object sheet = Sheet(
      u"<xsl:template match='/'><o><xsl:value-of select='count(//a/preceding::*)'/></o>"
      u"</xsl:template>");
  EXPECT_EQ(TransformToObject(source, sheet).Get(u"text").ToText(), u"0");
  const Object root = source.GetChild(u"documentElement");
  root.Call(u"appendChild", root.GetChild(u"firstChild"));
  String names;
  const auto walk = source.CallChild(u"selectNodes", u"(//a|//b)|(//c|//d)").Enumerate();
  while (const auto node = walk->Next()) names += node->ToObject().Get(u"nodeName").ToText();
  EXPECT_EQ(names, u"bcda");
  EXPECT_EQ(TransformToObject(source, sheet).Get(u"text").ToText(), u"3");
}

TEST(Transformation, ReachesNothingButItsSource) {
  const PrivateFolder folder("kestrelon-xslt-test-");
  const auto secret = folder.path() / "secret.xml";
  WriteFileAtomically(secret, "<secret/>");
  const String path = TextFromPath(secret);
  const String target = TextFromPath(folder.path() / "written.xml");
  const Object source = Load(u"<r/>");
  const String contents[] = {
      u"<xsl:template match='/'><xsl:copy-of select=\"document('" + path + u"')\"/></xsl:template>",
      u"<xsl:include href='" + path + u"'/>", u"<xsl:import href='http://127.0.0.1/a.xsl'/>",
      u"<xsl:template match='/'><xsl:document href='" + target +
          u"'><a/></xsl:document></xsl:template>"};
  for (const String& content : contents) {
    const Object sheet = Sheet(content);
    // xsl:document is an element of this version.
    sheet.GetChild(u"documentElement").Call(u"setAttribute", u"version", u"1.1");
    const Object result = Load(u"<before/>");
    EXPECT_EQ(NumberOf([&] { source.Call(u"transformNodeToObject", sheet, result); }),
              kUnspecifiedError)
        << ToUtf8(content);
    EXPECT_EQ(result.Get(u"xml").ToText(), u"<before/>\r\n");
  }
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "written.xml"));
}

TEST(Transformation, SaysWhyItFails) {
  const Object source = Load(u"<r/>");
  const struct {
    Object sheet;
    const char16_t* reason;
  } cases[] = {
      {Sheet(u"<xsl:template match='['/>"), u"["},
      {Sheet(u"<xsl:template match='/'><a/><b/></xsl:template>"), u"exactly one top element"},
      {Sheet(u"<xsl:template match='/'><xsl:value-of select='nosuch()'/></xsl:template>"),
       u"nosuch"},
      {Sheet(u"<xsl:template match='/'><xsl:message terminate='yes'>stop</xsl:message>"
             u"</xsl:template>"),
       u"stop"},
      {Sheet(u"<xsl:template match='/'><xsl:apply-templates select='/'/></xsl:template>"),
       u"recursion"},
  };
  for (const auto& example : cases) {
    const AutomationError error = FailureOf([&] { TransformToObject(source, example.sheet); });
    EXPECT_EQ(error.number(), kUnspecifiedError);
    EXPECT_NE(error.description().find(example.reason), String::npos) << error.what();
  }
}

}  // namespace
}  // namespace kestrelon::desktop
