// Quotes in documents of the Linux desktop, with table templates that lie on a real web server.

#include <gmock/gmock.h>

#include "desktop/xml/XmlDocuments.h"
#include "documents/Quotes.h"
#include "tests/support/LetterWorld.h"
#include "tests/support/LoopbackServer.h"

namespace kestrelon {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* kQuote =
    "<Data><quotefields><quotefield name='item'/></quotefields>"
    "<quoterows><r item='Ox'/><r item='Łódź'/></quoterows><Data/></Data>";

class QuoteFetch : public ::testing::Test {
 protected:
  QuoteFetch() { setenv("no_proxy", "127.0.0.1", 1); }

  // The text of a quote whose Word template names this file of the server; "" after a failure.
  std::string Make(const std::string& url) {
    ControlContext context{world.platform};
    const Object documents =
        world.platform.CreateObject(u"Word.Application", u"").GetChild(u"Documents");
    const Object template_document = documents.CallChild(u"Add", world.seminar_template);
    template_document.GetChild(u"Content").Put(u"Text", u"<htmltable>" + FromUtf8(url));
    String path = FromUtf8((world.output / "Quote.docx").string());
    template_document.Call(u"SaveAs", path);
    XmlDocument xml(desktop::ParseXmlDocument(kQuote).pointer());
    String saved = FromUtf8(world.saved_path.string());
    String no = u"false";
    world.messages.clear();
    if (WordQuote(context, xml, path, saved, no, no) != u"success") return {};
    return ToUtf8(documents.CallChild(u"Open", saved).GetChild(u"Content").Get(u"Text").ToText());
  }

  testing::LetterWorld world;
  testing::LoopbackServer server{{
      {"/t/rows.htm",
       "HTTP/1.1 200 OK\r\n\r\n<table><!-- QuoteRowStart --><tr><td>&lt;ITEM&gt; Ł</td></tr>"
       "<!-- QuoteRowEnd -->\r\n</table>"},
      {"/no", "HTTP/1.1 403 Forbidden\r\n\r\nno"},
      {"/oh", "HTTP/1.1 500 Internal Server Error\r\n\r\noh"},
      {"/cut", "HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n<!-- QuoteRowStart -->"},
      {"/endless", "HTTP/1.1 200 OK\r\n\r\n…"},
  }};
  const std::string refused_url = testing::LoopbackServer({}).url + "/x";
};

TEST_F(QuoteFetch, TheTemplateIsFilledAndInserted) {
  EXPECT_THAT(Make(server.url + "/t/rows.htm"), StartsWith("Ox Ł\r\a\r\aŁódź Ł\r\a"));
  EXPECT_TRUE(world.messages.empty());
  EXPECT_THAT(server.Stop().at(0), HasSubstr("\r\nTranslate: f\r\n"));
}

TEST_F(QuoteFetch, WhatTheServerAnswersInsteadIsTold) {
  for (const auto& [url, message] :
       {std::pair(server.url + "/no", "An Error occurred adding data to html template '"),
        {server.url + "/oh", "An Error occurred adding data to html template '"},
        {server.url + "/cut", "An Error occurred on first reference to html template '"},
        {server.url + "/endless", "An Error occurred on first reference to html template '"},
        {refused_url, "An Error occurred on first reference to html template '"}}) {
    EXPECT_EQ(Make(url), "");
    ASSERT_EQ(world.messages.size(), 1U) << url;
    EXPECT_THAT(ToUtf8(world.messages[0].text), StartsWith(message + url + "'"));
  }
}

TEST(QuotesOnLinux, GrowTheTableOfTheTemplate) {
  testing::LetterWorld world;
  ControlContext context{world.platform};
  String template_path = world.seminar_template;
  String save_path = FromUtf8(world.saved_path.string());
  const auto save = [&](const char* quote) {
    XmlDocument xml(desktop::ParseXmlDocument(quote).pointer());
    String no;
    return WordQuote(context, xml, template_path, save_path, no, no);
  };
  EXPECT_EQ(
      save("<Data><quotefields><quotefield name='No' label='When'/><quotefield name='When'/>"
           "<other name='No' label='When'/></quotefields><quoterows>"
           "<r when='1' no='0'/><r/><r/><r/><r when='5&#10;pm'/></quoterows><Data><r fieldname='n' "
           "value='9'/></Data><field name='n' templatetag='fee'/></Data>"),
      u"success");
  EXPECT_TRUE(world.messages.empty());
  const Object word = world.platform.CreateObject(u"Word.Application", u"");
  const Object saved = word.GetChild(u"Documents").CallChild(u"Open", save_path);
  const Object table = saved.GetChild(u"Tables").CallChild(u"item", 1);
  EXPECT_EQ(table.GetChild(u"Rows").Get(u"Count").ToLong(), 6);
  const auto text = [&](int32_t row, int32_t column) {
    return table.CallChild(u"Cell", row, column).GetChild(u"Range").Get(u"Text").ToText();
  };
  EXPECT_EQ(text(1, 1) + text(2, 1) + text(3, 1) + text(6, 1), u"When\r\a1\r\a\r\a5\vpm\r\a");
  EXPECT_EQ(text(4, 2), u"9 a person, lunch included\r\a");

  EXPECT_EQ(save("<Data/>"), u"");
  EXPECT_NE(world.messages.at(0).text.find(u"no element Data/quotefields"), String::npos);
}

}  // namespace
}  // namespace kestrelon
