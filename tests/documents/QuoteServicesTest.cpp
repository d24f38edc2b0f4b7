#include <gtest/gtest.h>

#include "documents/QuoteServices.h"
#include "tests/support/Failures.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon {
namespace {

using Case = std::pair<String, String>;

TEST(QuoteServices, MakesHtmlOfText) {
  const Case cases[] = {
      {u"a\r\nb <b>&amp;\rc", u"a<br />b <b>&amp;<br />c"},
      {u"\n\n\n", u"<br /><br />"},
      {u"a&#xD;&#xA;b", u"a<br />;;b"},
      {u"&#xd&#x&#xAD", u"&#xd&#xD"},  // what is left is not looked at again
      {u"1 2  3   4    5", u"1 2&nbsp;&nbsp;3&nbsp;&nbsp; 4&nbsp;&nbsp;&nbsp;&nbsp;5"},
      {u" \t ", u" &nbsp;&nbsp;&nbsp;&nbsp; "},
      {u"<br />\n", u"<br />"},
  };
  for (const auto& [given, made] : cases) EXPECT_EQ(TextToHtml(given), made) << ToUtf8(given);
}

TEST(QuoteServices, CutsPathsAtTheLastSeparatorOfEitherKind) {
  const Case cases[] = {{u"http://s/a\\b", u"c"}, {u"C:\\a/b", u"c.htm"}, {u"", u"c"}, {u"a", u""}};
  for (const auto& [given, made] : cases) {
    for (const auto* separator : {u"/", u"\\"}) {
      const String path = given + separator + made;
      EXPECT_EQ(GetFolderFromPath(path), given);
      EXPECT_EQ(GetFileNameFromPath(path), made);
    }
  }
  EXPECT_EQ(GetFileNameFromPath(u"alone.htm"), u"alone.htm");
  EXPECT_EQ(NumberOf([] { GetFolderFromPath(u"alone.htm"); }), kInvalidProcedureCall);
}

TEST(QuoteServices, MakesFileNamesSafeInPlace) {
  const Case cases[] = {
      {u"<Quote>  7", u"Quote__7"},
      {u"a\tb\r\nc\x1F" + String(1, u'\0') + u"d\x7F", u"abcd\x7F"},
      {u"¬a¬", u"a"},
      {u"\u0416\u20AC/\\:?", u"\u0416\u20AC/\\:?"},  // no ANSI code is no control character
  };
  for (const auto& [given, made] : cases) {
    String text = given;
    EXPECT_EQ(MakeSafeFileName(text), made);
    EXPECT_EQ(text, made);
  }
}

TEST(QuoteServices, DeletesQuietlyWhateverFails) {
  const std::string deleted = "Scripting.FileSystemObject.DeleteFile(\"a.htm\", False)";
  for (const int failing : {0, 1, 2}) {
    testing::ScriptedDesktop desktop;
    desktop.fail_at = failing;
    ControlContext context{desktop};
    DeleteFileQuietly(context, u"a.htm");
    EXPECT_EQ(desktop.log.back(), failing == 1 ? "create Scripting.FileSystemObject" : deleted);
  }
}

}  // namespace
}  // namespace kestrelon
