#include "outlook/Appointments.h"
#include "tests/outlook/OutlookMembers.h"

namespace kestrelon {
namespace {

using ::testing::Contains;

const std::string kForm = kOutlook + ".CreateItem(1)";
const std::string kSelection = kOutlook + ".ActiveExplorer.selection";

class Appointments : public OutlookMembers {
 protected:
  String New(String account_info, bool is_secure = false) {
    String server = u"crm";
    String folder = u"v";
    return NewAppointment(context, account_info, server, folder, is_secure);
  }
  String OpenOne(String id) { return OpenAppointment(context, id); }
};

// `before`, the adding of the three user properties, and `after`.
Lines WithStamps(const std::string& item, Lines before, const Lines& after) {
  for (const char* name : {"ACID", "Kestrelon", "guid"}) {
    before.push_back(item + ".UserProperties");
    before.push_back(item + ".UserProperties.Add(\"" + name + "\", 1, True)");
  }
  before.insert(before.end(), after.begin(), after.end());
  return before;
}

TEST_F(Appointments, NewFormIsFilledInOrderAndLetGoOf) {
  EXPECT_EQ(New(u"1234¬subject=Call back¬location=Office¬guid=G"), u"");
  const std::string property = kForm + ".UserProperties.Add(\"";
  EXPECT_EQ(
      desktop.log,
      WithStamps(kForm,
                 {"create Outlook.Application", kForm,
                  kForm + ".Body = \"http://crm/v/Kestrelon.ASPX?Page=Account&ItemID=1234\"",
                  kForm + ".Subject = \"Call back\"", kForm + ".Location = \"Office\""},
                 {property + "guid\", 1, True) = \"G\"", property + "ACID\", 1, True) = \"1234\"",
                  property + "Kestrelon\", 1, True) = \"true\"", kForm + ".Display()"}));
}

TEST_F(Appointments, AccountInfoIsReadPieceByPiece) {
  const std::string subject = kForm + ".Subject = ";
  const std::string guid = kForm + ".UserProperties.Add(\"guid\", 1, True) = ";
  const struct {
    const char16_t* info;
    const char* account_id;
    Lines puts;  // of subject and guid
  } cases[] = {
      {u"", "", {}},
      {u"1", "1", {}},
      {u"1¬", "", {}},
      {u"1¬2", "2", {}},
      {u"ac_id=1¬2¬AC_ID=3", "3", {}},
      {u"Subject=x=y", "", {subject + "\"x\""}},
      {u"subject=x¬subject=", "", {}},
      {u"other=x¬=y¬GUID=z¬ guid=n", "", {guid + "\"z\""}},
  };
  for (const auto& example : cases) {
    desktop.log.clear();
    EXPECT_EQ(New(example.info, true), u"");
    EXPECT_EQ(desktop.log[2], kForm +
                                  ".Body = \"https://crm/v/Kestrelon.ASPX?Page=Account&ItemID=" +
                                  example.account_id + "\"");
    Lines puts;
    for (const std::string& line : desktop.log) {
      if (line.starts_with(subject) || line.starts_with(guid)) puts.push_back(line);
    }
    EXPECT_EQ(puts, example.puts) << ToUtf8(example.info);
  }
}

TEST_F(Appointments, NewFormFallsBackToTheLoopbackAddress) {
  desktop.Answer("create Outlook.Application", {desktop.NamedObject("Direct")});
  desktop.Answer("create Outlook.Application on 127.0.0.1", {desktop.NamedObject("Local")});
  FailOnly("Direct.CreateItem(1).Body", AutomationError(429));
  EXPECT_EQ(New(u"1"), u"NoOutlook");
  FailOnly("Direct.CreateItem", AutomationError(429));
  EXPECT_EQ(New(u"1"), u"");
  desktop.Fail("Local.CreateItem(1).Display", AutomationError(429));
  EXPECT_EQ(NumberOf([&] { New(u"1"); }), 429);
  desktop.Fail("Local.CreateItem", AutomationError(429));
  EXPECT_EQ(New(u"1"), u"NoOutlook");
}

TEST_F(Appointments, SelectedItemIsStampedAndOutlookIsKept) {
  desktop.Answer(kSelection + ".count", {1});
  Value account_id = u"A1";
  EXPECT_EQ(AddAppointment(context, account_id).ToText(), u"success");
  const std::string item = kSelection + ".item(1)";
  const std::string property = item + ".UserProperties.Add(\"";
  EXPECT_EQ(desktop.log,
            WithStamps(item,
                       {"attach Outlook.Application", kNamespace, kOutlook + ".ActiveExplorer",
                        kSelection, kSelection + ".count", item, item + ".EntryID",
                        item + ".Parent", item + ".Parent.StoreID"},
                       {property + "ACID\", 1, True) = \"A1\"",
                        property + "Kestrelon\", 1, True) = \"true\"",
                        property + "guid\", 1, True) = \"01234567-89AB-CDEF-0123-456789ABCDEF\"",
                        item + ".save()"}));
  EXPECT_EQ(desktop.messages,
            (Messages{{u"Appointment was synchronised with Kestrelon. Please wait until next mail "
                       u"scan.",
                       0, u"Kestrelon"}}));
  EXPECT_FALSE(context.state.mapi_namespace.IsNothing());
}

TEST_F(Appointments, AnyOtherSelectionIsRefused) {
  Value account_id = u"A1";
  desktop.Answer(kSelection + ".count", {2, 0});
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(AddAppointment(context, account_id).IsEmpty());
  EXPECT_EQ(desktop.messages,
            (Messages{{u"You cannot add more than 1 item at a time. Please select 1 item only and "
                       u"try again.",
                       0, u"Kestrelon"},
                      {u"Please select an item to add", 64, u"Select an item"}}));
}

TEST_F(Appointments, StampingNamesTheStepThatFailed) {
  desktop.Answer(kSelection + ".count", {1});
  std::string steps;
  for (int n = 1; n < 20; ++n) {
    desktop.log.clear();
    desktop.fail_at = n;
    Value account_id = u"A1";
    const std::string result = ToUtf8(AddAppointment(context, account_id).ToText());
    const std::string head = "An error occured whilst ", tail = ": Injected";
    ASSERT_TRUE(result.starts_with(head) && result.ends_with(tail));
    const std::string step = result.substr(head.size(), result.size() - head.size() - tail.size());
    if (!steps.ends_with(step + "\n")) steps += step + "\n";
  }
  EXPECT_EQ(steps,
            "getting Outlook Application\ngetting MAPI Namespace\ngetting Selected Item\n"
            "checking Item Count\ngetting Entry ID\ngetting Store ID\nadding ACID parameter\n"
            "adding Kestrelon parameter\nadding guid parameter\nsetting ACID parameter\n"
            "setting Kestrelon parameter\nsaving item\n");
}

TEST_F(Appointments, GuidTextLosesItsBraces) {
  EXPECT_EQ(NewGuidString(context), u"01234567-89AB-CDEF-0123-456789ABCDEF");
  desktop.guid = u"no braces";
  EXPECT_EQ(NewGuidString(context), u"no braces");
  desktop.guid.reset();
  EXPECT_EQ(NewGuidString(context), u"");
}

TEST_F(Appointments, TaskIsOpenedFromTheStoreOfTheTasks) {
  const std::string tasks = kNamespace + ".GetDefaultFolder(13)";
  const std::string task = kNamespace + ".GetItemFromID(\"T\", \"store\")";
  desktop.Answer(tasks + ".StoreID", {Value(u"store")});
  String id = u"T";
  EXPECT_EQ(OpenTask(context, id), u"");
  EXPECT_EQ(desktop.log.back(), task + ".Display()");
  EXPECT_EQ(context.state.remembered_store_id, u"store");
  FailOnly(task, AutomationError(-2147221233));
  EXPECT_EQ(OpenTask(context, id), u"The task cannot be found, it may have been deleted");
  FailOnly(task + ".Display", AutomationError(429));
  EXPECT_EQ(OpenTask(context, id), u"NoOutlook");
}

TEST_F(Appointments, SharedAppointmentIsLookedForInItsCalendar) {
  const std::string recipient = kNamespace + ".CreateRecipient(\"Ann\")";
  const std::string folder = kNamespace + ".GetSharedDefaultFolder(<" + recipient + ">, 9)";
  desktop.Answer(recipient + ".Resolved", {true});
  AnswerEach(folder + ".Items", {"X", "Y", "Z"});
  desktop.Answer("X.EntryID", {Value(u"E1")});
  desktop.Answer("Y.EntryID", {Value(u"e1")});
  EXPECT_EQ(OpenOne(u"Ann@e1"), u"");
  EXPECT_THAT(desktop.log, Contains(recipient + ".Resolve()"));
  EXPECT_EQ(desktop.log.back(), "Y.Display()");
  EXPECT_FALSE(context.state.shared_mailbox_recipient.IsNothing());
  EXPECT_EQ(OpenOne(u"Ann@e3"), u"Appointment ID not found in calendar for 'Ann'");
  EXPECT_EQ(OpenOne(u"a@b@c"), u"Bad parameter string");
  desktop.Answer(kNamespace + ".CreateRecipient(\"\").Resolved", {false});
  EXPECT_EQ(OpenOne(u"@"), u"Unable to access user ''");
}

TEST_F(Appointments, OwnAppointmentIsOpenedById) {
  const std::string item = kNamespace + ".GetItemFromID(\"E\", \"store\")";
  desktop.Answer(kNamespace + ".GetDefaultFolder(9).StoreID", {Value(u"store")});
  EXPECT_EQ(OpenOne(u"E"), u"");
  EXPECT_EQ(desktop.log.back(), item + ".Display()");
  EXPECT_EQ(context.state.remembered_store_id, u"store");
  // Only the item itself is looked up in the list of errors.
  desktop.Fail(item + ".Display", AutomationError(-2147221233));
  EXPECT_EQ(OpenOne(u"E"), u"9");
}

TEST_F(Appointments, KnownErrorsHaveSentencesOfTheirOwn) {
  const std::pair<int32_t, const char16_t*> cases[] = {
      {-2147221212, u"The account being used to"},
      {-2147221237, u"Another operation is in progress;"},
      {-2147221241, u"An invalid entry id was supplied"},
      {7, u"An unknown error (7) occurred attempting to open this appointment. Text"},
      {-2147221000, u"An unknown error (-2147221000) occurred attempting to open this"},
  };
  for (const auto& [number, beginning] : cases) {
    FailOnly(kNamespace + ".GetItemFromID", AutomationError(number, u"Text"));
    EXPECT_TRUE(OpenOne(u"E").starts_with(beginning)) << number;
  }
}

}  // namespace
}  // namespace kestrelon
