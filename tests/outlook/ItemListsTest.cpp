// Lists that the stylesheets of the Linux desktop sort.

#include <cstdlib>

#include "desktop/filesystem/FileSystemObject.h"
#include "desktop/storage/AtomicFile.h"
#include "outlook/FolderLists.h"
#include "tests/outlook/OutlookMembers.h"
#include "tests/support/Documents.h"

namespace kestrelon {
namespace {

const std::string kContacts = kNamespace + ".GetDefaultFolder(10)";
const std::string kTasks = kNamespace + ".GetDefaultFolder(13)";

// A scripted Outlook beside the real documents and files by which a list is sorted.
class ItemLists : public OutlookMembers {
 protected:
  void SetUp() override {
    setenv("LC_ALL", "C.UTF-8", 1);
    desktop.Answer("create Scripting.FileSystemObject", {desktop::CreateFileSystemObject()});
    std::deque<Value> documents(20);
    for (Value& document : documents) document = testing::EmptyXmlDocument();
    desktop.Answer("create Msxml2.DOMDocument", documents);
  }
  void TearDown() override { unsetenv("LC_ALL"); }

  // An item of the folder to be filled; the entry id is the object's name.
  void Add(int32_t item_class, const char16_t* name, const char16_t* last_name = u"x") {
    const std::string item = "I" + std::to_string(items.size() + 1);
    items.push_back(desktop.NamedObject(item));
    desktop.Answer(item + ".Class", {item_class});
    desktop.Answer(item + ".EntryID", {Value(FromUtf8(item))});
    desktop.Answer(item + ".LastName", {Value(last_name)});
    desktop.Answer(item + ".FullName", {Value(name)});
    desktop.Answer(item + ".Subject", {Value(name)});
  }
  void FillFolder(const std::string& folder) {
    desktop.Answer(folder + ".Items.Each", {Value(items)});
  }
  String ListContacts() {
    FillFolder(kContacts);
    String folder;
    return GetFolderContactItems(context, folder);
  }

  Value::Array items;
};

TEST_F(ItemLists, ContactsComeInTextOrder) {
  for (const auto* name : {u"Smith", u"adams", u"Brown", u"Adams", u"\u00D6zil & <Co>", u"Pol",
                           u"Smith", u"\u00E4rger", u"\U0001F600"}) {
    Add(40, name);
  }
  Add(69, u"All staff");
  desktop.Fail("I10.LastName", AutomationError(kMemberNotFound));
  Add(40, u"Nobody", u"");
  EXPECT_EQ(ListContacts(),
            u"\U0001F600#~I9#~adams#~I2#~Adams#~I4#~\u00E4rger#~I8#~Brown#~I3#~"
            u"\u00D6zil & <Co>#~I5#~Pol#~I6#~Smith#~I1#~Smith#~I7#~");
  EXPECT_TRUE(desktop.messages.empty());
  const std::string sheet = desktop::ReadWholeFile(desktop.temp_path + "Kestrelon.xsl");
  EXPECT_TRUE(sheet.ends_with("</xsl:stylesheet>\r\n\r\n"));

  setenv("LC_ALL", "sv_SE.UTF-8", 1);
  EXPECT_TRUE(ListContacts().ends_with(u"Smith#~I7#~\u00E4rger#~I8#~\u00D6zil & <Co>#~I5#~"));
}

TEST_F(ItemLists, AFolderWithoutContactsCannotBeSorted) {
  Add(40, u"Nobody", u"");
  EXPECT_EQ(ListContacts(), u"");
  Add(40, u"a\x01z");
  EXPECT_EQ(ListContacts(), u"") << "a name that no document can hold";
  const testing::ShownMessage failed{u"An error occurred running GetFolderContactItems", 64,
                                     std::nullopt};
  EXPECT_EQ(desktop.messages, (Messages{failed, failed}));
}

TEST_F(ItemLists, TasksComeInTheOrderOfTheFolderChosen) {
  Add(48, u"Write");
  Add(48, u"");
  Add(40, u"Ann");
  Add(48, u"Call");
  FillFolder(kTasks);
  FillFolder(kNamespace + ".GetFolderFromID(\"AB1\")");
  String folder;
  EXPECT_EQ(GetFolderTaskItems(context, folder), u"Write#~I1#~Call#~I4#~");
  folder = u"#AB#1#";
  EXPECT_EQ(GetFolderTaskItems(context, folder), u"Write#~I1#~Call#~I4#~");
  EXPECT_EQ(folder, u"AB1");
}

}  // namespace
}  // namespace kestrelon
