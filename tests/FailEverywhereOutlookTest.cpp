// Every Outlook member, with each of its automation calls failing in turn: the page gets a result
// that it knows, the user is told where that is due, and Outlook is let go of.

#include <gtest/gtest.h>

#include <algorithm>

#include "Control/KestrelonControl.h"
#include "tests/FailEverywhereOutlook.h"

namespace kestrelon {
namespace testing {
namespace {

const std::string kSelection = "Outlook.Application.ActiveExplorer.selection";

void SelectItems(ScriptedDesktop& desktop, int32_t count) {
  desktop.Answer(kSelection + ".count", {count});
  for (int32_t i = 1; i <= count; ++i) {
    const std::string item = kSelection + ".item(" + std::to_string(i) + ")";
    for (const char* field : {".EntryID", ".Parent.StoreID", ".Subject", ".SenderName", ".To"}) {
      desktop.Answer(item + field, {Value(u"x")});
    }
  }
}

void SelectTwo(ScriptedDesktop& desktop, ObjectState&) { SelectItems(desktop, 2); }

std::vector<OutlookCase> AllCases() {
  using enum References;
  return {
      {u"GetOutlookSelection", {}, u"x,x,x,x", {u"No Outlook"}, 2, kReleased, SelectTwo},
      {u"GetOutlookSelectionString",
       {},
       u"x\\x\\x\\x\\x\\\\\\x\\x\\x\\x\\x\\",
       {u"No Outlook"},
       2,
       kReleased,
       SelectTwo},
  };
}

bool IsAmong(const std::vector<StringView>& patterns, StringView text) {
  return std::any_of(patterns.begin(), patterns.end(), [&](StringView pattern) {
    return pattern.ends_with(u'…') ? text.starts_with(pattern.substr(0, pattern.size() - 1))
                                   : text == pattern;
  });
}

// The references that a member is to release.
std::vector<const Object*> ReferencesIn(const ObjectState& state) {
  return {&state.outlook_application, &state.mapi_namespace,   &state.current_appointment,
          &state.current_task,        &state.current_mail,     &state.current_contact,
          &state.second_contact,      &state.current_folder,   &state.bound_contact_folder,
          &state.user_properties,     &state.first_spare_item, &state.second_spare_item};
}

bool AllReleased(const ObjectState& state) {
  const auto references = ReferencesIn(state);
  return std::all_of(references.begin(), references.end(),
                     [](const Object* reference) { return reference->IsNothing(); });
}

}  // namespace

const std::vector<OutlookCase>& OutlookCases() {
  static const std::vector<OutlookCase> cases = AllCases();
  return cases;
}

namespace {

class FailEverywhereInOutlook : public ::testing::TestWithParam<OutlookCase> {
 protected:
  // One call of the member with the n-th automation call failing, if it comes to that.
  void Run(int n) {
    const OutlookCase& example = GetParam();
    ScriptedDesktop desktop;
    ControlContext context{desktop};
    context.state.bound_contact_folder = desktop.NamedObject("BoundFolder").ToObject();
    if (example.prepare) example.prepare(desktop, context.state);
    desktop.fail_at = n;
    std::vector<Value> values = example.arguments;
    Value result;
    const auto raised =
        IgnoreFailures([&] { result = FindMember(example.member)->invoke(context, values); });
    failed_ = n != 0 && static_cast<int>(desktop.log.size()) >= n;
    const std::string where = failed_ ? desktop.log[static_cast<size_t>(n) - 1] : "no failure";
    const String text = raised ? u"" : result.ToText();

    const bool succeeded = !raised && text == example.success;
    EXPECT_TRUE(!raised || (failed_ && example.may_raise)) << where << ": " << raised->what();
    EXPECT_TRUE(raised || succeeded || (failed_ && IsAmong(example.failures, text)))
        << where << ": " << ToUtf8(text);
    if (failed_ && (raised || !succeeded)) {
      EXPECT_LE(desktop.messages.size(), example.most_messages) << where;
      EXPECT_EQ(desktop.messages.empty(), raised || example.most_messages == 0) << where;
    }
    const bool releases = example.references == References::kReleased ||
                          (example.references == References::kReleasedAfterFailure && !succeeded);
    EXPECT_EQ(AllReleased(context.state), releases) << where;
    EXPECT_EQ(context.state.bound_contact_folder.IsNothing(), releases) << where;
  }
  bool failed_ = false;
};

TEST_P(FailEverywhereInOutlook, LeadsToAKnownResultAndLetsGoOfOutlook) {
  Run(0);
  int n = 1;
  for (Run(n); failed_; Run(++n)) ASSERT_LT(n, 5000) << "does not end";
  EXPECT_GT(n, 3) << "the member hardly calls anything";
}

INSTANTIATE_TEST_SUITE_P(Members, FailEverywhereInOutlook, ::testing::ValuesIn(OutlookCases()),
                         [](const auto& info) {
                           return ToUtf8(info.param.member) + std::to_string(info.index);
                         });

}  // namespace
}  // namespace testing
}  // namespace kestrelon
