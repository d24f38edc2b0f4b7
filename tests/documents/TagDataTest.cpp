#include <gtest/gtest.h>

#include "documents/TagData.h"
#include "tests/support/Documents.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon {
namespace {

using testing::ScriptedDesktop;

class TagData : public ::testing::Test {
 protected:
  // "tag=value" of every entry, and "-" for an empty slot.
  std::vector<String> Entries() const {
    std::vector<String> entries;
    const TagTable& table = context.state.tag_table;
    for (size_t i = 0; i < table.Tags.size(); ++i) {
      entries.push_back(table.Tags[i].empty() ? String(u"-")
                                              : table.Tags[i] + u"=" + table.TagReplacements[i]);
    }
    return entries;
  }
  void Extract(const char* xml) { ExtractTagData(context, testing::XmlDocumentOf(xml)); }
  void ExtractRecord(const char* xml) {
    ExtractRecordTagData(context, testing::XmlDocumentOf(xml));
  }

  ScriptedDesktop screen;
  ControlContext context{screen};
};

using Texts = std::vector<String>;

TEST_F(TagData, FindsTheTagOfAFieldInItsAttributes) {
  struct Case {
    const char* field;
    Texts entries;
  };
  const Case cases[] = {
      {R"(name="n" templatetag="t")", {u"<t>=v", u"-"}},
      {R"(name="n" templatetag="t" templatetag2="u")", {u"<t>=v", u"<u>=v"}},
      {R"(name="n" templatetag="[label]" label="Company Name")", {u"<Company Name>=v", u"-"}},
      {R"(name="n" templatetag="[label]" label="")", {u"<n>=v", u"-"}},
      {R"(name="n" templatetag="[label]")", {u"-", u"-"}},
      {R"(name="n" label="L")", {u"<L>=v", u"-"}},
      {R"(name="n" templatetag2="[label]")", {u"<[label]>=v", u"-"}},
      {"name=\"n\" templatetag=\"p\xC3\x82\xC2\xA3\"", {u"<p£>=v", u"-"}},
      {R"(name="N" templatetag="t")", {u"<t>=", u"-"}},
      {R"(templatetag="t")", {u"<t>=", u"-"}},
  };
  for (const Case& example : cases) {
    Extract((std::string("<Data><field ") + example.field +
             "/><Data><row fieldname=\"x\" value=\"w\"/><row fieldname=\"n\" value=\"v\"/>"
             "<row fieldname=\"n\" value=\"second\"/></Data></Data>")
                .c_str());
    Texts entries = Entries();
    entries.resize(2);
    EXPECT_EQ(entries, example.entries) << example.field;
  }
  EXPECT_TRUE(screen.messages.empty());
}

TEST_F(TagData, KeepsSlotsForEveryChildAndGrowsByOne) {
  Extract("<Data><!-- counts --><other/><field name='a' templatetag='a'/><Data/></Data>");
  EXPECT_EQ(Entries(), (Texts{u"<a>=", u"-", u"-", u"-", u"-"}));
  Extract(
      "<Data><field name='a' templatetag='1' templatetag2='2'/>"
      "<field name='a' templatetag='3' templatetag2='1'/>"
      "<Data><r fieldname='a' value='v\xC3\x82\xC2\xA3&#10;'/></Data></Data>");
  const String value = u"=v\u00C2\u00A3\n";  // as the page sent it
  EXPECT_EQ(Entries(), (Texts{u"<1>" + value, u"<2>" + value, u"<3>" + value, u"<1>" + value}));
}

TEST_F(TagData, ReportsAFailureWithItsStepAndKeepsWhatItHas) {
  const struct {
    const char* xml;
    const char16_t* message;
    size_t slots;
  } cases[] = {
      {"<record/>", u"Object variable or With block variable not set at step Setting root node", 0},
      {"<Data><field name='a' templatetag='t'/></Data>",
       u"Object variable or With block variable not set at step Retrieving data for tag t", 2},
      {"<Data><field name='a' templatetag='t'/><field name='b' templatetag='u'/>"
       "<Data><r fieldname='b'/></Data></Data>",
       u"Invalid use of Null at step Retrieving data for tag u", 4},
  };
  for (const auto& example : cases) {
    screen.messages.clear();
    context.state.tag_table = {};
    Extract(example.xml);
    ASSERT_EQ(screen.messages.size(), 1U) << example.xml;
    EXPECT_EQ(screen.messages[0],
              (testing::ShownMessage{String(u"Error in ExtractTagData - ") + example.message, 0,
                                     std::nullopt}));
    EXPECT_EQ(Entries().size(), example.slots);
  }
  EXPECT_EQ(Entries()[0], u"<t>=");
}

TEST_F(TagData, OverflowsAfter32767Tags) {
  std::string fields;
  for (int i = 0; i < 32768; ++i) fields += "<field name='a' templatetag='t'/>";
  Extract(("<Data>" + fields + "<Data/></Data>").c_str());
  ASSERT_EQ(screen.messages.size(), 1U);
  EXPECT_TRUE(screen.messages[0].text.starts_with(u"Error in ExtractTagData - Overflow"));
}

TEST_F(TagData, RecordsPreferTheDisplayValueAndCarryTheLastValueOn) {
  ExtractRecord(
      "<record><field name='a' templatetag='a' templatetag2='[label]'/>"
      "<field name='b' templatetag='b' templatetag2='b2'/>"
      "<field name='none' label='None'/>"
      "<field name='c' templatetag2='c2'/>"
      "<Data><r fieldname='b' value='raw' displayvalue='shown \xC3\x82\xC2\xA3'/>"
      "<r fieldname='c' value='plain' displayvalue=''/></Data></record>");
  EXPECT_EQ(Entries(), (Texts{u"<a>=", u"<a>=", u"<b>=shown £", u"<b2>=shown £", u"<None>=shown £",
                              u"<c2>=plain"}));
  EXPECT_THROW(ExtractRecord("<Data/>"), AutomationError);
}

TEST(CleanCellText, BlanksControlsAndTrims) {
  EXPECT_EQ(CleanCellText(u" <a\tb>\r\a"), u"<a b>");
  EXPECT_EQ(CleanCellText(u"\u4E2D\r\a"), u"\u4E2D");
}

TEST_F(TagData, ListFillsARowPerRecordAndThenTheCaptions) {
  screen.Answer("T.Columns.Count", {3});
  screen.Answer("T.Rows.Count", {1});
  screen.Answer("T.Cell(1, 1).Range.Text", {u"<contact_First_Name>\r\a"});
  screen.Answer("T.Cell(1, 2).Range.Text", {u"<firstname>\r\a"});
  screen.Answer("T.Cell(1, 3).Range.Text", {u"<contact_mail>\r\a"});
  const Object table = screen.NamedObject("T").ToObject();
  const auto fill = [&](const char* list) {
    FillListTable(table, testing::XmlDocumentOf(list).GetChild(u"documentElement"));
  };
  fill(
      "<l><r><f templatetag='FIRST_NAME' label='First' value='Ann'/>"
      "<f templatetag='x' templatetag2='first_name' label='Given' value='Anna'/></r>"
      "<r><f label='Mail' value='b@c'/></r></l>");
  // Without records there are no captions to take.
  EXPECT_THROW(fill("<l/>"), AutomationError);
  std::erase_if(screen.log, [](const std::string& line) {
    return line != "T.Rows.Add()" && line.find(" = ") == std::string::npos;
  });
  EXPECT_EQ(screen.log,
            (std::vector<std::string>{
                "T.Rows.Add()", "T.Rows.Add()", "T.Cell(2, 1).Range.Text = \"Ann\"",
                "T.Cell(2, 1).Range.Text = \"Anna\"", "T.Cell(3, 3).Range.Text = \"b@c\"",
                "T.Cell(1, 1).Range.Text = \"First\"", "T.Cell(1, 1).Range.Text = \"Given\""}));
}

}  // namespace
}  // namespace kestrelon
