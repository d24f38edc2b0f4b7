#include "files/Uploading.h"
#include "tests/support/FailEachCall.h"

namespace kestrelon::testing {

TEST(Uploading, PutsTheTextOfAFileThatHasOneOrIsSilentlyFalse) {
  const std::string file = "Scripting.FileSystemObject.OpenTextFile(\"a/b\\\\c d\", 1, False, 0)";
  for (const String& text : {String(u"text"), String()}) {
    const auto script = [&](ScriptedDesktop& d) { d.Answer(file + ".ReadAll()", {Value(text)}); };
    const auto run = [&](ControlContext& context, ScriptedDesktop& desktop) {
      String path = u"a/b\\c d";
      String folder = u"http://h";
      const bool is_sent = UploadFile(context, path, folder);
      EXPECT_EQ(is_sent, desktop.failed_line.empty() && !text.empty());
      EXPECT_TRUE(desktop.messages.empty());
      if (!is_sent) return;
      EXPECT_EQ(desktop.log[5], "MSXML2.XMLHTTP.3.0.open(\"PUT\", \"http://h/c d\", False)");
      EXPECT_EQ(desktop.log[6], "MSXML2.XMLHTTP.3.0.send(\"text\")");
    };
    EXPECT_EQ(FailEachCall(script, run), text.empty() ? 4 : 7);
  }
}

}  // namespace kestrelon::testing
