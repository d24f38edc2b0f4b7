#include <gtest/gtest.h>

#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"
#include "desktop/xml/XmlDocuments.h"
#include "documents/QuoteServices.h"
#include "documents/QuoteTemplate.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/support/Dice.h"
#include "tests/support/Failures.h"

namespace kestrelon {
namespace {

class QuoteTemplate : public ::testing::Test {
 protected:
  // What becomes of the template; "error " and the number when it stays as it is.
  std::string Expand(const std::string& html, const Object& quote) {
    desktop::WriteFileAtomically(file_, html);
    const int32_t error =
        NumberOf([&] { ExpandQuoteTemplate(context_, desktop::TextFromPath(file_), quote); });
    const std::string text = desktop::ReadWholeFile(file_);
    EXPECT_TRUE(error == 0 || text == html) << "the template is lost";
    return error == 0 ? text : "error " + std::to_string(error);
  }

  std::vector<String> messages_;
  LinuxPlatform platform_{[this](const String& text, int32_t flags, const auto& title) {
    EXPECT_TRUE(flags == 0 && !title);
    messages_.push_back(text);
    return 1;
  }};
  ControlContext context_{platform_};
  desktop::PrivateFolder folder_{"kestrelon-quote-test-"};
  const std::filesystem::path file_ = folder_.path() / "lines.htm";
};

Object Quote(const std::string& lines) {
  return desktop::ParseXmlDocument(
      "<Data><quotefields><f name='Product' templatetag='Item' label='L'/>"
      "<f name='Price' templatetag='' label='Cost'/><f name='Kind'/></quotefields><quoterows>" +
      lines + "</quoterows></Data>");
}

std::string Row(const std::string& item, const std::string& cost) {
  return "<!-- QuoteRowStart --><td>" + item + "|&lt;item&gt;|" + cost +
         "</td><!-- QuoteRowEnd -->";
}
const std::string kRowPattern = Row("&lt;ITEM&gt;|&lt;PRODUCT&gt;", "&lt;COST&gt;");

TEST_F(QuoteTemplate, RepeatsTheRowWithTheCharacterBehindIt) {
  const Object quote = Quote(
      "<l product='Bolt' price='1'/><l item='\xC2\xA3 Nut&#13;&#10;x' cost='2  3'/><!-- c -->");
  const auto rows = [](const std::string& end) {
    return Row("Bolt|Bolt", "1") + end + Row("\xA3 Nut<br />x|\xA3 Nut<br />x", "2&nbsp;&nbsp;3") +
           end + Row("|", "") + end;
  };
  // Two characters are left out, and where lines end in LF the second is one of the next line.
  EXPECT_EQ(Expand("<t>\r\n" + kRowPattern + "\r\n</t>\x80\r\n", quote),
            "<t>\r\n" + rows("\r") + "</t>\x80\r\n");
  EXPECT_EQ(Expand("<t>\n" + kRowPattern + "\n</t>\x80\n", quote),
            "<t>\n" + rows("\n") + "/t>\x80\n");
}

TEST_F(QuoteTemplate, PutsAHeaderBeforeEachLineThatOpensAGroup) {
  const Object quote = Quote(
      "<l product='1' kind='A' price='5'/><l product='2' kind='a'/><l product='3' kind='B'/>"
      "<l product='4' kind='A'/>");
  // The cost has been replaced when the header comes; its end marker lacks the last character.
  const auto header = [](const std::string& kind) {
    return "<!-- QuoteGroupStart --><th>" + kind + "|&lt;COST&gt;</th><!-- QuoteGroupEnd --";
  };
  for (const std::string line_end : {"\r\n", "\n"}) {
    const std::string behind = line_end.substr(0, 1);
    EXPECT_EQ(Expand("t" + line_end + kRowPattern + line_end + header("&lt;KIND&gt;") + ">" +
                         line_end + "<p>",
                     quote),
              "t" + line_end + header("A") + Row("1|1", "5") + behind + Row("2|2", "") + behind +
                  header("B") + Row("3|3", "") + behind + header("A") + Row("4|4", "") + behind +
                  (line_end == "\n" ? "p>" : "<p>"));
  }
}

TEST_F(QuoteTemplate, MalformedTemplatesFollowTheFormulas) {
  const Object quote = Quote("<l product='p'/>");
  EXPECT_EQ(Expand("", quote), "error 62");
  EXPECT_EQ(Expand("<p>&lt;ITEM&gt;", quote), "error 5");
  // Without a row end the row is its first 20 characters and the tail begins at the 22nd.
  EXPECT_EQ(Expand("ab<!-- QuoteRowStart -->&lt;ITEM&gt;z", quote),
            "ab<!-- QuoteRowStart --->&lt;ITEM&gt;z");
  EXPECT_EQ(Expand(kRowPattern + "<!-- QuoteGroupStart -->&lt;<!-- QuoteGroupEnd -->", quote),
            "error 5");
  EXPECT_TRUE(messages_.empty());
  for (const std::string group : {"<!-- QuoteGroupStart -->x<!-- QuoteGroupEnd -->!",
                                  "<!-- QuoteGroupStart -->&lt;KIND&gt;"}) {
    messages_.clear();
    EXPECT_EQ(Expand(kRowPattern + "\r\n" + group, quote), Row("p|p", "") + "\r" + group);
    EXPECT_EQ(messages_, std::vector<String>{u"The html template group line is incorrect"});
  }
}

TEST_F(QuoteTemplate, QuotesThatCannotBeUsedLeaveTheTemplate) {
  const std::string rows = "<quoterows><l a='1'/></quoterows>";
  const std::pair<std::string, int32_t> cases[] = {
      {"<quotefields/>", kSubscriptOutOfRange},
      {"<quotefields/><quoterows/>", kSubscriptOutOfRange},
      {rows, kObjectVariableNotSet},
      {"<quotefields><f name='a'/><!-- c --></quotefields>" + rows, kTypeMismatch},
      {"<quotefields><f label='a'/></quotefields>" + rows, kInvalidUseOfNull},
  };
  for (const auto& [data, error] : cases) {
    EXPECT_EQ(Expand(kRowPattern, desktop::ParseXmlDocument("<Data>" + data + "</Data>")),
              "error " + std::to_string(error));
  }
  std::string lines;
  for (int i = 0; i < 32768; ++i) lines += "<l/>";
  EXPECT_EQ(Expand(kRowPattern, Quote(lines)), "error 6");
}

TEST_F(QuoteTemplate, KeepsValuesBeyondAnsi) {
  EXPECT_NE(Expand(kRowPattern, Quote("<l product='\xD0\x96? \xF0\x9F\x98\x80\xC3\xA4'/>"))
                .find("&#1046;? &#128512;\xE4"),
            std::string::npos);
}

TEST_F(QuoteTemplate, FindsTheValueOfALineByNameThenByTag) {
  const Object quote = Quote("<l a='1' b='2' c=''/><!-- c -->");
  const auto value = [&quote](int16_t line, const char16_t* name, const char16_t* tag) {
    return ToUtf8(GetQuoteRowValue(line, quote, name, tag));
  };
  EXPECT_EQ(value(1, u"A", u"B") + value(1, u"C", u"B") + value(1, u"D", u"B"), "122");
  EXPECT_EQ(value(1, u"D", u"") + value(1, u"D", u"E") + value(1, u"", u"B"), "");
  for (const int16_t line : {0, 2, 3}) EXPECT_EQ(value(line, u"A", u"B"), "");
}

// The same by searching and replacing alone, value by value; the template has all it needs.
String ExpandBySteps(const String& text, const Object& quote) {
  const auto find = [&text](const char16_t* marker) { return text.find(marker); };
  const size_t row_start = find(u"<!-- QuoteRowStart -->");
  const size_t row_end = find(u"<!-- QuoteRowEnd -->");
  const size_t group_start = find(u"<!-- QuoteGroupStart -->");
  const size_t group_end = find(u"<!-- QuoteGroupEnd -->");
  const bool grouping = group_start != String::npos;
  const String group_pattern =
      grouping ? text.substr(group_start, group_end + 21 - group_start) : u"";
  const size_t tag_start = grouping ? text.find(u"&lt;", group_start) + 4 : 0;
  const String group_tag =
      UpperCase(text.substr(tag_start, text.find(u"&gt;", tag_start) - tag_start));
  String previous = u"£$($()%*()*()";
  String output = text.substr(0, row_start);
  const Object lines = quote.CallChild(u"selectNodes", u"Data/quoterows/*");
  const Object fields = quote.CallChild(u"selectNodes", u"Data/quotefields/*");
  for (int16_t i = 1; i <= lines.Get(u"length").ToLong(); ++i) {
    String row = text.substr(row_start, row_end + 21 - row_start);
    for (int32_t f = 0; f < fields.Get(u"length").ToLong(); ++f) {
      const auto attribute = [field = fields.CallChild(u"item", f)](const char16_t* name) {
        return UpperCase(NullToString(field.Call(u"getAttribute", name)));
      };
      const String name = attribute(u"name");
      const String tag = attribute(attribute(u"templatetag").empty() ? u"label" : u"templatetag");
      const String value = TextToHtml(GetQuoteRowValue(i, quote, name, tag));
      const auto fill = [&](const String& pattern) {
        return ReplaceAll(ReplaceAll(pattern, u"&lt;" + tag + u"&gt;", value),
                          u"&lt;" + name + u"&gt;", value);
      };
      if (grouping && (group_tag == tag || group_tag == name) &&
          UpperCase(value) != UpperCase(previous)) {
        previous = value;
        row = fill(group_pattern) + row;
      }
      row = fill(row);
    }
    output += row;
  }
  return output + text.substr(grouping ? group_end + 24 : row_end + 22);
}

// Names, tags and values that begin, end, hold and nest one another, so that values complete tags.
class RandomQuotes {
 public:
  Object MakeQuote() {
    const Object quote = desktop::ParseXmlDocument("<Data><quotefields/><quoterows/></Data>");
    for (size_t count = 1 + dice_.Roll(4); count > 0; --count) {
      const Object field = AddChild(quote, u"Data/quotefields");
      field.Call(u"setAttribute", u"name", dice_.OneOf(names_));
      for (const auto* attribute : {u"templatetag", u"label"}) {
        if (dice_.Roll(2) > 0) field.Call(u"setAttribute", attribute, dice_.OneOf(names_));
      }
    }
    const auto& values = dice_.Roll(2) == 0 ? risky_ : plain_;
    for (size_t count = 1 + dice_.Roll(4); count > 0; --count) {
      const Object line = AddChild(quote, u"Data/quoterows");
      for (const auto* attribute : {u"a", u"b", u"ab"}) {
        if (dice_.Roll(4) > 0) line.Call(u"setAttribute", attribute, Pieces(values, 3));
      }
    }
    return quote;
  }
  String MakeTemplate() {
    const auto& choices = dice_.Roll(2) == 0 ? risky_ : tags_;
    String html = Pieces(choices, 2) + u"<!-- QuoteRowStart -->" + Pieces(choices, 8) +
                  u"<!-- QuoteRowEnd -->" + Pieces(plain_, 2);
    if (dice_.Roll(2) > 0) {
      html += u"<!-- QuoteGroupStart -->" + Pieces(plain_, 2) + dice_.OneOf(tags_) + u"&lt;&gt;" +
              Pieces(choices, 5) + u"<!-- QuoteGroupEnd -->";
    }
    return html + u"??" + Pieces(choices, 2);
  }

 private:
  static Object AddChild(const Object& quote, const char16_t* path) {
    const Object child = quote.CallChild(u"createElement", u"c");
    return quote.CallChild(u"selectSingleNode", path).CallChild(u"appendChild", child);
  }
  String Pieces(const std::vector<String>& choices, size_t most) {
    String text;
    for (size_t count = dice_.Roll(most + 1); count > 0; --count) text += dice_.OneOf(choices);
    return text;
  }

  testing::Dice dice_;
  const std::vector<String> names_ = {u"a", u"A", u"B", u"b", u"ab", u"Ab", u""};
  const std::vector<String> plain_ = Split(u"x,  ,\n,A,B&gt;,lt;B&gt;,t;A&gt;,;B&gt;", u",");
  const std::vector<String> tags_ =
      Split(u"&lt;A&gt;,&lt;B&gt;,&lt;AB&gt;,&lt;&gt;,&lt;b&gt;,lt;B&gt;,x", u",");
  const std::vector<String> risky_ =
      Split(u"&lt;A&gt;,&lt;B&gt;,&lt;,&l,&lt,&,lt;B&gt;,A,B&gt;,;B&gt;,&lt;b&gt;&l", u",");
};

TEST_F(QuoteTemplate, ExpandsAsReplacingStepByStepDoes) {
  RandomQuotes random;
  for (int round = 0; round < 1500; ++round) {
    const Object quote = random.MakeQuote();
    const String html = random.MakeTemplate();
    ASSERT_EQ(Expand(ToAnsi(html), quote), ToAnsi(ExpandBySteps(html, quote)))
        << ToUtf8(html + u"\n" + quote.Get(u"xml").ToText());
  }
}

}  // namespace
}  // namespace kestrelon
