#include "outlook/Import.h"
#include "tests/outlook/OutlookMembers.h"

namespace kestrelon {
namespace {

class Import : public OutlookMembers {
 protected:
  Import() {
    for (const char* folder :
         {"GetDefaultFolder(10)", "GetDefaultFolder(13)", "GetFolderFromID(\"F\")"}) {
      AnswerEach(kNamespace + "." + folder + ".Items", {"Other", "I", "Twin"});
      desktop.Answer(kNamespace + "." + folder + ".EntryID", {Value(u"folder")});
    }
    desktop.Answer("I.EntryID", {Value(u"E")});
    desktop.Answer("Twin.EntryID", {Value(u"E")});
  }
  void Set(const std::string& property, Value value) {
    desktop.Answer("I." + property, {std::move(value)});
  }
  // Properties that give their own names.
  void SetTexts(std::initializer_list<const char*> properties) {
    for (const char* property : properties) Set(property, FromUtf8(property));
  }
  String ImportOneContact(String folder = u"", String id = u"E") {
    return ImportContact(context, folder, id);
  }
  String ImportOneTask(String folder = u"", String id = u"E") {
    return ImportTask(context, folder, id);
  }
};

TEST_F(Import, ContactFieldsComeInTheirOrder) {
  String record;
  for (const std::string property :
       {"title", "FirstName", "LastName", "JobTitle", "Department", "Email1Address",
        "BusinessTelephoneNumber", "BusinessFaxNumber", "MobileTelephoneNumber",
        "businessaddressstreet", "businessaddresscity", "businessaddresspostalcode",
        "businessaddressstate", "businessaddresscountry", "HomeAddressStreet", "HomeAddressCity",
        "HomeAddressPostalCode", "HomeAddressState", "HomeAddressCountry"}) {
    Set(property, FromUtf8(property));
    const bool is_street = property.ends_with("treet");
    record += FromUtf8(property + (is_street ? "#~#~#~" : "#~"));
  }
  EXPECT_EQ(ImportOneContact(), record);
  EXPECT_EQ(ImportOneContact(u"F"), record);
  EXPECT_TRUE(desktop.messages.empty());
  EXPECT_TRUE(context.state.current_contact.IsNothing());
}

TEST_F(Import, StreetsAreSplitIntoThreeLines) {
  const std::pair<const char16_t*, const char16_t*> cases[] = {
      {u"", u"#~#~#~"},
      {u"1 High St", u"1 High St#~#~#~"},
      {u"a\nb", u"a\nb#~#~#~"},
      {u"1 High St\r\nFloor 2\r\nRoom 3", u"1 High St#~\nFloor 2#~ \nRoom 3#~"},
      {u"Unit 5, Mill Lane", u"Unit 5#~ Mill Lane#~#~"},
      {u"a\r\nb\r\nc\r\nd", u"a#~\nb#~ \nc \nd#~"},
      {u"a,", u"a#~#~#~"},
      {u",b,,d,", u"#~b#~  d #~"},
  };
  for (const auto& [street, lines] : cases) {
    Set("businessaddressstreet", street);
    Set("HomeAddressStreet", u"Home, x");
    const String record = ImportOneContact();
    const String around = u"#~" + String(lines);
    EXPECT_NE(record.find(around), String::npos) << ToUtf8(street) << ToUtf8(record);
    EXPECT_NE(record.find(u"#~Home#~ x#~#~"), String::npos);
  }
}

TEST_F(Import, TaskFieldsComeInTheirOrder) {
  const Date none = MakeDate({4501, 1, 1});
  SetTexts({"BillingInformation", "body", "Subject"});
  Set("complete", false);
  Set("DateCompleted", none);
  Set("DueDate", none);
  Set("Importance", 2);
  Set("PercentComplete", 50);
  Set("Sensitivity", 0);
  Set("StartDate", MakeDate({2026, 3, 9, 17, 5, 0}));
  Set("Status", 1);
  Set("TeamTask", true);
  EXPECT_EQ(ImportOneTask(),
            u"BillingInformation#~body#~0#~#~4501-01-01 00:00:00.000#~2#~50#~0#~"
            u"2026-03-09 17:05:00.000#~1#~Subject#~1#~E#~folder");
  Set("complete", true);
  Set("DateCompleted", MakeDate({2026, 3, 10}));
  Set("TeamTask", false);
  EXPECT_EQ(ImportOneTask(u"F"),
            u"BillingInformation#~body#~1#~2026-03-10 00:00:00.000#~4501-01-01 00:00:00.000#~2#~"
            u"50#~0#~2026-03-09 17:05:00.000#~1#~Subject#~0#~E#~folder");
  EXPECT_TRUE(desktop.messages.empty());
  EXPECT_TRUE(context.state.current_task.IsNothing());
}

TEST_F(Import, AFailureNamesItsStepAndKeepsTheFieldsRead) {
  SetTexts({"title", "BillingInformation"});
  const String contact =
      u"An error occurred running ImportContact.  Further Information:\r\nFailed\r\n";
  const String task = u"An error occurred running ImportTask\r\nFailed\r\n";
  const String missing = u"Outlook does not appear to be installed";
  const struct {
    std::string call;
    bool is_task;
    String message;
    const char16_t* record;
  } cases[] = {
      {kNamespace, true, missing, u""},
      {kNamespace + ".GetFolderFromID", false, contact + u"Getting Required Folder", u""},
      {"Other.EntryID", false, contact + u"Locating contact in folder", u""},
      {"I.FirstName", false, contact + u"Retrieving basic details from contact", u"title#~"},
      {kNamespace + ".GetFolderFromID", true, task + u"Accessing chosen folder", u""},
      {"I.EntryID", true, task + u"accessing chosen task", u""},
      {"I.body", true, task + u"Retrieving task information", u"BillingInformation#~"},
  };
  for (const auto& example : cases) {
    desktop.messages.clear();
    FailOnly(example.call, AutomationError(1234, u"Failed"));
    const String record = example.is_task ? ImportOneTask(u"F") : ImportOneContact(u"F");
    EXPECT_EQ(record, example.record) << example.call;
    EXPECT_EQ(desktop.messages, (Messages{PlainMessage(example.message)})) << example.call;
    EXPECT_TRUE(context.state.outlook_application.IsNothing());
  }
}

TEST_F(Import, AnUnknownItemFailsWhereItIsRead) {
  EXPECT_EQ(ImportOneContact(u"", u"none"), u"");
  EXPECT_EQ(ImportOneTask(u"", u"none"), u"");
  const String reason = u"\r\nObject variable or With block variable not set\r\nRetrieving ";
  EXPECT_EQ(desktop.messages,
            (Messages{{u"An error occurred running ImportContact.  Further Information:" + reason +
                           u"basic details from contact",
                       0, std::nullopt},
                      {u"An error occurred running ImportTask" + reason + u"task information", 0,
                       std::nullopt}}));
}

}  // namespace
}  // namespace kestrelon
