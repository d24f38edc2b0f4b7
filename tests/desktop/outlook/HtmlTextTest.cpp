#include <gtest/gtest.h>

#include "desktop/outlook/mail/HtmlText.h"

namespace kestrelon::desktop {
namespace {

TEST(HtmlToPlainText, ReadsAsTheShownPageDoes) {
  for (const auto& [html, text] : {
           std::pair{"", ""},
           {"a  \n b", "a b"},
           {"<p>a</p>\n<p>b<br>c<br><br>d</p>", "a\n\nb\nc\n\nd"},
           {"<div>a</div><div>b</div>c", "a\nb\nc"},
           {"<b>a</b> <i>b</i>c", "a bc"},
           {"&pound;&#163;\xC2\xA3 &lt;x&gt; &amp;amp; &bogus;",
            "\xC2\xA3\xC2\xA3\xC2\xA3 <x> &amp; &bogus;"},
           {"a&nbsp;&nbsp;b", "a  b"},
           {"<p>a</p><p>&nbsp;</p><p>b</p>", "a\n\n \n\nb"},
           {"<ul><li>a</li><li> b</li></ul>c", "* a\n* b\nc"},
           {"<pre>a\n  b</pre>c", "a\n  b\n\nc"},
           {"<table><tr><td>1</td><td>2</td></tr><tr><th>3</th><th>4</th></tr></table>x",
            "1\t2\n3\t4\nx"},
           {"<table><tr><td><p>1</p></td><td><p>2</p><p>3</p></td></tr><tr><td></td></tr>"
            "<tr><td><div>4</div></td></tr></table>",
            "1\t2\n\n3\n4"},
           {"<table><tr><td>1</td><td><p><br></p></td><td>3<br>4</td></tr></table>", "1\t\t3\n4"},
           {"<html><head><title>t</title><style>p{a:b}</style></head><body>a"
            "<script>if (1 < 2) document.write('<p>x')</script><!-- c --><o:p>b</o:p>"
            "<![if !x]>c<![endif]></body></html>",
            "abc"},
           {"a<!--[if mso]><p>x</p><![endif]-->b<!--[if !mso]><!-->c<!--<![endif]-->d<![if x",
            "abcd<![if x"},
           {"<meta charset='windows-1252'><p>\xE2\x82\xAC</p>", "\xE2\x82\xAC"},
           {"<p>a <b>b <p>c</i></table>d", "a b\n\ncd"},
       }) {
    EXPECT_EQ(HtmlToPlainText(html), text) << html;
  }
}

TEST(HtmlToPlainText, LosesNothingOfAPageThatIsNestedDeep) {
  std::string html;
  for (int i = 0; i < 5000; ++i) html += "<div>";
  EXPECT_EQ(HtmlToPlainText(html + "end"), "end");
}

TEST(DeclareUtf8, ChangesTheDeclarationsAndNothingElse) {
  EXPECT_EQ(DeclareUtf8("<META content=\"text/html; charset=windows-1252\"/><meta charset='x-y'>"
                        "<p>charset=a</p><body><meta charset=b>"),
            "<META content=\"text/html; charset=utf-8\"/><meta charset='utf-8'>"
            "<p>charset=a</p><body><meta charset=b>");
}

}  // namespace
}  // namespace kestrelon::desktop
