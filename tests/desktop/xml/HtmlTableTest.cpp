#include <gtest/gtest.h>

#include "desktop/xml/XmlDocuments.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

String InnerTextOf(const std::string& markup) {
  const Object page = ParseHtmlDocument("<table><tr><td id=X>" + markup + "</td></tr></table>");
  return page.CallChild(u"getElementById", u"X").Get(u"innerText").ToText();
}

// "a|b/c|d": cells and rows of the first table.
String Picture(const std::string& markup) {
  const Object table =
      ParseHtmlDocument(markup).CallChild(u"getElementsByTagName", u"TABLE").CallChild(u"item", 0);
  String picture;
  const auto rows = table.GetChild(u"rows").Enumerate();
  while (const auto row = rows->Next()) {
    if (!picture.empty()) picture += u'/';
    const Object cells = row->ToObject().GetChild(u"cells");
    const int32_t count = cells.Get(u"length").ToLong();
    for (int32_t i = 0; i < count; ++i) {
      if (i > 0) picture += u'|';
      picture += cells.CallChild(u"", i).Get(u"innerText").ToText();
    }
  }
  return picture;
}

TEST(HtmlTable, GivesItsOwnRowsAndCellsAlone) {
  const std::pair<const char*, const char16_t*> cases[] = {
      {"<table><tr><th>A<th>B<tr><td>1<td>2</table>", u"A|B/1|2"},
      {"<table><tfoot><tr><td>f</tfoot><tr><td>b</tr><thead><tr><td>h</thead></table>", u"h/b/f"},
      {"<table><tr><td>a<table><tr><td>in<td>ner</table></td><td>b</td></tr><tr><td>c</table>",
       u"a\r\nin\tner|b/c"},
      {"<table><form><tr><td>a</td></tr></form><tr></tr><tr><td>b</td></table>", u"a//b"},
  };
  for (const auto& [markup, picture] : cases) EXPECT_EQ(Picture(markup), picture) << markup;
}

TEST(HtmlTable, AnswersWithinItsBounds) {
  const Object page =
      ParseHtmlDocument("<p>x</p><table><tr><td colspan=3 rowspan=0>a<td colspan=x>");
  const Object cells = page.CallChild(u"getElementsByTagName", u"td");
  EXPECT_EQ(cells.CallChild(u"item", 0).Get(u"colSpan").ToLong(), 3);
  EXPECT_TRUE(cells.CallChild(u"item", 2).IsNothing());
  const Object all = page.CallChild(u"getElementsByTagName", u"*");
  EXPECT_EQ(NumberOf([&] { all.CallChild(u"item", 0).Get(u"rows"); }), kMemberNotFound);
}

TEST(HtmlTable, ReadsTextAsABrowserShowsIt) {
  const std::pair<const char*, const char16_t*> cases[] = {
      {" \n a <b> b</b>\t<i>c </i> ", u"a b c"},
      {"one <br> two<br><br>three", u"one\r\ntwo\r\n\r\nthree"},
      {"<p>a</p><p>b</p>c", u"a\r\n\r\nb\r\n\r\nc"},
      {"a<script>var x;</script><!-- no --><style>p {}</style>b &amp; &lt;", u"ab & <"},
      {"<pre>a  b\r\n c</pre>", u"a  b\r\n c"},
      {"&nbsp;x&nbsp; y", u"\u00A0x\u00A0 y"},
  };
  for (const auto& [markup, text] : cases) EXPECT_EQ(InnerTextOf(markup), text) << markup;
}

TEST(HtmlTable, KeepsElementsThatAPutTakesAway) {
  const Object page = ParseHtmlDocument("<textarea id=X>a<b id=B>bold</b></textarea>");
  const Object list = page.CallChild(u"getElementsByTagName", u"b");
  page.CallChild(u"getElementById", u"X").Put(u"Value", u"new");
  EXPECT_EQ(list.CallChild(u"item", 0).Get(u"innerText").ToText(), u"bold");
}

}  // namespace
}  // namespace kestrelon::desktop
