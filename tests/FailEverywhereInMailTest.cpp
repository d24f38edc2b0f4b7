// A letter by mail, with each automation call failing in turn. Mails need conversions that take
// their time, so this runs on the scripted desktop.

#include <gtest/gtest.h>

#include <algorithm>

#include "Control/InterfaceTable.h"
#include "tests/support/Documents.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon {
namespace {

bool EndsInDisplay(const std::string& line) { return line.ends_with(".display()"); }

TEST(FailEverywhereInMail, EveryFailureIsToldOnceAndLeavesOutlookAsItIs) {
  for (const char16_t* mode : {u"HTML", u"attach"}) {
    for (int n = 1;; ++n) {
      testing::ScriptedDesktop desktop;
      desktop.Answer("Word.Application.Selection.Find.Found", {false});
      desktop.fail_at = n;
      ControlContext context{desktop};
      std::vector<Value> values = {testing::XmlDocumentOf(testing::kSmallLetterXml),
                                   u"a.dotx",
                                   u"a@b",
                                   mode,
                                   u"",
                                   u"",
                                   u"subject"};
      EXPECT_NO_THROW(FindMember(u"CreateLetterXML")->invoke(context, values)) << n;
      if (static_cast<int>(desktop.log.size()) < n) break;
      // Only the removal of the temporary file, after the mail is shown, fails silently.
      const auto failed = desktop.log.begin() + n - 1;
      const bool shown = std::any_of(desktop.log.begin(), failed, EndsInDisplay);
      EXPECT_EQ(desktop.messages.size(), shown ? 0U : 1U) << *failed;
      // A tag whose search fails is told and passed over: the mail is shown and Outlook let go of.
      const bool ended = std::any_of(failed + 1, desktop.log.end(), EndsInDisplay) || shown;
      const bool started =
          std::count(desktop.log.begin(), failed, "create Outlook.Application") > 0;
      EXPECT_EQ(context.state.outlook_application.IsNothing(), ended || !started) << *failed;
    }
  }
}

}  // namespace
}  // namespace kestrelon
