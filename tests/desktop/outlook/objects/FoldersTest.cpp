#include "tests/desktop/outlook/objects/OutlookWorld.h"

namespace kestrelon::desktop {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

using FoldersTest = OutlookWorld;

TEST_F(FoldersTest, AreFoundByPlaceNameAndId) {
  const Object contacts = Folder(kContacts);
  const Object folders = contacts.GetChild(u"Folders");
  EXPECT_EQ(folders.Get(u"Count").ToLong(), 0);
  folders.Call(u"Add", u"Suppliers");
  folders.Call(u"Add", u"a/b", kTasks);
  const Object clients = folders.CallChild(u"Add", u"Clients", kContacts);
  EXPECT_EQ(EachOf(folders, u"Name"), u"a/b|Clients|Suppliers|");
  EXPECT_EQ(EachOf(folders, u"DefaultItemType"), u"3|2|2|");
  EXPECT_EQ(folders.CallChild(u"item", 2).Get(u"EntryID").ToText(),
            contacts.GetChild(u"Folders", u"clients").Get(u"EntryID").ToText());
  EXPECT_EQ(clients.Get(u"FolderPath").ToText(), u"\\\\Mailbox\\Contacts\\Clients");
  EXPECT_EQ(clients.GetChild(u"Parent").Get(u"EntryID").ToText(),
            contacts.Get(u"EntryID").ToText());
  const Object root = contacts.GetChild(u"Parent");
  EXPECT_EQ(root.GetChild(u"Folders", u"Contacts").Get(u"StoreID").ToText(),
            clients.Get(u"StoreID").ToText());
  EXPECT_EQ(root.GetChild(u"Application").pointer(), outlook_.pointer());
  const Object same = session_.CallChild(u"GetFolderFromID", clients.Get(u"EntryID").ToText());
  clients.GetChild(u"Items").CallChild(u"Add").Call(u"save");
  EXPECT_EQ(same.GetChild(u"Items").Get(u"Count").ToLong(), 1);
  EXPECT_EQ(NumberOf([&] { folders.Call(u"Add", u"x", 1); }), kInvalidProcedureCall);
  EXPECT_EQ(NumberOf([&] { folders.Call(u"Item", u"None"); }), kNotFound);
  EXPECT_EQ(NumberOf([&] { session_.GetChild(u"Folders").Call(u"Add", u"x"); }),
            kInvalidProcedureCall);
  EXPECT_EQ(NumberOf([&] { Folder(99); }), kInvalidProcedureCall);
}

TEST_F(FoldersTest, HaveNoIdThatLeadsToNothing) {
  const String item = Save(kContacts, u"LastName", u"Lee");
  const String folder = Folder(kContacts).Get(u"EntryID").ToText();
  const String store = Folder(kContacts).Get(u"StoreID").ToText();
  EXPECT_EQ(session_.CallChild(u"GetItemFromID", item, store).Get(u"LastName").ToText(), u"Lee");
  for (const String& id : {String(), item + u"00", String(9999, u'F'), folder}) {
    EXPECT_EQ(NumberOf([&] { session_.Call(u"GetItemFromID", id); }), kNotFound) << ToUtf8(id);
    EXPECT_EQ(NumberOf([&] { session_.Call(u"GetFolderFromID", id + u"0"); }), kNotFound);
  }
  EXPECT_EQ(NumberOf([&] { session_.Call(u"GetFolderFromID", item); }), kNotFound);
  EXPECT_EQ(FailureOf([&] { session_.Call(u"GetItemFromID", item, u"00"); }).description(),
            u"The attempted operation failed.  An object could not be found.");
}

TEST_F(FoldersTest, OfOtherUsersOpenForTheirNames) {
  fs::create_directories(Path("box/Shared/Ann Lee/Calendar"));
  const Object ann = session_.CallChild(u"CreateRecipient", u"ann lee");
  EXPECT_TRUE(ann.Call(u"Resolve").ToBoolean());
  EXPECT_TRUE(ann.Get(u"Resolved").ToBoolean());
  const Object calendar = session_.CallChild(u"GetSharedDefaultFolder", ann, kCalendar);
  const Object item = calendar.GetChild(u"Items").CallChild(u"Add", 1);
  item.Call(u"Save");
  const String id = item.Get(u"EntryID").ToText();
  const String store = calendar.Get(u"StoreID").ToText();
  EXPECT_EQ(session_.CallChild(u"GetItemFromID", id, store).Get(u"EntryID").ToText(), id);
  EXPECT_EQ(NumberOf([&] { session_.Call(u"GetItemFromID", id); }), kNotFound);
  EXPECT_EQ(NumberOf([&] { outlook_.CallChild(u"ActiveExplorer").Call(u"AddToSelection", item); }),
            kNotFound);
  EXPECT_EQ(calendar.Get(u"FolderPath").ToText(), u"\\\\Ann Lee\\Calendar");
  EXPECT_EQ(NumberOf([&] { session_.Call(u"GetSharedDefaultFolder", ann, kTasks); }), kNotFound);
  EXPECT_FALSE(fs::exists(Path("box/Shared/Ann Lee/Tasks"))) << "her mailbox is hers to change";
  for (const auto* name : {u"Bo", u"bo@example.org", u"../Ann Lee", u""}) {
    const Object unknown = session_.CallChild(u"CreateRecipient", name);
    EXPECT_EQ(unknown.Get(u"Resolved").ToBoolean(), String(name).find(u'@') != String::npos);
    EXPECT_EQ(NumberOf([&] { session_.Call(u"GetSharedDefaultFolder", unknown, kCalendar); }),
              kNotFound);
  }
}

TEST_F(FoldersTest, TakeInTheFilesOfOtherPrograms) {
  const std::string card =
      "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;Ann;;;\r\nFN:Ann Lee\r\nEND:VCARD\r\n";
  const std::string calendar_start = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:x\r\n";
  const std::string event =
      "BEGIN:VEVENT\r\nUID:e\r\nDTSTART:20260105T100000\r\nSUMMARY:Meet\r\nEND:VEVENT\r\n";
  const std::string task = "BEGIN:VTODO\r\nUID:t\r\nSUMMARY:Do\r\nEND:VTODO\r\n";
  const struct {
    const char* name;
    std::string content;
    StringView classes;  // "" when it is refused
  } kFiles[] = {
      {"two.vcf", card + card, u"40|40|"},
      {"both.ICS", calendar_start + event + task + "END:VCALENDAR\r\n", u"26|48|"},
      {"mail.eml", "Subject: Hello\r\n\r\nBody\r\n", u"43|"},
      {"none.vcf", "hello", u""},
      {"none.ics", calendar_start + "END:VCALENDAR\r\n", u""},
      {"none.eml", std::string("\0\1", 2), u""},
      {"card.txt", card, u""},
  };
  for (const auto& file : kFiles) {
    SCOPED_TRACE(file.name);
    WriteFileAtomically(Path(file.name), file.content);
    const auto import = [&] {
      return session_.CallChild(u"ImportFile", TextFromPath(Path(file.name)));
    };
    if (file.classes.empty()) {
      const AutomationError error = FailureOf(import);
      EXPECT_EQ(error.number(), kTypeMismatch);
      EXPECT_THAT(ToUtf8(error.description()), HasSubstr(Path(file.name).string()));
    } else {
      EXPECT_EQ(EachOf(import(), u"Class"), file.classes);
    }
  }
  EXPECT_EQ(EachOf(Items(kContacts), u"FullName"), u"Ann Lee|Ann Lee|");
  EXPECT_EQ(EachOf(Items(kCalendar), u"Subject"), u"Meet|");
  EXPECT_EQ(EachOf(Items(kTasks), u"Subject"), u"Do|");
  EXPECT_EQ(EachOf(Items(kInbox), u"Subject"), u"Hello|");
  EXPECT_EQ(NumberOf([&] { session_.Call(u"ImportFile", TextFromPath(Path("a.vcf"))); }),
            kFileNotFound);
}

}  // namespace
}  // namespace kestrelon::desktop
