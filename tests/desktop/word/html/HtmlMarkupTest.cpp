#include <gmock/gmock.h>

#include <random>
#include <regex>

#include "desktop/word/html/InsertedFile.h"
#include "tests/desktop/word/document/Builders.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop::word {
namespace {

using testing::HasSubstr;

// Without the prefix.
std::string MarkupOf(const std::string& page) {
  return std::regex_replace(html::BlocksOfHtml(page)({"w:", false, 9000}), std::regex("w:"), "");
}

TEST(HtmlMarkup, ReadsAsInABrowser) {
  const std::pair<std::string, StringView> cases[] = {
      {" a \n <b> b </b> c\t", u"a b c\r"},
      {"<p>one<p>two<div>three</div>", u"one\rtwo\rthree\r"},
      {"a<br />b<br>", u"a\vb\r"},
      {"<p></p><div> <span> </span></div>", u""},
      {"&nbsp;a&amp;&lt;tag&gt;&euro;&#233;&nbsp;", u"\u00A0a&<tag>\u20AC\u00E9\u00A0\r"},
      {"\x81 \xE4\xF6", u"\u0081 \u00E4\u00F6\r"},
      {"<meta charset=utf-8>\xC3\xA4", u"\u00E4\r"},
      {"<meta charset='UTF-8'>\xC3\xA4 \xA3 \xE2\x82\xAC", u"\u00E4 \u00A3 \u20AC\r"},
      {"<meta content='text/html; charset=windows-1252'>\x81 \x80", u"\u0081 \u20AC\r"},
      {"<pre>a  b\n\tc</pre>", u"a  b\v\tc\r"},
      {"<ul><li>a<li>b<ol start=3 type=i><li>c</ol></ul>", u"\u2022\ta\r\u2022\tb\riii.\tc\r"},
      {"<head><title>t</title><style>b{}</style></head><script>s</script><!-- c -->x", u"x\r"},
      {"<![if !a]>x<![endif]><!--[if a]><![endif]-->y<![ENDIF]><!-- <![if a]>", u"xy\r"},
      {std::string("<table>\0<tr><td>\0a", 19), u"a\r\a\r\a"},
      {"a<i style='display:none'>b</i><img alt='(c)' src='http://none.invalid/'>", u"a(c)\r"},
      {"a<hr>b", u"a\r\rb\r"},
      {"<table><caption>c</caption>x<tr><td>1<td>2<tr><td>3</table>",
       u"c\rx\r1\r\a2\r\a\r\a3\r\a\r\a"},
      {"<table><tr><td><table><tr><td>in</table></table>", u"in\r\a\r\a\r\a\r\a"},
      {"<table></table><table><tr></tr></table>", u""},
      {"<table><tr><td>a</table><table><tr><td>b</table>", u"a\r\a\r\a\rb\r\a\r\a"},
      {"<table><tr><td rowspan=2>a<td>b<tr><td>c</table>", u"a\r\ab\r\a\r\a\r\ac\r\a\r\a"},
      {"<table><tfoot><tr><td>f</tfoot><tr><td>r</table>", u"r\r\a\r\af\r\a\r\a"},
  };
  for (const auto& [page, text] : cases) {
    const auto document = Open(P());
    document->Main().InsertBlocks({0, 0}, html::BlocksOfHtml(page));
    EXPECT_EQ(TextOf(document->Main()), String(text) + u"\r") << page;
  }
}

TEST(HtmlMarkup, CarriesTheLook) {
  const std::pair<std::string, std::string> cases[] = {
      {"<b>a<u><i><s>b</b>", "<b/><bCs/><i/><iCs/><strike/><u val=\"single\"/></rPr><t>b</t>"},
      {"<font size=+1 color='#00f'>a", "<color val=\"0000FF\"/><sz val=\"27\"/>"},
      {"<span style='font: italic bold 8pt/1 \"My Font\", x'>a", "<rFonts ascii=\"My Font\""},
      {"<span style='FONT-SIZE:16px;background:rgb(1,2,255) none'>a",
       "<sz val=\"24\"/><szCs val=\"24\"/><shd val=\"clear\" color=\"auto\" fill=\"0102FF\"/>"},
      {"<p align=right style='text-align:justify'>a", "<jc val=\"both\"/>"},
      {"<a href='http://x.example/?a=\"1&amp;b'>l</a>",
       "<fldSimple instr=\" HYPERLINK &quot;http://x.example/?a=%221&amp;b&quot; \"><r>"},
      // Rules by specificity, then by order; the attribute last.
      {"<style>.c{color:#010101} p{color:#020202}</style><p class='b c'>a", "val=\"010101\""},
      {"<style>p{color:#010101} p{color:#020202} p:hover{color:red}</style><p>a", "\"020202\""},
      {"<style>#i,b{color:#010101} p.c{color:#020202}</style><p class=c id=i>a", "\"010101\""},
      {"<style>@media print{p{color:red}} div p{color:#030303}</style><div><p>a", "\"030303\""},
      {"<p style='color:nonsense;;:;font-weight:700'>a", "<rPr><b/><bCs/></rPr><t>a</t>"},
      {"<table><tr bgcolor=teal><td>a", "fill=\"008080\"/><vAlign val=\"center\"/>"},
      {"<table><tr><th>a", "<jc val=\"center\"/><rPr><b/><bCs/></rPr></pPr><r>"},
      {"<table border=2 cellpadding=4><tr><td>a", "<top val=\"single\" sz=\"12\" space=\"0\""},
      {"<table><tr><td style='border-left:2px dashed red;padding:1pt 2pt'>a",
       "<tcBorders><left val=\"dashed\" sz=\"12\" space=\"0\" color=\"FF0000\"/></tcBorders>"},
      {"<center><table><tr><td>a</table>", "<jc val=\"center\"/><tblBorders>"},
      {"<table><tr height=40><td>a", "<trHeight val=\"600\" hRule=\"atLeast\"/>"},
      {"<table><tr><td>a<td>b<tr><td>c</table>", "<gridAfter val=\"1\"/>"},
      {"<table><tr><td rowspan=2>a<td>b<tr><td>c</table>", "<vMerge val=\"continue\"/>"},
  };
  for (const auto& [page, part] : cases) EXPECT_THAT(MarkupOf(page), HasSubstr(part)) << page;
}

TEST(HtmlMarkup, MakesColumnsAsWideAsAsked) {
  const std::pair<std::string, std::string> cases[] = {
      {"<table><tr><td width=100>a<td style='width:2cm'>b", " 1500 1134"},
      {"<table width='100%'><tr><td width='25%'>a<td>b", " 2250 6750"},
      {"<table style='width:300pt'><colgroup><col width=60><col></colgroup><tr><td>a<td>b",
       " 900 5100"},
      {"<table width=600><tr><td colspan=2 width=200>a<td>b<tr><td>c<td>d<td>e", " 1500 1500 6000"},
      {"<table width=600><tr><td colspan=5>a<tr><td colspan=5>b", " 9000"},
      {"<table><tr><td>abc<td>" + std::string(999, 'x') + "<td width=30>d", " 477 8073 450"},
      {"<table width='100%'><tr><td width='1%'>word<td width='0'>abc<td width='90%'>d<td "
       "width='10%'>",
       " 604 477 8100 900"},
      {"<table width='300%'><tr><td width='60%'>a<td width='60%'>b<td width='60%'>c",
       " 5400 3600 221"},
      {"<table width='99in'><tr><td width=9999>a<td>b", " 31680 221"},
  };
  for (const auto& [page, widths] : cases) {
    const std::string grid = std::regex_replace(MarkupOf(page), std::regex("</?tblGrid>"), "\n");
    const std::string found =
        std::regex_replace(grid.substr(grid.find('\n') + 1, grid.rfind('\n') - grid.find('\n') - 1),
                           std::regex("<gridCol w=\"(\\d+)\"/>"), " $1");
    EXPECT_EQ(found, widths) << page;
  }
}

TEST(HtmlMarkup, RefusesWhatNoDocumentCanHold) {
  const auto repeated = [](size_t count, const std::string& text) {
    return std::regex_replace(std::string(count, '.'), std::regex("[.]"), text);
  };
  EXPECT_EQ(NumberOf([&] { html::BlocksOfHtml(repeated(300, "<div>")); }), 5);
  EXPECT_EQ(NumberOf([&] { html::BlocksOfHtml("<table><tr>" + repeated(64, "<td>a")); }), 4198);
}

TEST(HtmlMarkup, RandomPagesNeverBreakADocument) {
  const std::vector<String> pieces = Split(
      u"<table border=1>|</table>|<tr>|<td>|<td colspan=3>|<td rowspan=4 width=20%>|<th rowspan=0>|"
      u"<p>|</p>|<br>|<ul>|<li>|</ul>|<b>|</b>|x y |<a href='ftp://a'>|</a>|<h1>|<hr>|&lt;\x01&#2;|"
      u"<td style='border:1px solid'>|<col width=9>|<pre>\n|</td>|<tbody>|<div style='margin:9px'>",
      u"|");
  for (uint32_t seed = 1; seed <= 300; ++seed) {
    std::mt19937 random(seed);
    const auto document =
        Open(P(R("one"), R("two")) + Tbl(Tr(C("a"), C("b"))) + P(R("c")) + Tbl(Tr(C("d"))) + P());
    Story& story = document->Main();
    const TrackedSpan all(story, {0, story.Length()});
    for (int round = 0; round < 4; ++round) {
      std::string page;
      for (uint32_t i = random() % 24; i > 0; --i) page += ToUtf8(pieces[random() % pieces.size()]);
      SCOPED_TRACE(std::to_string(seed) + ": " + page);
      const auto start = static_cast<int32_t>(random() % static_cast<uint32_t>(story.Length()));
      const int32_t end = std::min(start + static_cast<int32_t>(random() % 6), story.Length());
      const int32_t error = NumberOf([&] {
        story.InsertBlocks({start, end}, html::BlocksOfHtml(page));
      });
      ASSERT_TRUE(error == 0 || error == 5904) << error;
      const auto again = Document::Open(document->Save(DocumentKind::kDocx));
      ASSERT_EQ(TextOf(again->Main()), TextOf(story));
      ASSERT_EQ(again->Main().TableCount(), story.TableCount());
      ASSERT_EQ(all.span(), (Span{0, story.Length()}));
    }
  }
}

}  // namespace
}  // namespace kestrelon::desktop::word
