#include "outlook/Selection.h"
#include "tests/outlook/OutlookMembers.h"

namespace kestrelon {
namespace {

const std::string kSelection = "Outlook.Application.ActiveExplorer.selection";
const ShownMessage kTooMany = {
    u"You cannot add more than 10 items at a time. Please select 10 items or less and try again.",
    0, u"Kestrelon"};
const ShownMessage kNone = {u"Please select an item to add", 64, u"Select an item"};
const ShownMessage kNotRunning = {
    u"Unable to add the e-mail as Microsoft Outlook does not appear to be installed. Please check "
    u"that Microsoft Outlook is installed on this machine and configured for your use.",
    64, u"Unable to add email"};

class Selection : public OutlookMembers {
 protected:
  // Item i reads E<i>, S<i> and so on; its subject is empty.
  void Select(int32_t count) {
    desktop.Answer(kSelection + ".count", {count});
    for (int32_t i = 1; i <= count; ++i) {
      const std::string number = std::to_string(i);
      const std::string item = kSelection + ".item(" + number + ")";
      for (const auto& [field, initial] : {std::pair(".EntryID", "E"),
                                           {".Parent.StoreID", "S"},
                                           {".SenderName", "F"},
                                           {".To", "T"}}) {
        desktop.Answer(item + field, {Value(FromUtf8(initial + number))});
      }
      desktop.Answer(item + ".Subject", {Value(u"")});
    }
  }
};

TEST_F(Selection, OneToTenItemsAreCapturedInTheirOrder) {
  const struct {
    int32_t count;
    String ids;
    String fields;
    Messages messages;
  } cases[] = {
      {0, u"", u"", {kNone}},
      {1, u"E1,S1", u"E1\\S1\\\\F1\\T1\\", {}},
      {2, u"E1,S1,E2,S2", u"E1\\S1\\\\F1\\T1\\\\\\E2\\S2\\\\F2\\T2\\", {}},
      {11, u"", u"", {kTooMany}},
  };
  for (const auto& example : cases) {
    Select(example.count);
    desktop.messages.clear();
    EXPECT_EQ(GetOutlookSelection(context), example.ids);
    EXPECT_EQ(desktop.messages, example.messages);
    EXPECT_EQ(GetOutlookSelectionString(context), example.fields);
  }
  Select(10);
  EXPECT_TRUE(GetOutlookSelection(context).ends_with(u",E9,S9,E10,S10"));
}

TEST_F(Selection, OutlookThatIsNotRunningIsStartedAndReported) {
  desktop.Fail("attach", AutomationError(kCannotCreateObject));
  EXPECT_EQ(GetOutlookSelection(context), u"No Outlook");
  EXPECT_EQ(desktop.log,
            (std::vector<std::string>{"attach Outlook.Application", "create Outlook.Application"}));
  desktop.Fail("create", AutomationError(kCannotCreateObject));
  EXPECT_EQ(GetOutlookSelectionString(context), u"No Outlook");
  EXPECT_EQ(desktop.messages, (Messages{kNotRunning, kNotRunning}));
}

}  // namespace
}  // namespace kestrelon
