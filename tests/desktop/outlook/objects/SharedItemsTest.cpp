// Several programs at one mailbox.
#include "tests/desktop/opener/RecordingOpener.h"
#include "tests/desktop/outlook/objects/OutlookWorld.h"

namespace kestrelon::desktop {
namespace {

using SharedItemsTest = OutlookWorld;

TEST_F(SharedItemsTest, MergesChangesOfDifferentPropertiesAndRefusesOthers) {
  const struct {
    const char* name;
    StringView ours, our_value, theirs, their_value;  // user properties after "."
    int32_t error;
  } kRows[] = {
      {"different properties", u"LastName", u"Lee", u"FirstName", u"Bo", 0},
      {"the same to the same", u"FirstName", u"Bo", u"FirstName", u"Bo", 0},
      {"the same to another", u"FirstName", u"Cy", u"FirstName", u"Bo", kChanged},
      {"a property and a user property", u".KESTID", u"7", u"FirstName", u"Bo", 0},
      {"user properties", u".KESTID", u"7", u".Kestrelon", u"true", 0},
      {"the same new user property", u".KESTID", u"7", u".KestID", u"8", kChanged},
  };
  const auto put = [](const Object& item, StringView name, StringView value) {
    if (name.starts_with(u'.')) {
      item.GetChild(u"UserProperties").CallChild(u"Add", name.substr(1), 1).Put(u"Value", value);
    } else {
      item.Put(name, value);
    }
  };
  const auto get = [](const Object& item, StringView name) {
    if (!name.starts_with(u'.')) return item.Get(name).ToText();
    return item.GetChild(u"UserProperties")
        .CallChild(u"Item", name.substr(1))
        .GetDefault()
        .ToText();
  };
  for (const auto& row : kRows) {
    for (const bool is_other_process : {true, false}) {
      SCOPED_TRACE(row.name);
      const String id = Save(kContacts, u"FirstName", u"Ann");
      const Object item = FromId(id);
      put(item, row.ours, row.our_value);
      const auto their_change = [&] {
        const Object same = FromId(id);
        put(same, row.theirs, row.their_value);
        same.Call(u"Save");
      };
      if (is_other_process) {
        Elsewhere(their_change);
      } else {
        their_change();
      }
      EXPECT_EQ(NumberOf([&] { item.Call(u"Save"); }), row.error);
      EXPECT_EQ(NumberOf([&] { item.Call(u"Save"); }), row.error);
      const Object stored = FromId(id);
      EXPECT_EQ(get(stored, row.theirs), row.their_value);
      if (row.error == 0) {
        EXPECT_EQ(get(stored, row.ours), row.our_value);
      }
    }
  }
}

TEST_F(SharedItemsTest, NeitherRevivesNorDeletesWhatOthersTouched) {
  const String id = Save(kContacts, u"FirstName", u"Ann");
  const Object reader = FromId(id), writer = FromId(id);
  writer.Put(u"LastName", u"Lee");
  Elsewhere([&] {
    const Object same = FromId(id);
    same.Put(u"User2", u"Perm");
    same.Call(u"Save");
  });
  EXPECT_EQ(NumberOf([&] { reader.Call(u"Delete"); }), kChanged);
  EXPECT_EQ(FromId(id).Get(u"User2").ToText(), u"Perm");
  Elsewhere([&] { FromId(id).Call(u"Delete"); });
  EXPECT_EQ(NumberOf([&] { writer.Call(u"Save"); }), kDeleted);
  EXPECT_EQ(NumberOf([&] { FromId(id); }), kNotFound);
  EXPECT_EQ(Items(kContacts).Get(u"Count").ToLong(), 0);
  EXPECT_EQ(NumberOf([&] { reader.Call(u"Delete"); }), kDeleted);
}

TEST_F(SharedItemsTest, SeesWhatOthersAddAndKeepsThePlaces) {
  const Object items = Items(kContacts);
  for (const auto* name : {u"A", u"B", u"C"}) Save(kContacts, u"LastName", name);
  Elsewhere([&] {
    Items(kContacts).CallChild(u"Item", 2).Call(u"Delete");
    Save(kContacts, u"LastName", u"D");
  });
  EXPECT_EQ(EachOf(items, u"LastName"), u"A|C|D|");
  items.CallChild(u"Item", 1).Call(u"Delete");
  EXPECT_EQ(items.Call(u"", 1).ToObject().Get(u"LastName").ToText(), u"C");
  EXPECT_EQ(items.Get(u"Count").ToLong(), 2);
}

TEST_F(SharedItemsTest, SharesWhatIsOpenAndSelected) {
  outlook_.Call(u"Quit");
  EXPECT_TRUE(RunningOutlookApplication().IsNothing());
  const String id = Save(kContacts, u"LastName", u"Lee");
  const String gone = Save(kContacts, u"LastName", u"Gone");
  Elsewhere([&] {
    const Object explorer = CreateOutlookApplication().CallChild(u"ActiveExplorer");
    explorer.Call(u"Display");
    explorer.Call(u"AddToSelection", FromId(gone));
    explorer.Call(u"AddToSelection", FromId(id));
    explorer.Call(u"AddToSelection", FromId(id));
    FromId(gone).Call(u"Delete");
  });
  const Object explorer = RunningOutlookApplication().CallChild(u"ActiveExplorer");
  const Object selection = explorer.GetChild(u"Selection");
  EXPECT_EQ(EachOf(selection, u"LastName"), u"Lee|");
  EXPECT_EQ(selection.CallChild(u"item", 1).Get(u"EntryID").ToText(), id);
  const Object unsaved = outlook_.CallChild(u"CreateItem", 2);
  EXPECT_EQ(NumberOf([&] { explorer.Call(u"AddToSelection", unsaved); }), kNotFound);
  explorer.Call(u"RemoveFromSelection", FromId(id));
  EXPECT_EQ(explorer.GetChild(u"Selection").Get(u"Count").ToLong(), 0);
  EXPECT_EQ(explorer.GetChild(u"CurrentFolder").Get(u"Name").ToText(), u"Inbox");
}

TEST_F(SharedItemsTest, KeepsADraftInStepWithWhatIsShown) {
  const RecordingOpener opener;
  const Object mail = outlook_.CallChild(u"CreateItem", 0);
  mail.GetChild(u"UserProperties").CallChild(u"Add", u"ACID", 1).Put(u"Value", u"a1");
  mail.Call(u"Display");
  mail.Put(u"To", u"ann@example.org");
  const String id = mail.Get(u"EntryID").ToText();
  const Object draft = FromId(id);
  EXPECT_EQ(draft.Get(u"To").ToText(), u"ann@example.org");
  EXPECT_EQ(draft.GetChild(u"UserProperties").CallChild(u"Find", u"ACID").GetDefault().ToText(),
            u"a1");
  EXPECT_EQ(draft.GetChild(u"Parent").Get(u"Name").ToText(),
            mail.GetChild(u"Parent").Get(u"Name").ToText());
  Elsewhere([&] {
    const Object same = FromId(id);
    same.GetChild(u"UserProperties").CallChild(u"Add", u"guid", 1).Put(u"Value", u"g");
    same.Call(u"Save");
  });
  EXPECT_EQ(NumberOf([&] { mail.Put(u"Subject", u"lost?"); }), kChanged);
  FromId(id).Call(u"Delete");
  EXPECT_EQ(NumberOf([&] { mail.Call(u"Save"); }), kDeleted);
  EXPECT_TRUE(FilesIn("Drafts").empty());
}

}  // namespace
}  // namespace kestrelon::desktop
