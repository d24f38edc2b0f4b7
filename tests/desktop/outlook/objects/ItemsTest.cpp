#include "tests/desktop/opener/RecordingOpener.h"
#include "tests/desktop/outlook/objects/OutlookWorld.h"

namespace kestrelon::desktop {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

using ItemsTest = OutlookWorld;

TEST_F(ItemsTest, KeepsEachKindOfItemOverARestart) {
  const struct {
    int32_t type, folder, item_class;
    StringView property, message_class;
    const char* extension;
  } kKinds[] = {{1, kCalendar, 26, u"Subject", u"IPM.Appointment", ".ics"},
                {2, kContacts, 40, u"FirstName", u"IPM.Contact", ".vcf"},
                {3, kTasks, 48, u"subject", u"IPM.Task", ".ics"}};
  for (const auto& kind : kKinds) {
    SCOPED_TRACE(ToUtf8(kind.message_class));
    Elsewhere([&] {
      const Object item = outlook_.CallChild(u"CreateItem", kind.type);
      item.Put(kind.property, u"J\u00F6rg");
      item.GetChild(u"UserProperties").CallChild(u"Add", u"KESTID", 1, true).Put(u"Value", u"{17}");
      if (Items(kind.folder).Get(u"Count").ToLong() != 0) throw AutomationError(1);
      if (item.Get(u"EntryID").ToText() != u"" || item.Get(u"Saved").ToBoolean()) {
        throw AutomationError(2);
      }
      item.Call(u"Save");
      if (!item.Get(u"Saved").ToBoolean()) throw AutomationError(3);
    });
    const Object item = Items(kind.folder).CallChild(u"Item", 1);
    EXPECT_EQ(item.Get(kind.property).ToText(), u"J\u00F6rg");
    EXPECT_EQ(item.Get(u"class").ToLong(), kind.item_class);
    EXPECT_EQ(item.Get(u"MessageClass").ToText(), kind.message_class);
    EXPECT_EQ(item.GetChild(u"userproperties").CallChild(u"find", u"kestid").GetDefault().ToText(),
              u"{17}");
    EXPECT_EQ(item.GetChild(u"Parent").Get(u"EntryID").ToText(),
              Folder(kind.folder).Get(u"EntryID").ToText());
    const Object same = FromId(item.Get(u"EntryID").ToText());
    EXPECT_EQ(same.Get(kind.property).ToText(), u"J\u00F6rg");
    const String stem = Folder(kind.folder).Get(u"Name").ToText();
    EXPECT_THAT(FilesIn(ToUtf8(stem)), testing::ElementsAre(testing::EndsWith(kind.extension)));
  }
}

TEST_F(ItemsTest, WritesNothingBeforeSaveAndAllChangesAtOnce) {
  const String id = Save(kContacts, u"FirstName", u"Ann");
  const Object item = FromId(id);
  item.Put(u"LastName", u"Lee");
  item.GetChild(u"UserProperties").Call(u"Add", u"KESTID", 1);
  EXPECT_EQ(FromId(id).Get(u"LastName").ToText(), u"");
  item.Call(u"Close", 1);
  EXPECT_EQ(item.Get(u"LastName").ToText(), u"");
  item.Put(u"LastName", u"Li");
  item.Put(u"User1", u"Kestrelon");
  const fs::path file = Path("box/Contacts") / FilesIn("Contacts").front();
  const auto inode = [&] {
    struct stat status {};
    stat(file.c_str(), &status);
    return status.st_ino;
  };
  const auto before = inode();
  item.Call(u"save");
  const auto after = inode();
  EXPECT_NE(before, after);
  item.Put(u"User1", u"Kestrelon");
  item.Call(u"save");
  EXPECT_EQ(inode(), after);
  EXPECT_EQ(FromId(id).Get(u"LastName").ToText(), u"Li");
}

TEST_F(ItemsTest, HandsUserPropertiesOut) {
  const Object item = outlook_.CallChild(u"CreateItem", 3);
  const Object properties = item.GetChild(u"UserProperties");
  EXPECT_TRUE(properties.CallChild(u"Find", u"KESTID").IsNothing());
  const Object first = properties.CallChild(u"Add", u"KESTID", 1, true, 1);
  EXPECT_EQ(first.GetDefault().ToText(), u"");
  first.PutDefault(u"a");
  EXPECT_EQ(properties.CallChild(u"Add", u"kestid", 3).Get(u"Value").ToText(), u"a");
  properties.CallChild(u"Add", u"Visits", 3).Put(u"Value", 12);
  properties.CallChild(u"Add", u"Kestrelon", 1).Put(u"Value", u"true");
  EXPECT_EQ(EachOf(properties, u"Name"), u"KESTID|Visits|Kestrelon|");
  EXPECT_EQ(EachOf(properties, u"Type"), u"1|3|1|");
  properties.Call(u"Remove", 2);
  first.Call(u"Delete");
  EXPECT_EQ(EachOf(properties, u"Value"), u"true|");
  EXPECT_EQ(NumberOf([&] { first.Get(u"Value"); }), kNotFound);
  EXPECT_EQ(properties.CallChild(u"Item", u"KESTRELON").Get(u"Name").ToText(), u"Kestrelon");
  EXPECT_EQ(NumberOf([&] { properties.Call(u"Add", u" ", 1); }), kInvalidProcedureCall);
}

TEST_F(ItemsTest, ListsThePropertiesOfAnItem) {
  const Object item = FromId(Save(kContacts, u"FirstName", u"Ann"));
  const Object properties = item.GetChild(u"ItemProperties");
  EXPECT_THAT(ToUtf8(EachOf(properties, u"Name")), HasSubstr("FirstName|"));
  EXPECT_EQ(properties.CallChild(u"Item", u"firstname").Get(u"Value").ToText(), u"Ann");
  const int32_t count = properties.Get(u"Count").ToLong();
  EXPECT_NE(properties.CallChild(u"Item", count - 1).Get(u"Name").ToText(), u"");
  EXPECT_EQ(NumberOf([&] { properties.Call(u"Item", count); }), kOutOfBounds);
}

TEST_F(ItemsTest, RefusesWhatItemsDoNotHave) {
  const Object contact = FromId(Save(kContacts, u"FirstName", u"Ann"));
  const Object task = outlook_.CallChild(u"CreateItem", 3);
  EXPECT_EQ(NumberOf([&] { contact.Get(u"DueDate"); }), kMemberNotFound);
  EXPECT_EQ(NumberOf([&] { task.Put(u"FirstName", u"x"); }), kMemberNotFound);
  EXPECT_EQ(NumberOf([&] { task.Call(u"ForwardAsVcard"); }), kMemberNotFound);
  EXPECT_EQ(NumberOf([&] { contact.Get(u"FirstName", 1); }), kWrongNumberOfArguments);
  EXPECT_EQ(NumberOf([&] { contact.Put(u"EntryID", u"1"); }), kMemberNotFound);
  EXPECT_EQ(NumberOf([&] { Items(kContacts).Call(u"Add", 3); }), kInvalidProcedureCall);
  EXPECT_EQ(contact.pointer()->TypeName(), u"ContactItem");
  const auto at = [](const Object& collection, int32_t place) {
    return NumberOf([&] { collection.Call(u"Item", place); });
  };
  const Object mail = outlook_.CallChild(u"CreateItem", 0);
  for (const Object& collection :
       {Items(kContacts), contact.GetChild(u"UserProperties"),
        Folder(kContacts).GetChild(u"Folders"), mail.GetChild(u"Recipients"),
        mail.GetChild(u"Attachments"), outlook_.GetChild(u"Explorers"),
        outlook_.CallChild(u"ActiveExplorer").GetChild(u"Selection")}) {
    EXPECT_EQ(at(collection, 2), kOutOfBounds) << ToUtf8(collection.pointer()->TypeName());
    EXPECT_EQ(at(collection, 0), kOutOfBounds) << ToUtf8(collection.pointer()->TypeName());
  }
}

TEST_F(ItemsTest, ShowsItemsInTheirFilesAndUnsavedOnesAsCopies) {
  const RecordingOpener opener;
  const Object task = FromId(Save(kTasks, u"Subject", u"Call"));
  task.Call(u"Display", false);
  EXPECT_EQ(opener.Next(), (Path("box/Tasks") / FilesIn("Tasks").front()).string());
  task.Put(u"Subject", u"..\u00DC/ber: \n");
  const Object appointment = outlook_.CallChild(u"CreateItem", 1);
  for (const auto& [item, name] :
       {std::pair{task, "\u00DC ber.ics"}, {appointment, "Untitled.ics"}}) {
    item.Call(u"display");
    const fs::path copy = opener.Next();
    EXPECT_EQ(copy.filename(), name);
    EXPECT_THAT(ReadWholeFile(copy), testing::StartsWith("BEGIN:VCALENDAR"));
    fs::remove_all(copy.parent_path());
  }
  EXPECT_EQ(Items(kTasks).CallChild(u"Item", 1).Get(u"Subject").ToText(), u"Call");
  EXPECT_EQ(Items(kCalendar).Get(u"Count").ToLong(), 0);
}

}  // namespace
}  // namespace kestrelon::desktop
