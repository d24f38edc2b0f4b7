#include <gtest/gtest.h>

#include "files/Opening.h"
#include "tests/support/FailEachCall.h"

namespace kestrelon {
namespace {

using testing::ScriptedDesktop;

String Open(ScriptedDesktop& desktop, String path, bool managed) {
  ControlContext context{desktop};
  return OpenFile(context, path, managed);
}

void CheckApplication(const String& name, const std::string& documents, const String& path) {
  const std::string application = ToUtf8(name) + ".Application";
  const testing::ShownMessage told = {
      u"Unable to start Microsoft " + name + u" - check that it is installed correctly", 48,
      u"Kestrelon"};
  const auto run = [&](ControlContext&, ScriptedDesktop& desktop) {
    EXPECT_EQ(Open(desktop, path, true), u"");
    const bool is_missing = desktop.failed_line.starts_with("create");
    EXPECT_EQ(desktop.messages, std::vector(is_missing ? 1 : 0, told)) << desktop.failed_line;
    EXPECT_NE(desktop.log.back() == application + ".Visible = True", is_missing);
    const std::string call = application + documents + ".open(\"" + ToUtf8(path) + "\")";
    EXPECT_TRUE(!desktop.failed_line.empty() || desktop.log[2] == call) << desktop.log[2];
  };
  EXPECT_EQ(testing::FailEachCall([](ScriptedDesktop&) {}, run), 4) << ToUtf8(path);
}

TEST(Opening, ExtensionDecidesWhoOpensAFileOfTheStorage) {
  for (const String path : {u"/s/A.DOC", u"a.b.docx ", u"a.dot", u"a.Rtf"}) {
    CheckApplication(u"Word", ".Documents", path);
  }
  for (const String path : {u"a.xls", u"a. XLT"}) CheckApplication(u"Excel", ".Workbooks", path);
  for (const std::string path : {"a.xlsx", "a.docm", "/s.x/doc", "a."}) {
    ScriptedDesktop desktop;
    EXPECT_EQ(Open(desktop, FromUtf8(path), true), u"");
    EXPECT_EQ(desktop.log, std::vector{"shell Open " + path + " in C:\\"});
  }
}

TEST(Opening, CodesOfTheShellBecomeTexts) {
  const String unable = u"Unable to open the file because ";
  const String unknown = u"Unable to open this file. An unknown error has occurred";
  const String program =
      u"Ensure you have an application installed capable on rendering this file type";
  for (const auto& [code, text] : {
           std::pair{0, unknown},
           {2,
            unable + u"it could not be found at the path specified. Ensure this file still exists"},
           {3, unable + u"it cannot be found. Ensure this file path currently exists"},
           {5, unable + u"access was denied"},
           {26, unable + u"a sharing violation has occurred"},
           {27, unable + u"an invalid or incomplete file association exists. " + program},
           {31, unable + u"no file association exists for this file type. " + program},
           {32, unknown},
           {33, u""},
       }) {
    ScriptedDesktop desktop;
    desktop.shell_result = code;
    EXPECT_EQ(Open(desktop, u"a.doc", false), text) << code;
  }
}

}  // namespace
}  // namespace kestrelon
