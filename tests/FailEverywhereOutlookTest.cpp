// Every Outlook member, with each of its automation calls failing in turn: the page gets a result
// that it knows, the user is told where that is due, and Outlook is let go of.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>

#include "Control/KestrelonControl.h"
#include "desktop/xml/XmlDocuments.h"
#include "tests/FailEverywhereOutlook.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon {
namespace testing {
namespace {

using Preparation = std::function<void(ScriptedDesktop& desktop, ObjectState& state)>;

// What becomes of the Outlook references in the object state, the bound contact folder included.
enum class References {
  kReleased,              // whatever happens
  kReleasedAfterFailure,  // and kept by a call that did all of its work
  kKept,                  // the bound contact folder at least
};

struct OutlookCase {
  const char16_t* member;
  std::vector<Value> arguments;
  const char16_t* success;  // what a call gives that did all of its work or got over a failure
  std::vector<StringView> failures;  // what any other failure gives; "…" stands for any rest
  // So many message boxes at most after such a failure; none for 0, and one at least otherwise.
  size_t most_messages;
  Preparation prepare;  // answers of the desktop, and what earlier members left behind
  References references;
  int forgiven = 0;        // so many of its calls can fail and it still does all of its work
  bool may_raise = false;  // the failure may be the page's instead of a result
};

const std::string kNamespace = "Outlook.Application.GetNamespace(\"MAPI\")";
const std::string kSelection = "Outlook.Application.ActiveExplorer.selection";
const Value kNothing = Value(DispatchPointer());

void AnswerX(ScriptedDesktop& desktop, const std::string& path,
             const std::vector<std::string>& properties) {
  for (const std::string& property : properties) {
    desktop.Answer(path + property, {Value(u"x")});
  }
}

void SelectItems(ScriptedDesktop& desktop, int32_t count) {
  desktop.Answer(kSelection + ".count", {count});
  for (int32_t i = 1; i <= count; ++i) {
    const std::string item = kSelection + ".item(" + std::to_string(i) + ")";
    AnswerX(desktop, item, {".EntryID", ".Parent.StoreID", ".Subject", ".SenderName", ".To"});
  }
}

void SelectOne(ScriptedDesktop& desktop, ObjectState&) { SelectItems(desktop, 1); }
void SelectTwo(ScriptedDesktop& desktop, ObjectState&) { SelectItems(desktop, 2); }

// What a member that works on the bound folder finds there.
void FillBoundFolder(ScriptedDesktop& desktop, ObjectState&) {
  desktop.Answer("create Msxml2.DOMDocument", {desktop::CreateXmlDocument()});
  desktop.Answer("BoundFolder.Items.Count", {2});
  for (const char* item : {"BoundFolder.Items(1)", "BoundFolder.Items(2)"}) {
    desktop.Answer(std::string(item) + ".Class", {40});
    desktop.Answer(std::string(item) + ".UserProperties.Find(\"KESTID\").Value", {Value(u"1")});
  }
}

// The contacts of the user and a folder in them, each with a contact of the CRM's.
void FillContacts(ScriptedDesktop& desktop, ObjectState&) {
  const std::string contacts = "Outlook.Application.GetNamespace(\"MAPI\").GetDefaultFolder(10)";
  const std::string subfolder = contacts + ".Folders.item(1)";
  desktop.Answer(contacts + ".Folders.count", {1});
  desktop.Answer(subfolder + ".Name", {Value(u"Work")});
  desktop.Answer(subfolder + ".DefaultItemType", {2});
  for (const std::string& folder : {contacts, subfolder}) {
    desktop.Answer(folder + ".Items.count", {1});
    desktop.Answer(folder + ".Items(1).UserProperties.Find(\"KESTID\").Value", {Value(u"1")});
    desktop.Answer(folder + ".Items.item(1).Class", {69});
  }
}

// A page that has every field; each is empty.
Value EmptyPage() {
  static ScriptedDesktop desktop;
  desktop.cut_at = std::numeric_limits<int>::max();
  return desktop.NamedObject("Page");
}

void ReachOutlookByLoopback(ScriptedDesktop& desktop, ObjectState&) {
  desktop.Answer("create Outlook.Application", {desktop.NamedObject("Direct")});
  desktop.Fail("Direct.CreateItem", AutomationError(462));
}

void FillSharedCalendar(ScriptedDesktop& desktop, ObjectState&) {
  const std::string recipient = kNamespace + ".CreateRecipient(\"Ann\")";
  desktop.Answer(recipient + ".Resolved", {true});
  desktop.Answer(kNamespace + ".GetSharedDefaultFolder(<" + recipient + ">, 9).Items.Each",
                 {Value(Value::Array{desktop.NamedObject("Item")})});
  desktop.Answer("Item.EntryID", {Value(u"E")});
}

void ListNoFolders(ScriptedDesktop& desktop, ObjectState&) {
  desktop.Answer(kNamespace + ".GetDefaultFolder(10).Folders.Each", {Value(Value::Array{})});
}

void LeaveUnstamped(ScriptedDesktop& desktop, ObjectState&) {
  for (const char* name : {"Kestrelon", "guid", "ACID"}) {
    desktop.Answer(
        kNamespace + ".GetItemFromID(\"E\", \"S\").UserProperties.Find(\"" + name + "\")",
        {kNothing});
  }
}

void StampOneInSubfolder(ScriptedDesktop& desktop, ObjectState&) {
  const std::string contacts = kNamespace + ".GetDefaultFolder(10)";
  const std::string folder = contacts + ".Folders.item(1)";
  desktop.Answer(contacts + ".Items.count", {1});
  desktop.Answer(contacts + ".Items.item(1).UserProperties.Find(\"KESTID\")", {kNothing});
  desktop.Answer(contacts + ".Folders.count", {1});
  desktop.Answer(folder + ".DefaultItemType", {2});
  desktop.Answer(folder + ".Name", {Value(u"Clients")});
  desktop.Answer(folder + ".Items.count", {1});
  const std::string item = folder + ".Items.item(1)";
  desktop.Answer(item + ".UserProperties.Find(\"KESTID\").Value", {Value(u"7")});
  desktop.Answer(item + ".FullName", {Value(u"Ann")});
}

// One item, which the CRM does not know.
auto FillFolder(int32_t folder, int32_t item_class) {
  return [=](ScriptedDesktop& desktop, ObjectState&) {
    desktop.Answer(kNamespace + ".GetDefaultFolder(" + std::to_string(folder) + ").Items.Each",
                   {Value(Value::Array{desktop.NamedObject("Item")})});
    desktop.Answer("Item.Class", {item_class});
    for (const char* name : {"Kestrelon", "KESTID", "USTID"}) {
      desktop.Answer("Item.UserProperties.Find(\"" + std::string(name) + "\")", {kNothing});
    }
    AnswerX(desktop, "Item.", {"FullName", "Subject", "EntryID"});
  };
}

std::vector<Value> Texts(const String& list) {
  const std::vector<String> texts = Split(list, u",");
  return {texts.begin(), texts.end()};
}

const std::vector<Value> kReply = Texts(u"to,from,sent,to,subject,<html>");

// A folder with one subfolder and one item, which answer "x" to everything but their kind.
auto FillForLists(int32_t folder_number, int32_t item_type, int32_t item_class) {
  return [=](ScriptedDesktop& desktop, ObjectState&) {
    const std::string folder =
        kNamespace + ".GetDefaultFolder(" + std::to_string(folder_number) + ")";
    const std::string subfolder = folder + ".Folders.item(1)";
    desktop.Answer(folder + ".EntryID", {Value(u"x")});
    desktop.Answer(folder + ".Folders.count", {1});
    desktop.Answer(subfolder + ".DefaultItemType", {item_type});
    desktop.Answer(subfolder + ".Items.count", {1});
    desktop.Answer(folder + ".Items.Each", {Value(Value::Array{desktop.NamedObject("Row")})});
    desktop.Answer("Row.Class", {item_class});
    for (const char* property : {"DueDate", "StartDate", "DateCompleted"}) {
      desktop.Answer("Row." + std::string(property), {MakeDate({2026, 3, 9})});
    }
    for (const char* property : {"complete", "TeamTask"}) {
      desktop.Answer("Row." + std::string(property), {true});
    }
    AnswerX(desktop, subfolder + ".", {"Name", "EntryID"});
    AnswerX(desktop, "Row.", {"EntryID", "LastName", "FullName", "Subject"});
    const std::string rows = "Msxml2.DOMDocument.selectNodes(\"SORTROOT/SORTITEM\")";
    desktop.Answer(rows + ".length", {1});
    desktop.Answer(rows + ".Each", {Value(Value::Array{desktop.NamedObject("Sorted")})});
    AnswerX(desktop, "Sorted.selectSingleNode(", {"\"Param1\").text", "\"Param2\").text"});
  };
}

OutlookCase Row(const char16_t* member, std::vector<Value> arguments, const char16_t* success,
                std::vector<StringView> failures, size_t most_messages = 0,
                Preparation prepare = nullptr, References references = References::kReleased) {
  return {member,        std::move(arguments), success,   std::move(failures),
          most_messages, std::move(prepare),   references};
}

OutlookCase Forgiving(OutlookCase row, int forgiven, bool may_raise = false) {
  row.forgiven = forgiven;
  row.may_raise = may_raise;
  return row;
}

const std::vector<OutlookCase>& AllCases() {
  using enum References;
  const auto stamping_failed = u"An error occurred setting the item id …";
  const auto lee = u"<record id='1'><field name='LASTNAME' value='Lee'/></record>";
  static const std::vector<OutlookCase> cases = {
      // Appointments and tasks.
      Forgiving(Row(u"NewAppointment", {u"1¬subject=s¬location=l¬guid=g", u"crm", u"v", false}, u"",
                    {u"7"}),
                2),
      Forgiving(Row(u"NewAppointment", {u"1", u"crm", u"v", false}, u"", {u"7"}, 0,
                    ReachOutlookByLoopback),
                2, true),
      Row(u"AddAppointment", {u"A1"}, u"success", {u"An error occured whilst …"}, 0, SelectOne,
          kReleasedAfterFailure),
      Row(u"OpenTask", {u"E"}, u"", {u"NoOutlook", u"This task does not belong to you", u"8"}),
      Row(u"OpenAppointment", {u"E"}, u"",
          {u"NoOutlook", u"An unknown error (1234) occurred…", u"9"}),
      Row(u"OpenAppointment", {u"Ann@E"}, u"", {u"NoOutlook", u"9"}, 0, FillSharedCalendar),
      // Mails.
      Row(u"GenerateEmail", {u"<p>", u"a@b", u"s", u"Quote", u"E-mail"}, u"", {u""}, 1),
      Row(u"SendEmail", {u"a@b"}, u"True", {u"False"}),
      Row(u"SendEmailFull", kReply, u"True", {u"False"}),
      Row(u"SendEmailWithOriginal", kReply, u"True", {u"False"}),
      Row(u"ForwardEmailWithOriginal", kReply, u"True", {u"False"}),
      Row(u"CheckForFolder", {u"Clients"}, u"True", {u"False"}, 0, ListNoFolders),
      // Selected items.
      Row(u"GetOutlookSelection", {}, u"x,x,x,x", {u"No Outlook"}, 2, SelectTwo),
      Row(u"GetOutlookSelectionString", {}, u"x\\x\\x\\x\\x\\\\\\x\\x\\x\\x\\x\\", {u"No Outlook"},
          2, SelectTwo),
      // Stamps.
      Row(u"SetImportID", {u"7", u"E", u"contact"}, u"", {stamping_failed}),
      Forgiving(Row(u"SetItemAsKestrelon", {u"appointment", u"S", u"E", u"A1", u"7"}, u"True",
                    {u"False"}, 1, LeaveUnstamped),
                1),
      Row(u"CheckIfSynchronised", {u"7", u"contact"}, u"Ann in folder Clients", {u"unknown"}, 0,
          StampOneInSubfolder),
      // Items that the CRM does not know.
      Row(u"GetUnsyncedAppts", {}, u"x#~x#~", {u""}, 1, FillFolder(9, 26)),
      Row(u"GetUnsyncedTasks", {}, u"x#~x#~", {u""}, 1, FillFolder(13, 48)),
      Row(u"GetUnsyncedContacts", {u""}, u"x#~x#~", {u""}, 1, FillFolder(10, 40)),
      // Lists of folders and items, and one item as a record.
      Row(u"GetContactFolderList", {u"import"}, u"Contacts#~#~x#~x#", {u""}, 1,
          FillForLists(10, 2, 40)),
      Row(u"GetTaskFolderList", {}, u"Tasks#~#~x#~x#", {u""}, 1, FillForLists(13, 3, 48)),
      Row(u"GetFolderContactItems", {u""}, u"x#~x#~", {u""}, 1, FillForLists(10, 2, 40)),
      Row(u"GetFolderTaskItems", {u""}, u"x#~x#~", {u""}, 1, FillForLists(13, 3, 48)),
      Row(u"ImportContact", {u"", u"x"}, u"#~#~x#~#~#~#~#~#~#~#~#~#~#~#~#~#~#~#~#~#~#~#~#~",
          {u"", u"#~…"}, 1, FillForLists(10, 2, 40)),
      Row(u"ImportTask", {u"", u"x"},
          u"#~#~1#~2026-03-09 00:00:00.000#~2026-03-09 00:00:00.000#~#~#~#~2026-03-09 "
          u"00:00:00.000#~#~x#~1#~x#~x",
          {u"", u"#~…"}, 1, FillForLists(13, 3, 48)),
      // Contacts.
      Row(u"SetContactFolder", {u"Work"}, u"", {u""}, 1, FillContacts, kKept),
      Forgiving(
          Row(u"AddContact", Texts(u"1,Lee,,Co,a@b,,,,,,1,2,3,,,,"), u"", {}, 0, nullptr, kKept), 0,
          true),
      Row(u"AddContactAll", {EmptyPage()}, u"True", {u"False"}, 0, nullptr, kKept),
      Row(u"AddUpdateContactXML", {lee, true, true}, u"True", {u"False"}, 1, FillBoundFolder,
          kKept),
      Row(u"RemoveContact", {u"1", false},
          u"The contact was successfully unsynchronized from its associated Outlook Contact",
          {u"Kestrelon failed to unsynchronize the Outlook contact. Please contact your system "
           u"administrator"},
          0, FillContacts),
      Row(u"CreateContactAsvCard", {EmptyPage()}, u"True", {u"False"}),
  };
  return cases;
}

bool IsAmong(const std::vector<StringView>& patterns, StringView text) {
  return std::any_of(patterns.begin(), patterns.end(), [&](StringView pattern) {
    return pattern.ends_with(u'…') ? text.starts_with(pattern.substr(0, pattern.size() - 1))
                                   : text == pattern;
  });
}

bool AllReleased(const ObjectState& state) {
  const Object* const references[] = {
      &state.outlook_application, &state.mapi_namespace,   &state.current_appointment,
      &state.current_task,        &state.current_mail,     &state.current_contact,
      &state.second_contact,      &state.current_folder,   &state.bound_contact_folder,
      &state.user_properties,     &state.first_spare_item, &state.second_spare_item};
  return std::ranges::all_of(references, &Object::IsNothing);
}

}  // namespace

std::set<StringView> OutlookMembers() {
  std::set<StringView> members;
  for (const OutlookCase& example : AllCases()) members.insert(example.member);
  return members;
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

    const bool is_failure = failed_ && (raised || IsAmong(example.failures, text));
    EXPECT_TRUE(!raised || (failed_ && example.may_raise)) << where << ": " << raised->what();
    EXPECT_TRUE(is_failure || text == example.success) << where << ": " << ToUtf8(text);
    if (is_failure) {
      EXPECT_LE(desktop.messages.size(), example.most_messages) << where;
      EXPECT_EQ(desktop.messages.empty(), raised || example.most_messages == 0) << where;
    }
    forgiven_ += failed_ && !is_failure ? 1 : 0;
    const bool releases = example.references == References::kReleased ||
                          (example.references == References::kReleasedAfterFailure && is_failure);
    EXPECT_EQ(AllReleased(context.state), releases) << where;
    EXPECT_EQ(context.state.bound_contact_folder.IsNothing(), releases) << where;
  }
  bool failed_ = false;
  int forgiven_ = 0;
};

TEST_P(FailEverywhereInOutlook, LeadsToAKnownResultAndLetsGoOfOutlook) {
  Run(0);
  int n = 1;
  for (Run(n); failed_; Run(++n)) ASSERT_LT(n, 5000) << "does not end";
  EXPECT_EQ(forgiven_, GetParam().forgiven);
  EXPECT_GT(n, 3) << "the member hardly calls anything";
}

INSTANTIATE_TEST_SUITE_P(Members, FailEverywhereInOutlook, ::testing::ValuesIn(AllCases()),
                         [](const auto& info) {
                           return ToUtf8(info.param.member) + std::to_string(info.index);
                         });

}  // namespace
}  // namespace testing
}  // namespace kestrelon
