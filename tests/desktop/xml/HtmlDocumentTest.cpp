#include <gtest/gtest.h>

#include "desktop/xml/XmlDocuments.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

String ValueOf(std::string_view markup) {
  return ParseHtmlDocument(markup).CallChild(u"getElementById", u"X").Get(u"Value").ToText();
}

TEST(HtmlDocument, ReadsTheValueOfEachKindOfField) {
  const std::pair<const char*, const char16_t*> cases[] = {
      {"<input id=X value='a &lt; b'>", u"a < b"},
      {"<form><table><tr><td><INPUT ID=X VALUE=plain TYPE=text>", u"plain"},
      {"<input id='X'>", u""},
      {"<input id='X' type='CheckBox'>", u"on"},
      {"<button id='X' value='b'>Label</button>", u"b"},
      {"<select id='X'><option>One<option> Two \n words <option value='3'>Three</select>", u"One"},
      {"<select id='X'><option value='1'>One<option selected> Two \n words </select>",
       u"Two words"},
      {"<select id='X'><optgroup><option value='1' selected>A</optgroup><option value='' "
       "selected>B</select>",
       u""},
      {"<select id='X' multiple><option>A<option selected>B<option selected>C</select>", u"B"},
      {"<select id='X'></select>", u""},
      {"<textarea id='X'>\n\none &amp; two\nthree\r\nfour</textarea>",
       u"\r\none & two\r\nthree\r\nfour"},
      {"<p id='x'>no</p><input id='X' value='\xC3\xA9'><input id='X' value='second'>", u"\u00E9"},
  };
  for (const auto& [markup, value] : cases) {
    EXPECT_EQ(ValueOf(markup), value) << markup;
  }
}

TEST(HtmlDocument, SaysWhatIsNotThere) {
  const Object page = ParseHtmlDocument("<p id='X' Title='t'>Some <b>text</b></p><input id=''>");
  const Object paragraph = page.CallChild(u"getElementById", u"X");
  EXPECT_EQ(paragraph.Get(u"tagName").ToText(), u"P");
  EXPECT_EQ(paragraph.Get(u"id").ToText(), u"X");
  EXPECT_EQ(paragraph.Get(u"innerText").ToText(), u"Some text");
  EXPECT_EQ(paragraph.Call(u"getAttribute", u"TITLE").ToText(), u"t");
  EXPECT_TRUE(paragraph.Call(u"getAttribute", u"value").IsNull());
  EXPECT_EQ(NumberOf([&] { paragraph.Get(u"value"); }), kMemberNotFound);
  EXPECT_EQ(NumberOf([&] { paragraph.Put(u"value", u"a"); }), kMemberNotFound);
  for (const char16_t* id : {u"x", u"Y", u""}) {
    const Object none = page.CallChild(u"getElementById", id);
    EXPECT_TRUE(none.IsNothing());
    EXPECT_EQ(NumberOf([&] { none.Get(u"Value"); }), kObjectVariableNotSet);
  }
}

TEST(HtmlDocument, TakesValuesThatMarkupWouldBreakOn) {
  for (const char* markup :
       {"<input id='X' value='old'>", "<textarea id='X'>old</textarea>",
        "<select id='X'><option selected>old<option value='\r\n&lt;/textarea&gt;\"&amp;amp;'>"}) {
    const Object page = ParseHtmlDocument(markup);
    const Object field = page.CallChild(u"getElementById", u"X");
    const String value = u"\r\n</textarea>\"&amp;";
    field.Put(u"Value", value);
    EXPECT_EQ(field.Get(u"Value").ToText(), value);
    const String written = page.GetChild(u"documentElement").Get(u"outerHTML").ToText();
    EXPECT_EQ(ValueOf(ToUtf8(written)), value) << ToUtf8(written);
  }
  const Object select = ParseHtmlDocument("<select id='X'><option>a</select>");
  EXPECT_EQ(NumberOf([&] { select.CallChild(u"getElementById", u"X").Put(u"Value", u"b"); }),
            kInvalidProcedureCall);
}

}  // namespace
}  // namespace kestrelon::desktop
