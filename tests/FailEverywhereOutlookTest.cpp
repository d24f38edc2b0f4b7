// Every Outlook member, with each of its automation calls failing in turn: the page gets a result
// that it knows, the user is told where that is due, and Outlook is let go of.

#include <gtest/gtest.h>

#include <algorithm>

#include "Control/KestrelonControl.h"
#include "tests/FailEverywhereOutlook.h"
#include "tests/support/Documents.h"
#include "tests/support/FailEachCall.h"

namespace kestrelon {
namespace testing {
namespace {

// Answers to calls, the names of what walks over collections come to, and names of objects.
struct Script {
  std::vector<std::pair<std::string, Value>> answers;
  std::vector<std::pair<std::string, std::vector<std::string>>> walks{};
  std::vector<std::pair<std::string, std::string>> objects{};
  bool reads_xml = false;  // in a real document
  // Every call that joins one of `paths` and one of `properties` gives `value`.
  void Give(const std::vector<std::string>& paths, const std::vector<std::string>& properties,
            const Value& value) {
    for (const std::string& path : paths) {
      for (const std::string& property : properties) answers.emplace_back(path + property, value);
    }
  }
};

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
  // What other failures give, each of it once at least; "…" stands for any rest.
  std::vector<StringView> failures;
  std::vector<ShownMessage> messages;  // one at least after such a failure, each of them once
  Script script;
  References references;
  int forgiven = 0;        // so many of its calls can fail and it still does all of its work
  bool may_raise = false;  // the failure may be the page's instead of a result
};

const std::string kNamespace = "Outlook.Application.GetNamespace(\"MAPI\")";
const std::string kContacts = kNamespace + ".GetDefaultFolder(10)";
const Value kNothing = Value(DispatchPointer());
const Value kX = u"x";

Script SelectTwo() {
  const std::string selection = "Outlook.Application.ActiveExplorer.selection";
  Script script{{{selection + ".count", 2}}};
  script.Give({selection + ".item(1)", selection + ".item(2)"},
              {".EntryID", ".Parent.StoreID", ".Subject", ".SenderName", ".To"}, kX);
  return script;
}

// The contacts of the user and a folder in them, each with a contact of the CRM's.
Script FillContacts() {
  const std::string subfolder = kContacts + ".Folders.item(1)";
  const std::string stamp = ".UserProperties.Find(\"KESTID\")";
  Script script;
  script.Give(
      {kContacts + ".Folders.count", kContacts + ".Items.count", subfolder + ".Items.count"}, {""},
      1);
  script.Give({kContacts, subfolder}, {".Items(1)" + stamp + ".Value"}, u"1");
  script.Give({kContacts, subfolder}, {".Items.item(1).Class"}, 69);
  script.Give({subfolder}, {".Name", ".Items.item(1).FullName"}, u"Work");
  script.Give({subfolder}, {".DefaultItemType"}, 2);
  script.Give({kContacts}, {".Items.item(1)" + stamp}, kNothing);
  script.Give({subfolder}, {".Items.item(1)" + stamp + ".Value"}, u"7");
  return script;
}

// Stands in the table for a page that has every field; each is empty.
const Value kEmptyPage = Value::Omitted();

std::vector<Value> Texts(const String& list) {
  const std::vector<String> texts = Split(list, u",");
  return {texts.begin(), texts.end()};
}

// A folder with two subfolders and two items that the CRM does not know, which answer "x" to
// everything but their kind.
Script FillFolder(int32_t folder_number, int32_t item_type, int32_t item_class) {
  const std::string folder =
      kNamespace + ".GetDefaultFolder(" + std::to_string(folder_number) + ")";
  const std::string sorted = "Msxml2.DOMDocument.selectNodes(\"SORTROOT/SORTITEM\")";
  Script script{{}, {{folder + ".Items", {"Row", "Row"}}, {sorted, {"Sorted", "Sorted"}}}};
  script.Give({folder + ".Folders.count", sorted + ".length"}, {""}, 2);
  const std::vector<std::string> subfolders = {folder + ".Folders.item(1)",
                                               folder + ".Folders.item(2)"};
  script.Give(subfolders, {".DefaultItemType"}, item_type);
  script.Give(subfolders, {".Items.count"}, 1);
  script.Give(subfolders, {".Name", ".EntryID"}, kX);
  script.Give({folder}, {".EntryID"}, kX);
  script.Give({"Sorted.selectSingleNode("}, {"\"Param1\").text", "\"Param2\").text"}, kX);
  script.Give({"Row"}, {".Class"}, item_class);
  script.Give({"Row"}, {".EntryID", ".LastName", ".FullName", ".Subject"}, kX);
  script.Give({"Row"}, {".DueDate", ".StartDate", ".DateCompleted"}, MakeDate({2026, 3, 9}));
  script.Give({"Row"}, {".complete", ".TeamTask"}, true);
  script.Give({"Row.UserProperties.Find("}, {"\"Kestrelon\")", "\"KESTID\")", "\"USTID\")"},
              kNothing);
  return script;
}

ShownMessage Told(const String& text, int32_t flags = 0, std::optional<String> title = {}) {
  return {text, flags, title};
}

OutlookCase Row(const char16_t* member, const std::vector<Value>& arguments,
                const char16_t* success, const std::vector<StringView>& failures,
                const std::vector<ShownMessage>& messages = {}, const Script& script = {},
                References references = References::kReleased) {
  return {member, arguments, success, failures, messages, script, references};
}

OutlookCase Forgiving(OutlookCase row, int forgiven, bool may_raise = false) {
  row.forgiven = forgiven;
  row.may_raise = may_raise;
  return row;
}

const std::vector<OutlookCase>& AllCases() {
  using enum References;
  const ShownMessage no_outlook = Told(u"Outlook does not appear to be installed");
  const auto failed_in = [&](const String& member) {
    return std::vector{no_outlook, Told(u"An error occurred running " + member, 64)};
  };
  const auto failed_at = [&](const String& head, std::initializer_list<const char16_t*> steps) {
    std::vector messages = {no_outlook};
    for (const String step : steps) messages.push_back(Told(head + u"\r\nInjected\r\n" + step));
    return messages;
  };
  const std::vector<ShownMessage> no_selection = {
      Told(u"Injected"),
      Told(u"Error encountered. Please select the emails in Outlook and switch directly to the "
           u"Kestrelon Emails screen to perform the Add function",
           64, u"Unable to add e-mail")};
  const Script contacts = FillFolder(10, 2, 40);
  const Script tasks = FillFolder(13, 3, 48);
  const std::vector<Value> reply = Texts(u"to,from,sent,to,subject,<html>");
  const std::string recipient = kNamespace + ".CreateRecipient(\"Ann\")";
  const std::string shared = kNamespace + ".GetSharedDefaultFolder(<" + recipient + ">, 9).Items";
  const std::string find = kNamespace + ".GetItemFromID(\"E\", \"S\").UserProperties.Find(\"";
  const std::string id = ".UserProperties.Find(\"KESTID\").Value";
  static const std::vector<OutlookCase> cases = {
      // Appointments and tasks.
      Forgiving(Row(u"NewAppointment", {u"1¬subject=s¬location=l¬guid=g", u"crm", u"v", false}, u"",
                    {u"7"}),
                2),
      Forgiving(
          Row(u"NewAppointment", {u"1", u"crm", u"v", false}, u"", {u"7"}, {},
              {{{"Direct.CreateItem(1)", 1}}, {}, {{"create Outlook.Application", "Direct"}}}),
          2, true),
      Row(u"AddAppointment", {u"A1"}, u"success", {u"An error occured whilst …"}, {},
          {{{"Outlook.Application.ActiveExplorer.selection.count", 1}}}, kReleasedAfterFailure),
      Row(u"OpenTask", {u"E"}, u"", {u"NoOutlook", u"This task does not belong to you", u"8"}),
      Row(u"OpenAppointment", {u"E"}, u"",
          {u"NoOutlook", u"An unknown error (1234) occurred…", u"9"}),
      Row(u"OpenAppointment", {u"Ann@E"}, u"", {u"NoOutlook", u"9"}, {},
          {{{recipient + ".Resolved", true}, {"Item.EntryID", u"E"}}, {{shared, {"Item"}}}}),
      // Mails.
      Row(u"GenerateEmail", {u"<p>", u"a@b", u"s", u"Quote", u"E-mail"}, u"", {u""},
          {Told(u"Unable to send this quote. Ensure Microsoft Outlook is available and configured "
                u"for "
                u"your use.",
                64, u"Unable to send quote")}),
      Row(u"SendEmail", {u"a@b"}, u"True", {u"False"}),
      Row(u"SendEmailFull", reply, u"True", {u"False"}),
      Row(u"SendEmailWithOriginal", reply, u"True", {u"False"}),
      Row(u"ForwardEmailWithOriginal", reply, u"True", {u"False"}),
      Row(u"CheckForFolder", {u"Clients"}, u"True", {u"False"}, {},
          {{}, {{kContacts + ".Folders", {}}}}),
      // Selected items.
      Row(u"GetOutlookSelection", {}, u"x,x,x,x", {u"No Outlook"}, no_selection, SelectTwo()),
      Row(u"GetOutlookSelectionString", {}, u"x\\x\\x\\x\\x\\\\\\x\\x\\x\\x\\x\\", {u"No Outlook"},
          no_selection, SelectTwo()),
      // Stamps.
      Row(u"SetImportID", {u"7", u"E", u"contact"}, u"",
          {u"An error occurred setting the item id for the Outlook item. Please contact your "
           u"system administrator"}),
      Forgiving(Row(u"SetItemAsKestrelon", {u"appointment", u"S", u"E", u"A1", u"7"}, u"True",
                    {u"False"}, {Told(u"Injected")},
                    {{{find + "Kestrelon\")", kNothing},
                      {find + "guid\")", kNothing},
                      {find + "ACID\")", kNothing}}}),
                1),
      Row(u"CheckIfSynchronised", {u"7", u"contact"}, u"Work in folder Work", {u"unknown"}, {},
          FillContacts()),
      // Items that the CRM does not know.
      Row(u"GetUnsyncedAppts", {}, u"x#~x#~x#~x#~", {u"", u"x#~x#~"},
          failed_in(u"GetUnsyncedAppts"), FillFolder(9, 1, 26)),
      Row(u"GetUnsyncedTasks", {}, u"x#~x#~x#~x#~", {u"", u"x#~x#~"},
          failed_in(u"GetUnsyncedTasks"), tasks),
      Row(u"GetUnsyncedContacts", {u""}, u"x#~x#~x#~x#~", {u"", u"x#~x#~"},
          failed_in(u"GetUnsyncedContacts"), contacts),
      // Lists of folders and items, and one item as a record.
      Row(u"GetContactFolderList", {u"import"}, u"Contacts#~#~x#~x#~x#~x#", {u"", u"x#~x#~"},
          {no_outlook, Told(u"Could not find 'Contacts' folder.")}, contacts),
      Row(u"GetTaskFolderList", {}, u"Tasks#~#~x#~x#~x#~x#", {u"", u"x#~x#~"},
          {no_outlook, Told(u"Could not find 'Tasks' folder.")}, tasks),
      Row(u"GetFolderContactItems", {u""}, u"x#~x#~x#~x#~", {u""},
          failed_in(u"GetFolderContactItems"), contacts),
      Row(u"GetFolderTaskItems", {u""}, u"x#~x#~x#~x#~", {u"", u"x#~x#~"},
          failed_in(u"GetFolderTaskItems"), tasks),
      Row(u"ImportContact", {u"", u"x"}, u"#~#~x#~#~#~#~#~#~#~#~#~#~#~#~#~#~#~#~#~#~#~#~#~",
          {u"", u"#~…"},
          failed_at(
              u"An error occurred running ImportContact.  Further Information:",
              {u"Getting Required Folder", u"Locating contact in folder",
               u"Retrieving basic details from contact", u"Retrieving and formatting address info",
               u"Final formatting of contact information"}),
          contacts),
      Row(u"ImportTask", {u"", u"x"},
          u"#~#~1#~2026-03-09 00:00:00.000#~2026-03-09 00:00:00.000#~#~#~#~2026-03-09 "
          u"00:00:00.000#~#~x#~1#~x#~x",
          {u"", u"#~…"},
          failed_at(u"An error occurred running ImportTask",
                    {u"Accessing chosen folder", u"accessing chosen task",
                     u"Retrieving task information"}),
          tasks),
      // Contacts.
      Row(u"SetContactFolder", {u"Work"}, u"", {u""},
          {no_outlook, Told(u"Could not find contacts folder")}, FillContacts(), kKept),
      Forgiving(Row(u"AddContact", Texts(u"1,Lee,,Co,a@b,,,,,,1,2,3,,,,"), u"", {}, {}, {}, kKept),
                0, true),
      Row(u"AddContactAll", {kEmptyPage}, u"True", {u"False"}, {}, {}, kKept),
      Row(u"AddUpdateContactXML",
          {u"<record id='1'><field name='LASTNAME' value='Lee'/></record>", true, true}, u"True",
          {u"False"},
          {Told(u"Error exporting contact to Outlook: Injected"),
           Told(u"Error occured in CheckOutLookContactExists(): Injected")},
          {{{"BoundFolder.Items.Count", 2},
            {"BoundFolder.Items(1).Class", 40},
            {"BoundFolder.Items(2).Class", 40},
            {"BoundFolder.Items(1)" + id, u"1"},
            {"BoundFolder.Items(2)" + id, u"1"}},
           {},
           {},
           true},
          kKept),
      Row(u"RemoveContact", {u"1", false},
          u"The contact was successfully unsynchronized from its associated Outlook Contact",
          {u"Kestrelon failed to unsynchronize the Outlook contact. Please contact your system "
           u"administrator"},
          {}, FillContacts()),
      Row(u"CreateContactAsvCard", {kEmptyPage}, u"True", {u"False"}),
  };
  return cases;
}

bool Matches(StringView pattern, StringView text) {
  return pattern.ends_with(u'…') ? text.starts_with(pattern.substr(0, pattern.size() - 1))
                                 : text == pattern;
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
    ScriptedDesktop page;  // its calls do not fail
    ControlContext context{desktop};
    context.state.bound_contact_folder = desktop.NamedObject("BoundFolder").ToObject();
    for (const auto& [line, value] : example.script.answers) desktop.Answer(line, {value});
    if (example.script.reads_xml) desktop.Answer("create Msxml2.DOMDocument", {EmptyXmlDocument()});
    for (const auto& [line, name] : example.script.objects) {
      desktop.Answer(line, {desktop.NamedObject(name)});
    }
    for (const auto& [line, names] : example.script.walks) {
      Value::Array objects;
      for (const std::string& name : names) objects.push_back(desktop.NamedObject(name));
      desktop.Answer(line + ".Each", {Value(std::move(objects))});
    }
    desktop.fail_at = n;
    std::vector<Value> values = example.arguments;
    std::ranges::replace_if(values, &Value::IsOmitted, page.NamedObject("Page"));
    Value result;
    const auto raised =
        IgnoreFailures([&] { result = FindMember(example.member)->invoke(context, values); });
    failed_ = n != 0 && static_cast<int>(desktop.log.size()) >= n;
    const std::string where = failed_ ? desktop.log[static_cast<size_t>(n) - 1] : "no failure";
    const String text = raised ? u"" : result.ToText();

    const auto pattern = std::ranges::find_if(
        example.failures, [&](StringView failure) { return Matches(failure, text); });
    const bool is_failure = failed_ && (raised || pattern != example.failures.end());
    EXPECT_TRUE(!raised || (failed_ && example.may_raise)) << where << ": " << raised->what();
    EXPECT_TRUE(is_failure || text == example.success) << where << ": " << ToUtf8(text);
    if (is_failure) {
      if (!raised) std::erase(unseen_failures_, *pattern);
      EXPECT_EQ(desktop.messages.empty(), raised || example.messages.empty()) << where;
      std::vector<ShownMessage> expected = example.messages;
      for (const ShownMessage& message : desktop.messages) {
        EXPECT_EQ(std::erase(expected, message), 1U) << where << ": " << ToUtf8(message.text);
        std::erase(unseen_messages_, message);
      }
    }
    forgiven_ += failed_ && !is_failure ? 1 : 0;
    const bool releases = example.references == References::kReleased ||
                          (example.references == References::kReleasedAfterFailure && is_failure);
    EXPECT_EQ(AllReleased(context.state), releases) << where;
    EXPECT_EQ(context.state.bound_contact_folder.IsNothing(), releases) << where;
  }
  bool failed_ = false;
  int forgiven_ = 0;
  std::vector<StringView> unseen_failures_ = GetParam().failures;
  std::vector<ShownMessage> unseen_messages_ = GetParam().messages;
};

TEST_P(FailEverywhereInOutlook, LeadsToAKnownResultAndLetsGoOfOutlook) {
  Run(0);
  int n = 1;
  for (Run(n); failed_; Run(++n)) ASSERT_LT(n, 5000) << "does not end";
  EXPECT_EQ(forgiven_, GetParam().forgiven);
  EXPECT_TRUE(unseen_failures_.empty()) << ToUtf8(String(unseen_failures_[0]));
  EXPECT_TRUE(unseen_messages_.empty()) << ToUtf8(unseen_messages_[0].text);
  EXPECT_GT(n, 3) << "the member hardly calls anything";
}

INSTANTIATE_TEST_SUITE_P(Members, FailEverywhereInOutlook, ::testing::ValuesIn(AllCases()),
                         [](const auto& info) {
                           return ToUtf8(info.param.member) + std::to_string(info.index);
                         });

bool EndsInDisplay(const std::string& line) { return line.ends_with(".display()"); }

// A mail of Word's text, whose conversion would take its time on a real desktop.
TEST(FailEverywhereInMail, EveryFailureIsToldOnceAndLeavesOutlookAsItIs) {
  const auto find_nothing = [](ScriptedDesktop& desktop) {
    desktop.Answer("Word.Application.Selection.Find.Found", {false});
  };
  for (const char16_t* mode : {u"HTML", u"attach"}) {
    const auto mail = [&](ControlContext& context, ScriptedDesktop& desktop) {
      const Object xml = XmlDocumentOf(kSmallLetterXml);
      std::vector<Value> values = {xml, u"a.dotx", u"a@b", mode, u"", u"", u"subject"};
      FindMember(u"CreateLetterXML")->invoke(context, values);
      if (desktop.failed_line.empty()) return;
      // Only the removal of the temporary file, after the mail is shown, fails silently.
      const auto failed = desktop.log.begin() + desktop.fail_at - 1;
      const bool shown = std::any_of(desktop.log.begin(), failed, EndsInDisplay);
      EXPECT_EQ(desktop.messages.size(), shown ? 0U : 1U) << *failed;
      // A tag whose search fails is told and passed over: the mail is shown and Outlook let go of.
      const bool ended = std::any_of(failed + 1, desktop.log.end(), EndsInDisplay) || shown;
      const bool started =
          std::count(desktop.log.begin(), failed, "create Outlook.Application") > 0;
      EXPECT_EQ(context.state.outlook_application.IsNothing(), ended || !started) << *failed;
    };
    EXPECT_GT(FailEachCall(find_nothing, mail), 30);
  }
}

}  // namespace
}  // namespace testing
}  // namespace kestrelon
