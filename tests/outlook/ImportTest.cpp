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
  String ImportOneContact(String folder = u"", String id = u"E") {
    return ImportContact(context, folder, id);
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
  for (const char* property : {"BillingInformation", "body", "Subject"}) {
    Set(property, FromUtf8(property));
  }
  Set("complete", false);
  Set("DateCompleted", none);
  Set("DueDate", none);
  Set("Importance", 2);
  Set("PercentComplete", 50);
  Set("Sensitivity", 0);
  Set("StartDate", MakeDate({2026, 3, 9, 17, 5, 0}));
  Set("Status", 1);
  Set("TeamTask", true);
  String folder, id = u"E";
  EXPECT_EQ(ImportTask(context, folder, id),
            u"BillingInformation#~body#~0#~#~4501-01-01 00:00:00.000#~2#~50#~0#~"
            u"2026-03-09 17:05:00.000#~1#~Subject#~1#~E#~folder");
}

TEST_F(Import, AnUnknownItemFailsWhereItIsRead) {
  EXPECT_EQ(ImportOneContact(u"", u"none"), u"");
  ASSERT_EQ(desktop.messages.size(), 1U);
  EXPECT_TRUE(
      desktop.messages[0].text.ends_with(u"\r\nObject variable or With block variable not "
                                         u"set\r\nRetrieving basic details from contact"));
}

}  // namespace
}  // namespace kestrelon
