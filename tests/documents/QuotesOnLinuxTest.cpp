// A quote in a document of the Linux desktop.

#include <gtest/gtest.h>

#include "documents/Quotes.h"
#include "tests/support/Documents.h"
#include "tests/support/LetterWorld.h"

namespace kestrelon {
namespace {

TEST(QuotesOnLinux, GrowTheTableOfTheTemplate) {
  testing::LetterWorld world;
  ControlContext context{world.platform};
  String template_path = world.seminar_template;
  String save_path = FromUtf8(world.saved_path.string());
  const auto save = [&](const char* quote) {
    XmlDocument xml(testing::XmlDocumentOf(quote).pointer());
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
