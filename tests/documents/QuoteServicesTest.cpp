#include <gtest/gtest.h>

#include "documents/QuoteServices.h"
#include "tests/support/Failures.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon {
namespace {

struct Case {
  String given;
  String made;
};

TEST(QuoteServices, MakesHtmlOfText) {
  const Case cases[] = {
      {u"plain <b>&amp;</b>", u"plain <b>&amp;</b>"},
      {u"a\r\nb", u"a<br />b"},
      {u"a\nb\rc", u"a<br />b<br />c"},
      {u"\n\n\n", u"<br /><br />"},
      {u"\r\n\r\n", u"<br /><br />"},
      {u"a&#xD&#xAb", u"a<br />b"},
      {u"a&#xD;&#xA;b", u"a<br />;;b"},
      {u"&#xd&#x&#xAD", u"&#xd&#xD"},  // what is left is not looked at again
      {u"\t|", u"&nbsp;&nbsp;&nbsp;&nbsp;|"},
      {u"1 2  3   4    5", u"1 2&nbsp;&nbsp;3&nbsp;&nbsp; 4&nbsp;&nbsp;&nbsp;&nbsp;5"},
      {u" \t ", u" &nbsp;&nbsp;&nbsp;&nbsp; "},
      {u"<br />\n", u"<br />"},
  };
  for (const Case& example : cases) {
    EXPECT_EQ(TextToHtml(example.given), example.made) << ToUtf8(example.given);
  }
}

TEST(QuoteServices, ParsesPathsAtTheLastSeparatorOfEitherKind) {
  const struct {
    String path;
    String folder;
    String name;
  } cases[] = {
      {u"C:\\a\\b.htm", u"C:\\a", u"b.htm"},
      {u"http://s/a\\b/c", u"http://s/a\\b", u"c"},
      {u"a/b\\c", u"a/b", u"c"},
      {u"/c", u"", u"c"},
      {u"a\\", u"a", u""},
  };
  for (const auto& example : cases) {
    EXPECT_EQ(GetFolderFromPath(example.path), example.folder);
    EXPECT_EQ(GetFileNameFromPath(example.path), example.name);
  }
  EXPECT_EQ(GetFileNameFromPath(u"alone.htm"), u"alone.htm");
  for (const auto* path : {u"alone.htm", u""}) {
    EXPECT_EQ(NumberOf([&] { GetFolderFromPath(path); }), kInvalidProcedureCall);
  }
}

TEST(QuoteServices, MakesFileNamesSafeInPlace) {
  const Case cases[] = {
      {u"<Quote>  7", u"Quote__7"},
      {u"a\tb\r\nc\x1F" + String(1, u'\0') + u"d\x7F", u"abcd\x7F"},
      {u"¬a¬", u"a"},
      {u"\u0416\u20AC/\\:?", u"\u0416\u20AC/\\:?"},  // no ANSI code is no control character
      {u"", u""},
  };
  for (const Case& example : cases) {
    String text = example.given;
    EXPECT_EQ(MakeSafeFileName(text), example.made);
    EXPECT_EQ(text, example.made);
  }
}

TEST(QuoteServices, DeletesQuietlyWhateverFails) {
  const std::string created = "create Scripting.FileSystemObject";
  const std::string deleted = "Scripting.FileSystemObject.DeleteFile(\"a.htm\", False)";
  for (const std::string& failing : {std::string("none"), created, deleted}) {
    testing::ScriptedDesktop desktop;
    desktop.Fail(failing, AutomationError(kPermissionDenied));
    ControlContext context{desktop};
    DeleteFileQuietly(context, u"a.htm");
    EXPECT_EQ(desktop.log.back(), failing == created ? created : deleted);
    EXPECT_TRUE(desktop.messages.empty());
  }
}

TEST(QuoteServices, NullIsNoText) {
  EXPECT_EQ(NullToString(Value::Null{}), u"");
  EXPECT_EQ(NullToString(17), u"17");
}

}  // namespace
}  // namespace kestrelon
