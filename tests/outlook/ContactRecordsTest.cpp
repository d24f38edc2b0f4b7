#include <map>

#include "Control/InterfaceTable.h"
#include "automation/TracingObject.h"
#include "outlook/ContactRecords.h"
#include "tests/outlook/OutlookMembers.h"
#include "tests/outlook/ScriptedContacts.h"
#include "tests/support/Documents.h"

namespace kestrelon {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;
using testing::ScriptedContact;
using testing::StampingCalls;

const String kAnn =
    u"<record id='1'><field name='FIRSTNAME' value='Ann'/><field name='LASTNAME' value='Lee'/>"
    u"<field name='EMAIL1ADDRESS' value='a@b'/><field name='LASTNAME' value='second'/></record>";

class ContactRecords : public OutlookMembers {
 protected:
  ContactRecords() {
    const Object xml = TraceObject(testing::EmptyXmlDocument(), "Xml", [this](const auto& line) {
      desktop.log.push_back(line.substr(0, line.find(" -> ")));
    });
    desktop.Answer("create Msxml2.DOMDocument", {xml});
    context.state.bound_contact_folder = desktop.NamedObject("F").ToObject();
    ScriptContacts(desktop, "F", {});
  }
  bool Export(const String& record) {
    String ContactRecordXML = record;
    return AddUpdateContactXML(context, ContactRecordXML, overwrite, match_by_name);
  }
  bool HasSaved(const std::string& path) const {
    return std::count(desktop.log.begin(), desktop.log.end(), path + ".save()") != 0;
  }
  bool overwrite = false;
  bool match_by_name = false;
};

const std::string kNew = "F.Items.Add()";

std::string Query(const std::string& field) {
  return "Xml.selectSingleNode(\"/record/field[@name='" + field + "']\")";
}

TEST_F(ContactRecords, ReadsEachFieldJustBeforeItIsWritten) {
  Export(kAnn);
  const auto at = [&](const std::string& line) {
    return std::find(desktop.log.begin(), desktop.log.end(), line);
  };
  const std::string value = ".getAttribute(\"value\")";
  const std::string first = Query("FIRSTNAME"), last = Query("LASTNAME");
  const std::string email = Query("EMAIL1ADDRESS"), record = "Xml.selectSingleNode(\"/record\")";
  EXPECT_EQ(Lines(desktop.log.begin(), at(kNew + ".FirstName = \"Ann\"")),
            (Lines{"create Msxml2.DOMDocument",
                   desktop.log[1],
                   record,
                   record + ".getAttribute(\"id\")",
                   first,
                   first + value,
                   last,
                   last + value,
                   first,
                   first + value,
                   last,
                   last + value,
                   email,
                   email + value,
                   "F.Items",
                   "F.Items.Count",
                   "F.Items",
                   kNew,
                   Query("ACCOUNT_NAME"),
                   kNew + ".CompanyName = \"\"",
                   Query("TITLE"),
                   kNew + ".title = \"\"",
                   first,
                   first + value}));
}

TEST_F(ContactRecords, WritesEveryPropertyInItsOrder) {
  const std::string properties =
      "CompanyName title FirstName MiddleName LastName JobTitle Department businessaddressstreet "
      "businessaddresscity businessaddressstate businessaddresspostalcode businessaddresscountry "
      "BusinessTelephoneNumber BusinessFaxNumber BusinessHomePage HomeAddressStreet "
      "HomeAddressCity HomeAddressState HomeAddressPostalCode HomeAddressCountry "
      "HomeTelephoneNumber HomeFaxNumber Email1Address Email2Address Email3Address "
      "MobileTelephoneNumber Hobby NickName Spouse ManagerName ReferredBy AssistantName "
      "AssistantTelephoneNumber WebPage";
  // Fields are named as the properties are, but for these; the home address has one line.
  std::map<String, std::string> values = {{u"WebPage", "www"},
                                          {u"BusinessHomePage", "www"},
                                          {u"businessaddressstreet", "1\\r\\n2\\r\\n3"},
                                          {u"HomeAddressStreet", "HOMEADDRESSSTREET\\r\\n\\r\\n"}};
  String record =
      u"<record id='{1}'><field name='BUSINESSHOMEPAGE' value='www'/>"
      u"<field name='BUSINESSADDRESSSTREET3' value='3'/>"
      u"<field name='BUSINESSADDRESSSTREET2' value='2'/>"
      u"<field name='BUSINESSADDRESSSTREET' value='1'/>";
  std::string expected;
  for (const String& property : Split(FromUtf8(properties), u" ")) {
    const String field = property == u"CompanyName" ? u"ACCOUNT_NAME" : UpperCase(property);
    record += u"<field name='" + field + u"' value='" + field + u"'/>";
    const std::string& value = values.try_emplace(property, ToUtf8(field)).first->second;
    expected += "." + ToUtf8(property) + " = \"" + value + "\"\n";
  }
  expected += ".User1 = \"Kestrelon\"\n.User2 = \"Perm\"\n.User3 = \"{1}\"\n" +
              StampingCalls("{1}") + ".save()\n";
  EXPECT_TRUE(Export(record + u"</record>"));
  EXPECT_EQ(CallsOn(desktop, kNew), expected);
  EXPECT_TRUE(context.state.current_contact.IsNothing());
}

TEST_F(ContactRecords, AMatchIsLeftAloneOrOverwrittenAsAsked) {
  const ScriptedContact none = {u"9", u"Bob", u"Lee", u"a@b", u"", u""};
  const ScriptedContact by_id = {u"{1}", u"Bob", u"Ray", u"", u"", u""};
  const ScriptedContact by_name = {std::nullopt, u"ANN", u"lee", u"", u"", u"A@B"};
  const ScriptedContact list = {std::nullopt, u"Ann", u"Lee", u"a@b", u"", u"", 69};
  enum { kCreated, kLeft, kWritten };
  const struct {
    std::vector<ScriptedContact> folder;
    bool overwrite;
    bool match_by_name;
    int outcome;
    int position = 0;
  } cases[] = {
      {{}, true, true, kCreated},
      {{none}, false, false, kCreated},
      {{none, list}, true, true, kCreated},
      {{none, by_id}, false, true, kLeft},
      {{none, by_id}, true, false, kWritten, 2},
      {{by_name}, true, false, kCreated},
      {{by_name}, false, true, kLeft},
      {{by_name}, true, true, kWritten, 1},
      {{by_name, by_id}, true, true, kWritten, 1},
      {{by_name, by_id}, true, false, kWritten, 2},
      {{by_id, by_name}, true, true, kWritten, 1},
  };
  for (const auto& example : cases) {
    desktop.log.clear();
    context.state.is_match_index_built = false;
    ScriptContacts(desktop, "F", example.folder);
    overwrite = example.overwrite;
    match_by_name = example.match_by_name;
    SCOPED_TRACE(&example - cases);
    EXPECT_TRUE(Export(kAnn));
    EXPECT_EQ(HasSaved(kNew), example.outcome == kCreated);
    for (size_t i = 1; i <= example.folder.size(); ++i) {
      EXPECT_EQ(HasSaved(testing::ItemPath("F", i)),
                example.outcome == kWritten && static_cast<int>(i) == example.position);
    }
  }
  EXPECT_TRUE(desktop.messages.empty());
}

TEST_F(ContactRecords, TheIndexIsBuiltOnceAndFoundOutWhenItIsOutOfStep) {
  overwrite = true;
  ScriptContacts(desktop, "F", {{u"1", u"", u"", u"", u"", u""}});
  EXPECT_TRUE(Export(kAnn));
  ScriptStamp(desktop, "F.Items(1)", std::nullopt);
  EXPECT_FALSE(Export(kAnn));
  ScriptStamp(desktop, "F.Items(1)", u"12");
  EXPECT_FALSE(Export(kAnn));
  EXPECT_THAT(desktop.messages,
              ElementsAre(PlainMessage(u"Contact temporary index appears to be out of step!"),
                          PlainMessage(u"Contact temporary index is out of step!")));
  EXPECT_EQ(std::count(desktop.log.begin(), desktop.log.end(), "F.Items.Count"), 1);
}

TEST_F(ContactRecords, TellsWhyARecordIsNotWritten) {
  const std::pair<const char16_t*, const char16_t*> cases[] = {
      {u"<record",
       u"Error exporting contact to Outlook: Object variable or With block variable not set"},
      {u"<record/>", u"Error exporting contact to Outlook: Invalid use of Null"},
      {u"<record id=''/>", u"Failed to get contact id from XML feed!"},
      {u"<record id='1'><field name='lastname' value='x'/></record>",
       u"FirstName and LastName appear to be blank, skipping this record."},
  };
  for (const auto& [record, message] : cases) {
    desktop.messages.clear();
    EXPECT_FALSE(Export(record));
    EXPECT_THAT(desktop.messages, ElementsAre(PlainMessage(message)));
  }
  EXPECT_THAT(desktop.log, Not(Contains("F.Items")));

  desktop.messages.clear();
  context.state.bound_contact_folder.Release();
  EXPECT_FALSE(Export(kAnn));
  bool flag = true;
  EXPECT_EQ(CheckOutLookContactExists(context, u"1", u"", u"", u"", flag), ContactMatch::kNone);
  const String text = u"SetContactFolder() has not been run. Run this before calling ";
  EXPECT_THAT(desktop.messages, ElementsAre(PlainMessage(text + u"AddUpdateContactXml()"),
                                            PlainMessage(text + u"CheckOutLookContactExists()")));
}

TEST_F(ContactRecords, AFieldWithoutValueIsToldAndReadAsEmpty) {
  EXPECT_TRUE(
      Export(u"<record id='1'><field name='LASTNAME' value='Lee'/><field name='HOBBY'/></record>"));
  EXPECT_THAT(desktop.log, Contains(kNew + ".Hobby = \"\""));
  EXPECT_THAT(desktop.messages, ElementsAre(PlainMessage(u"Error occured in GetXMLFieldValue(): "
                                                         u"Invalid use of Null")));
}

TEST_F(ContactRecords, TheCallersFlagsShowWhatBecameOfThem) {
  const String no_email = u"<record id='1'><field name='LASTNAME' value='Lee'/></record>";
  for (const auto& [record, by_name] : {std::pair(kAnn, true), std::pair(no_email, false)}) {
    std::vector<Value> values = {record, -1, u"True"};
    FindMember(u"AddUpdateContactXML")->invoke(context, values);
    EXPECT_TRUE(values[1].IsBoolean() && values[1].AsBoolean());
    EXPECT_TRUE(values[2].IsBoolean());
    EXPECT_EQ(values[2].AsBoolean(), by_name);
  }
}

}  // namespace
}  // namespace kestrelon
