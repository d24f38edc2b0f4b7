#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Control/InterfaceTable.h"
#include "Control/OfficeConnection.h"
#include "desktop/xml/XmlDocuments.h"
#include "outlook/ContactFolder.h"
#include "tests/outlook/ScriptedContacts.h"
#include "tests/support/Failures.h"

namespace kestrelon {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using testing::PlainMessage;
using testing::ShownMessage;
using Lines = std::vector<std::string>;

const std::string kSession = "Outlook.Application.GetNamespace(\"MAPI\")";
const std::string kDefault = kSession + ".GetDefaultFolder(10)";
const std::string kNew = "F.Items.Add()";

class ContactFolder : public ::testing::Test {
 protected:
  ContactFolder() {
    desktop.Answer(kDefault, {desktop.NamedObject("D")});
    desktop.Answer("D.Items.count", {0});
  }
  void Bind(const char16_t* name) {
    String foldername = name;
    SetContactFolder(context, foldername);
  }
  String Bound() const {
    const Object& folder = context.state.bound_contact_folder;
    return folder ? folder.pointer()->TypeName() : u"";
  }
  // Items of the default folder, one after the other as they come to a position.
  void Script(const std::string& name, int32_t item_class, const char16_t* user2,
              const char16_t* user1) {
    desktop.Answer(name + ".Class", {item_class});
    desktop.Answer(name + ".User2", {Value(user2)});
    desktop.Answer(name + ".User1", {Value(user1)});
  }
  Lines About(const std::string& path) const { return LinesAbout(desktop, path); }
  testing::ScriptedDesktop desktop;
  ControlContext context{desktop};
};

TEST_F(ContactFolder, BindsTheLastSubfolderOfThatNameOrTheContacts) {
  desktop.Answer("D.Folders.count", {3});
  const char16_t* names[] = {u"Work", u"work", u"Work"};
  for (int i = 1; i <= 3; ++i) {
    const std::string folder = "D.Folders.item(" + std::to_string(i) + ")";
    desktop.Answer(folder + ".Name", {Value(names[i - 1])});
    desktop.Answer(folder + ".Items.count", {0});
  }
  const struct {
    const char16_t* name;
    const char16_t* bound;
    int32_t position;
  } cases[] = {{u"Work", u"D.Folders.item(3)", 3},
               {u"work", u"D.Folders.item(2)", 2},
               {u"WORK", u"D", 0},
               {u"contacts", u"D", 0},
               {u"Contacts", u"D", 0}};
  for (const auto& example : cases) {
    desktop.log.clear();
    context.state.is_match_index_built = true;
    Bind(example.name);
    EXPECT_EQ(Bound(), example.bound);
    EXPECT_EQ(context.state.found_subfolder_position, example.position);
    EXPECT_EQ(context.state.contact_folder_name, example.name);
    EXPECT_FALSE(context.state.is_match_index_built);
  }
  EXPECT_EQ(desktop.log,
            (Lines{"create Outlook.Application", kSession, kDefault, "D.Items", "D.Items.count"}));
  EXPECT_TRUE(desktop.messages.empty());
  CleanUpOutlook(context);
  EXPECT_EQ(Bound(), u"");
}

TEST_F(ContactFolder, AFailureIsToldAndKeepsTheBinding) {
  Bind(u"Contacts");
  desktop.Answer("D.Items.count", {1});
  const ShownMessage no_outlook = PlainMessage(u"Outlook does not appear to be installed");
  const ShownMessage no_folder = PlainMessage(u"Could not find contacts folder");
  for (const auto& [line, message] :
       {std::pair<std::string, ShownMessage>("create Outlook.Application", no_outlook),
        {kSession, no_outlook},
        {kDefault, no_folder},
        {"D.Folders.count", no_folder},
        {"D.Items.item(1)", no_folder}}) {
    desktop.messages.clear();
    desktop.StopFailing();
    desktop.Fail(line, AutomationError(kCannotCreateObject));
    Bind(line.starts_with("D.Folders") ? u"Work" : u"Contacts");
    EXPECT_THAT(desktop.messages, ElementsAre(message)) << line;
    EXPECT_EQ(Bound(), u"D") << line;
  }
}

TEST_F(ContactFolder, TheSweepDeletesTheCrmsTemporaryContacts) {
  Script("Temp", 40, u"Temp", u"Kestrelon");
  Script("Perm", 40, u"Perm", u"Kestrelon");
  Script("List", 69, u"Temp", u"Kestrelon");
  desktop.Answer("D.Items.count", {4, 3, 2});
  desktop.Answer("D.Items.item(1)", {desktop.NamedObject("Perm")});
  desktop.Answer("D.Items.item(2)", {desktop.NamedObject("Temp"), desktop.NamedObject("Temp"),
                                     desktop.NamedObject("List")});
  Bind(u"Contacts");
  EXPECT_EQ(std::count(desktop.log.begin(), desktop.log.end(), "Temp.Delete()"), 2);
  EXPECT_EQ(About("Perm"), (Lines{"Perm.Class", "Perm.User2"}));
  EXPECT_EQ(About("List"), (Lines{"List.Class"}));
}

TEST_F(ContactFolder, TheSweepDoesNotGetPastATemporaryContactOfSomeoneElse) {
  Script("Other", 40, u"Temp", u"");
  desktop.Answer("D.Items.count", {2});
  desktop.Answer("D.Items.item(1)", {desktop.NamedObject("Other")});
  desktop.cut_at = 500;
  EXPECT_THROW(Bind(u"Contacts"), testing::LoopCut);
  EXPECT_THAT(desktop.log, Not(Contains("D.Items.item(2)")));
  EXPECT_THAT(desktop.log, Not(Contains("Other.Delete()")));
}

class AddedContact : public ContactFolder {
 protected:
  AddedContact() { context.state.bound_contact_folder = desktop.NamedObject("F").ToObject(); }
  // Calls AddContact with these values from the first parameter on.
  std::vector<Value> Add(std::vector<Value> values) {
    const Member& member = *FindMember(u"AddContact");
    values.resize(member.parameters.size(), Value(Value::Omitted{}));
    member.invoke(context, values);
    return values;
  }
};

TEST_F(AddedContact, TrimsAndEmptiesWhatThePageShowsAsBlank) {
  desktop.Answer(kNew + ".businessaddressstreet", {Value(u""), Value(u"\r\n - ")});
  const auto values = Add({u"7", u" Lee ", u"Permanent", u"-", u" a@b", u" - ", u"-", u"", u"1 2",
                           u"--", u"-", u" - ", u"3 High St", u"-", u"-", u"-", u"-"});
  const std::string properties = kNew + ".UserProperties";
  EXPECT_EQ(About(kNew), (Lines{kNew + ".title = \"\"",
                                kNew + ".FirstName = \"\"",
                                kNew + ".LastName = \"Lee\"",
                                kNew + ".JobTitle = \"\"",
                                kNew + ".Email1Address = \"a@b\"",
                                kNew + ".BusinessTelephoneNumber = \"1 2\"",
                                kNew + ".MobileTelephoneNumber = \"--\"",
                                kNew + ".User1 = \"Kestrelon\"",
                                kNew + ".CompanyName = \"-\"",
                                kNew + ".businessaddressstreet",
                                kNew + ".businessaddressstreet = \"\\r\\n - \"",
                                kNew + ".businessaddressstreet",
                                kNew + ".businessaddressstreet = \"\\r\\n - \\r\\n3 High St\"",
                                kNew + ".businessaddresscity = \"-\"",
                                kNew + ".businessaddressstate = \"-\"",
                                kNew + ".businessaddresspostalcode = \"-\"",
                                kNew + ".businessaddresscountry = \"-\"",
                                kNew + ".User2 = \"Perm\"",
                                properties,
                                properties + ".Add(\"KESTID\", 1)",
                                properties + ".Add(\"KESTID\", 1).Value = \"7\"",
                                properties,
                                properties + ".Add(\"Kestrelon\", 1)",
                                properties + ".Add(\"Kestrelon\", 1).Value = \"true\"",
                                kNew + ".save()"}));
  EXPECT_EQ(values[1].ToText(), u"Lee");
  EXPECT_EQ(values[5].ToText(), u"");
  EXPECT_EQ(values[3].ToText(), u"-");
}

TEST_F(AddedContact, ATemporaryOneIsNotStamped) {
  for (const char16_t* type : {u"Temporary", u"temporary"}) {
    desktop.log.clear();
    Add({u"7", u"Lee", type, u"Co", u"", u"", u"", u"", u"", u"", u"1 High St", u"", u"York"});
    const bool is_temporary = StringView(type) == u"Temporary";
    EXPECT_EQ(!is_temporary, !About(kNew + ".UserProperties").empty());
    EXPECT_THAT(desktop.log,
                Contains(kNew + (is_temporary ? ".User2 = \"Temp\"" : ".User2 = \"Perm\"")));
    EXPECT_EQ(desktop.log.back(), kNew + ".save()");
    EXPECT_THAT(desktop.log, Contains(kNew + ".businessaddressstreet = \"1 High St\""));
  }
}

TEST_F(AddedContact, WithoutAFolderItFailsForThePage) {
  context.state.bound_contact_folder.Release();
  EXPECT_EQ(NumberOf([&] { Add({u"7", u"Lee", u"", u""}); }), kObjectVariableNotSet);
  HtmlDocument page;
  EXPECT_FALSE(AddContactAll(context, page));
  EXPECT_THAT(
      desktop.messages,
      ElementsAre(PlainMessage(u"SetContactFolder() has not been run. Run this before calling "
                               u"AddContact()"),
                  PlainMessage(u"SetContactFolder() has not been run. Run this before calling "
                               u"AddContactAll()")));
}

std::string Field(const std::string& id) { return "Page.getElementById(\"" + id + "\").Value"; }

TEST_F(AddedContact, TakesThePagesFieldsOneByOne) {
  const std::string properties =
      "title FirstName LastName JobTitle Department CompanyName businessaddressstreet "
      "businessaddresscity businessaddressstate businessaddresspostalcode businessaddresscountry "
      "Email1Address Email2Address Email3Address BusinessTelephoneNumber BusinessFaxNumber "
      "MobileTelephoneNumber WebPage ManagerName ReferredBy AssistantName "
      "AssistantTelephoneNumber HomeAddressStreet HomeAddressCity HomeAddressState "
      "HomeAddressPostalCode HomeAddressCountry Suffix HomeTelephoneNumber HomeFaxNumber "
      "PersonalHomePage Birthday Hobby NickName Spouse MiddleName Anniversary";
  HtmlDocument page(desktop.NamedObject("Page").ToObject().pointer());
  Lines expected;
  for (const String& property : Split(FromUtf8(properties), u" ")) {
    const String id = property == u"CompanyName" ? u"AC_NAME" : UpperCase(property);
    desktop.Answer(Field(ToUtf8(id)), {Value(id)});
    expected.push_back(kNew + "." + ToUtf8(property) + " = \"" + ToUtf8(id) + "\"");
  }
  desktop.Answer(Field("ACC_ID"), {Value(u"7"), Value(u"8")});
  desktop.Answer(Field("DETAILS"), {Value(u"Notes")});
  const std::string user = kNew + ".UserProperties";
  for (const std::string& line :
       {kNew + ".User1 = \"Kestrelon\"", kNew + ".User2 = \"Perm\"", kNew + ".User3 = \"7\"", user,
        user + ".Add(\"KESTID\", 1)", user + ".Add(\"KESTID\", 1).Value = \"8\"", user,
        user + ".Add(\"Kestrelon\", 1)", user + ".Add(\"Kestrelon\", 1).Value = \"true\"",
        kNew + ".body = \"Notes\"", kNew + ".save()"}) {
    expected.push_back(line);
  }
  EXPECT_TRUE(AddContactAll(context, page));
  EXPECT_EQ(About(kNew), expected);
}

TEST_F(AddedContact, LeavesOutEmptyLinesAndDates) {
  HtmlDocument page(desktop.NamedObject("Page").ToObject().pointer());
  desktop.Answer(Field("HOMEADDRESSSTREET"), {Value(u"1")});
  desktop.Answer(Field("HOMEADDRESSSTREET3"), {Value(u"3")});
  desktop.Answer(kNew + ".HomeAddressStreet", {Value(u"1")});
  EXPECT_TRUE(AddContactAll(context, page));
  EXPECT_THAT(desktop.log, Contains(kNew + ".HomeAddressStreet = \"1\\r\\n3\""));
  for (const char* property : {"Birthday", "Anniversary", "businessaddressstreet"}) {
    EXPECT_THAT(desktop.log, Not(Contains(HasSubstr(kNew + "." + property))));
  }
}

TEST_F(AddedContact, TheSensitivityIsAWordOfOutlooks) {
  HtmlDocument page(desktop.NamedObject("Page").ToObject().pointer());
  const struct {
    const char16_t* word;
    const char* number;
  } cases[] = {{u"Normal", "0"},       {u"Personal", "1"}, {u"Private", "2"},
               {u"Confidential", "3"}, {u"private", ""},   {u"", ""}};
  for (const auto& example : cases) {
    desktop.log.clear();
    desktop.Answer(Field("SENSITIVITY"), {Value(example.word)});
    EXPECT_TRUE(AddContactAll(context, page));
    const Lines written = About(kNew);
    const std::string line = kNew + ".Sensitivity = " + example.number;
    EXPECT_EQ(std::count(written.begin(), written.end(), line), *example.number == '\0' ? 0 : 1);
  }
}

TEST_F(AddedContact, AMissingElementEndsItUnsaved) {
  HtmlDocument page(desktop.NamedObject("Page").ToObject().pointer());
  desktop.Answer("Page.getElementById(\"SUFFIX\")", {Value(Object())});
  EXPECT_FALSE(AddContactAll(context, page));
  EXPECT_THAT(desktop.log, Not(Contains(kNew + ".save()")));
  EXPECT_TRUE(desktop.messages.empty());
}

}  // namespace
}  // namespace kestrelon
