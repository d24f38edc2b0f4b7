#include <tuple>

#include "Control/InterfaceTable.h"
#include "outlook/ContactFolder.h"
#include "tests/outlook/OutlookMembers.h"
#include "tests/outlook/ScriptedContacts.h"

namespace kestrelon {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using testing::StampingCalls;

const std::string kDefault = kNamespace + ".GetDefaultFolder(10)";
const std::string kNew = "F.Items.Add()";

class ContactFolder : public OutlookMembers {
 protected:
  ContactFolder() {
    desktop.Answer(kDefault, {desktop.NamedObject("D")});
    desktop.Answer("D.Items.count", {0});
  }
  void Bind(const char16_t* name) {
    String foldername = name;
    SetContactFolder(context, foldername);
  }
  void Script(const std::string& name, int32_t item_class, const char16_t* user2,
              const char16_t* user1) {
    desktop.Answer(name + ".Class", {item_class});
    desktop.Answer(name + ".User2", {Value(user2)});
    desktop.Answer(name + ".User1", {Value(user1)});
  }
  std::string On(const std::string& path) const { return CallsOn(desktop, path); }
};

TEST_F(ContactFolder, BindsTheLastSubfolderOfThatNameOrTheContacts) {
  desktop.Answer("D.Folders.count", {3});
  const char16_t* names[] = {u"Work", u"work", u"Work"};
  for (int i = 1; i <= 3; ++i) {
    const std::string folder = "D.Folders.item(" + std::to_string(i) + ")";
    desktop.Answer(folder + ".Name", {Value(names[i - 1])});
    desktop.Answer(folder + ".Items.count", {0});
  }
  for (const auto& [name, bound, position] : {std::tuple(u"Work", "D.Folders.item(3)", 3),
                                              {u"work", "D.Folders.item(2)", 2},
                                              {u"WORK", "D", 0},
                                              {u"Contacts", "D", 0}}) {
    desktop.log.clear();
    context.state.is_match_index_built = true;
    Bind(name);
    EXPECT_EQ(desktop.PathOf(context.state.bound_contact_folder), bound);
    EXPECT_EQ(context.state.found_subfolder_position, position);
    EXPECT_EQ(context.state.contact_folder_name, name);
    EXPECT_FALSE(context.state.is_match_index_built);
  }
  EXPECT_EQ(desktop.log, (Lines{"create Outlook.Application", kNamespace, kDefault, "D.Items",
                                "D.Items.count"}));
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
  EXPECT_EQ(On("Perm"), ".Class\n.User2\n");
  EXPECT_EQ(On("List"), ".Class\n");
}

TEST_F(ContactFolder, TheSweepDoesNotGetPastATemporaryContactOfSomeoneElse) {
  Script("Other", 40, u"Temp", u"");
  desktop.Answer("D.Items.count", {2});
  desktop.Answer("D.Items.item(1)", {desktop.NamedObject("Other")});
  desktop.cut_at = 500;
  EXPECT_THROW(Bind(u"Contacts"), testing::LoopCut);
  EXPECT_THAT(desktop.log, Not(Contains("D.Items.item(2)")));
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
  const std::string street = ".businessaddressstreet";
  EXPECT_EQ(On(kNew),
            ".title = \"\"\n.FirstName = \"\"\n.LastName = \"Lee\"\n.JobTitle = \"\"\n"
            ".Email1Address = \"a@b\"\n.BusinessTelephoneNumber = \"1 2\"\n"
            ".MobileTelephoneNumber = \"--\"\n.User1 = \"Kestrelon\"\n"
            ".CompanyName = \"-\"\n" +
                street + "\n" + street + " = \"\\r\\n - \"\n" + street + "\n" + street +
                " = \"\\r\\n - \\r\\n3 High St\"\n"
                ".businessaddresscity = \"-\"\n.businessaddressstate = \"-\"\n"
                ".businessaddresspostalcode = \"-\"\n.businessaddresscountry = \"-\"\n"
                ".User2 = \"Perm\"\n" +
                StampingCalls("7") + ".save()\n");
  EXPECT_EQ(values[1].ToText(), u"Lee");
  EXPECT_EQ(values[5].ToText(), u"");
  EXPECT_EQ(values[3].ToText(), u"-");
}

TEST_F(AddedContact, ATemporaryOneIsNotStamped) {
  for (const char16_t* type : {u"Temporary", u"temporary"}) {
    desktop.log.clear();
    Add({u"7", u"Lee", type, u"Co", u"", u"", u"", u"", u"", u"", u"1 High St", u"", u""});
    const bool is_temporary = StringView(type) == u"Temporary";
    EXPECT_THAT(On(kNew),
                EndsWith(is_temporary ? ".User2 = \"Temp\"\n.save()\n"
                                      : ".User2 = \"Perm\"\n" + StampingCalls("7") + ".save()\n"));
    EXPECT_THAT(On(kNew),
                HasSubstr(".businessaddressstreet = \"1 High St\"\n.businessaddresscity"));
  }
}

TEST_F(AddedContact, WithoutAFolderItFailsForThePage) {
  context.state.bound_contact_folder.Release();
  EXPECT_EQ(NumberOf([&] { Add({u"7", u"Lee", u"", u""}); }), kObjectVariableNotSet);
  HtmlDocument page;
  EXPECT_FALSE(AddContactAll(context, page));
  const String text = u"SetContactFolder() has not been run. Run this before calling AddContact";
  EXPECT_THAT(desktop.messages,
              ElementsAre(PlainMessage(text + u"()"), PlainMessage(text + u"All()")));
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
  std::string expected;
  for (const String& property : Split(FromUtf8(properties), u" ")) {
    const String id = property == u"CompanyName" ? u"AC_NAME" : UpperCase(property);
    desktop.Answer(Field(ToUtf8(id)), {Value(id)});
    expected += "." + ToUtf8(property) + " = \"" + ToUtf8(id) + "\"\n";
  }
  desktop.Answer(Field("ACC_ID"), {Value(u"7"), Value(u"8")});
  desktop.Answer(Field("DETAILS"), {Value(u"Notes")});
  EXPECT_TRUE(AddContactAll(context, page));
  EXPECT_EQ(On(kNew), expected + ".User1 = \"Kestrelon\"\n.User2 = \"Perm\"\n.User3 = \"7\"\n" +
                          StampingCalls("8") + ".body = \"Notes\"\n.save()\n");
}

TEST_F(AddedContact, LeavesOutWhatThePageLeavesEmpty) {
  HtmlDocument page(desktop.NamedObject("Page").ToObject().pointer());
  desktop.Answer(Field("HOMEADDRESSSTREET"), {Value(u"1")});
  desktop.Answer(Field("HOMEADDRESSSTREET3"), {Value(u"3")});
  desktop.Answer(kNew + ".HomeAddressStreet", {Value(u"1")});
  desktop.Answer(Field("SENSITIVITY"), {Value(u"private")});
  EXPECT_TRUE(AddContactAll(context, page));
  EXPECT_THAT(On(kNew), HasSubstr(".HomeAddressStreet = \"1\\r\\n3\"\n"));
  for (const char* property :
       {".Birthday", ".Anniversary", ".businessaddressstreet", ".Sensitiv"}) {
    EXPECT_THAT(On(kNew), Not(HasSubstr(property)));
  }
  for (const auto& [word, number] :
       {std::pair(u"Normal", "0"), {u"Personal", "1"}, {u"Private", "2"}, {u"Confidential", "3"}}) {
    desktop.Answer(Field("SENSITIVITY"), {Value(word)});
    EXPECT_TRUE(AddContactAll(context, page));
    EXPECT_THAT(On(kNew), HasSubstr(".Sensitivity = " + std::string(number) + "\n"));
  }
}

}  // namespace
}  // namespace kestrelon
