#include "outlook/FolderLists.h"
#include "tests/outlook/OutlookMembers.h"

namespace kestrelon {
namespace {

const std::string kContacts = kNamespace + ".GetDefaultFolder(10)";
const std::string kTasks = kNamespace + ".GetDefaultFolder(13)";

struct Subfolder {
  const char16_t* name;
  int32_t item_type;
  int32_t items;
};

class SubfolderLists : public OutlookMembers {
 protected:
  void Fill(const std::string& folder, const std::vector<Subfolder>& subfolders) {
    const std::string folders = folder + ".Folders";
    desktop.Answer(folders + ".count", {static_cast<int32_t>(subfolders.size())});
    for (size_t i = 0; i < subfolders.size(); ++i) {
      const std::string subfolder = folders + ".item(" + std::to_string(i + 1) + ")";
      desktop.Answer(subfolder + ".DefaultItemType", {subfolders[i].item_type});
      desktop.Answer(subfolder + ".Items.count", {subfolders[i].items});
      desktop.Answer(subfolder + ".Name", {Value(subfolders[i].name)});
      desktop.Answer(subfolder + ".EntryID", {Value(FromUtf8("E" + std::to_string(i + 1)))});
    }
  }
};

TEST_F(SubfolderLists, NameTheFoldersOfTheirKind) {
  const std::vector<Subfolder> mixed = {
      {u"Clients", 2, 5}, {u"Old tasks", 3, 1}, {u"Empty", 2, 0}, {u"Mails", 0, 2}};
  Fill(kContacts, mixed);
  Fill(kTasks, mixed);
  String import = u"Import";
  EXPECT_EQ(GetContactFolderList(context, import), u"Contacts#~#~Clients#~E1#~Empty#~E3#");
  EXPECT_EQ(GetTaskFolderList(context), u"Tasks#~#~Old tasks#~E2#");
  import = u"import";
  EXPECT_EQ(GetContactFolderList(context, import), u"Contacts#~#~Clients#~E1#");
  Fill(kContacts, {{u"Mails", 0, 1}});
  EXPECT_EQ(GetContactFolderList(context, import), u"Contacts#~");
}

}  // namespace
}  // namespace kestrelon
