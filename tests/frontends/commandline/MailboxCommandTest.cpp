// `kestrelon mailbox` on the scripted desktop: what it asks of Outlook, and what it refuses to.

#include <gmock/gmock.h>

#include <sstream>

#include "frontends/commandline/MailboxCommand.h"
#include "frontends/commandline/TerminalText.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon::commandline {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using testing::ScriptedDesktop;

const AutomationError kNotFound(static_cast<int32_t>(0x8004010F));
constexpr const char* kNameSpace = "Outlook.Application.GetNamespace(\"MAPI\")";

class MailboxCommandTest : public ::testing::Test {
 protected:
  MailboxCommandTest() {
    AddItem("A1", 40, "FullName", u"Ann \x1b[2JLee\u202E");
    AddItem("B2", 69, "DLName", u"Board\r\nand staff");
    desktop_.Fail(Item("BAD"), kNotFound);
  }
  static std::string Item(const std::string& id) {
    return std::string(kNameSpace) + ".GetItemFromID(\"" + id + "\")";
  }
  void AddItem(const std::string& id, int32_t item_class, const std::string& name_property,
               const String& name) {
    desktop_.Answer(Item(id) + ".EntryID", {FromUtf8(id)});
    desktop_.Answer(Item(id) + ".Class", {item_class});
    desktop_.Answer(Item(id) + "." + name_property, {name});
  }
  // A folder as an element of `folders`.
  Value AddFolder(const std::string& path, const String& name, Value::Array folders) {
    const Value folder = desktop_.NamedObject(path);
    desktop_.Answer(path + ".Name", {name});
    desktop_.Answer(path + ".DefaultItemType", {2});
    desktop_.Answer(path + ".EntryID", {FromUtf8("ID-" + path)});
    desktop_.Answer(path + ".Items.Count", {3});
    desktop_.Answer(path + ".Items.Each", {Value::Array{}});
    desktop_.Answer(path + ".Folders.Each", {std::move(folders)});
    return folder;
  }
  MailboxCommand Command(OutputForm form = OutputForm::kText) {
    return MailboxCommand(desktop_, form, out_, errors_);
  }
  std::vector<std::string> CallsOnExplorer() {
    std::vector<std::string> calls;
    const std::string prefix = "Outlook.Application.ActiveExplorer().";
    for (const std::string& line : desktop_.log) {
      if (line.starts_with(prefix)) calls.push_back(line.substr(prefix.size()));
    }
    return calls;
  }

  ScriptedDesktop desktop_;
  std::ostringstream out_;
  std::ostringstream errors_;
};

TEST_F(MailboxCommandTest, SelectsEachItemOnceInTheirOrder) {
  EXPECT_EQ(Command().SelectItems({"b2", "A1", "B2"}), 0);
  EXPECT_THAT(CallsOnExplorer(),
              ElementsAre("ClearSelection()", "AddToSelection(<" + Item("B2") + ">)",
                          "AddToSelection(<" + Item("A1") + ">)"));
  EXPECT_EQ(out_.str(),
            "2 items selected\n"
            "list     Board  and staff  B2\n"
            "contact  Ann [2JLee        A1\n");
}

TEST_F(MailboxCommandTest, ChangesNoSelectionForAWrongId) {
  EXPECT_THROW(Command().SelectItems({"A1", "BAD"}), MailboxFailure);
  EXPECT_THAT(CallsOnExplorer(), ElementsAre());
  EXPECT_EQ(Command().SelectItems({}), 0);
  EXPECT_THAT(CallsOnExplorer(), ElementsAre("ClearSelection()"));
}

TEST_F(MailboxCommandTest, TellsWhatTheSelectionIsWorthWhileOutlookIsClosed) {
  desktop_.Fail("attach", AutomationError(kCannotCreateObject));
  Command().SelectItems({"A1"});
  EXPECT_THAT(out_.str(), HasSubstr("kestrelon mailbox open"));
  Command().Close();
  EXPECT_THAT(CallsOnExplorer(), Not(::testing::Contains("Close()")));
  Command().Open();
  EXPECT_EQ(CallsOnExplorer().back(), "Display()");
}

TEST_F(MailboxCommandTest, FindsAFolderByPathNameOrId) {
  const Value team = AddFolder("Team", u"Team", {});
  const Value clients = AddFolder("Clients", u"Clients", {AddFolder("Old", u"Old/Gone", {})});
  const Value vips = AddFolder("Vips", u"VIPs", {AddFolder("Team2", u"Team", {})});
  desktop_.Answer(std::string(kNameSpace) + ".Folders.Each",
                  {Value::Array{AddFolder("Contacts", u"Contacts", {clients, vips, team})}});
  const std::string by_id = std::string(kNameSpace) + ".GetFolderFromID(\"";
  desktop_.Fail(by_id, kNotFound);
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"contacts", "Contacts"},
      {"CONTACTS/clients", "Clients"},
      {"Contacts/Clients/Old/Gone", "Old"},
      {"old/gone", "Old"},
      {"contacts/vips/team", "Team2"},
      {"contacts/team", "Team"}};
  for (const auto& [name, path] : cases) {
    SCOPED_TRACE(name);
    EXPECT_EQ(Command().ListItems(name), 0);
    EXPECT_EQ(desktop_.log.back(), path + ".Items.Each");
  }
  EXPECT_THROW(Command().ListItems("Nowhere"), MailboxFailure);
  EXPECT_THROW(Command().ListItems("team"), MailboxFailure) << "two are called so";
  desktop_.StopFailing();
  desktop_.Answer(by_id + "00FF\").Items.Each", {Value::Array{}});
  EXPECT_EQ(Command().ListItems("00ff"), 0);

  EXPECT_EQ(Command().ListFolders(), 0);
  EXPECT_THAT(out_.str(), HasSubstr("Contacts      contacts  3      ID-Contacts\n"
                                    "  Clients     contacts  3      ID-Clients\n"
                                    "    Old/Gone  contacts  3      ID-Old\n"));
}

TEST_F(MailboxCommandTest, GoesOnAfterABadFile) {
  const std::string import = std::string(kNameSpace) + ".ImportFile(\"";
  desktop_.Fail(import + "/bad.vcf", AutomationError(5, u"no card\x07"));
  desktop_.Answer(import + "/good.vcf\").Each", {Value::Array{desktop_.NamedObject(Item("A1"))}});
  EXPECT_EQ(Command().ImportFiles({"/bad.vcf", "/good.vcf"}), 1);
  EXPECT_EQ(errors_.str(), "kestrelon: /bad.vcf: no card\n");
  EXPECT_EQ(out_.str(), "/good.vcf: 1 item\ncontact  Ann [2JLee  A1\n");
  out_.str("");
  Command(OutputForm::kJson).ImportFiles({"/good.vcf"});
  EXPECT_THAT(out_.str(), HasSubstr("\"name\": \"Ann \\u001b[2JLee"));
}

TEST(TerminalTextTest, KeepsWhatATerminalCanShow) {
  EXPECT_EQ(OneLine(u"Zo\u00EB\tM\u00FCller \u738B\x7F\u009B\u2066!"),
            "Zo\u00EB M\u00FCller \u738B!");
  EXPECT_THAT(Lines(u"a\r\n\r\nb\nc\r\n"), ElementsAre("a", "", "b", "c"));
  TextTable table;
  table.AddRow({"\u738B\u660E", "x"});
  table.AddRow({"Zoe\u0308!", "y"});
  std::ostringstream out;
  table.Print(out);
  EXPECT_EQ(out.str(), "\u738B\u660E  x\nZoe\u0308!  y\n");
}

}  // namespace
}  // namespace kestrelon::commandline
