#include "outlook/Stamps.h"
#include "tests/outlook/OutlookMembers.h"

namespace kestrelon {
namespace {

const Lines kOpened = {"create Outlook.Application", kNamespace};

class Stamps : public OutlookMembers {
 protected:
  String SetImport(String item_type) {
    String item_id = u"7";
    String entry_id = u"E";
    return SetImportID(context, item_id, entry_id, item_type);
  }
  bool Mark(String item_type, String item_id = u"X9") {
    String store_id = u"S";
    String entry_id = u"E";
    String account_id = u"A1";
    return SetItemAsKestrelon(context, item_type, store_id, entry_id, account_id, item_id);
  }
  String Check(String item_type) {
    String crm_id = u"7";
    return CheckIfSynchronised(context, crm_id, item_type);
  }
  // Fills a folder with items whose "KESTID" is each of `ids`; nullptr for one that has none.
  void Fill(const std::string& folder, const std::vector<const char16_t*>& ids,
            const std::string& display_field) {
    desktop.Answer(folder + ".Items.count", {static_cast<int32_t>(ids.size())});
    for (size_t i = 0; i < ids.size(); ++i) {
      const std::string number = std::to_string(i + 1);
      const std::string item = folder + ".Items.item(" + number + ")";
      const std::string property = item + ".UserProperties.Find(\"KESTID\")";
      if (ids[i] == nullptr) desktop.Answer(property, {Value(DispatchPointer())});
      if (ids[i] != nullptr) desktop.Answer(property + ".Value", {Value(ids[i])});
      desktop.Answer(item + "." + display_field, {Value(FromUtf8("Item " + number))});
    }
  }
  void AddSubfolder(const std::string& top, int32_t number, int32_t item_type) {
    desktop.Answer(top + ".Folders.count", {number});
    const std::string folder = top + ".Folders.item(" + std::to_string(number) + ")";
    desktop.Answer(folder + ".DefaultItemType", {item_type});
    desktop.Answer(folder + ".Name", {Value(FromUtf8("Sub " + std::to_string(number)))});
  }
};

TEST_F(Stamps, ImportIdIsAddedWithoutALookForOne) {
  const std::string item = kNamespace + ".GetItemFromID(\"E\")";
  const std::string property = item + ".UserProperties.Add(\"KESTID\", 1)";
  for (const char16_t* type : {u"contact", u"Task"}) {
    desktop.log.clear();
    EXPECT_EQ(SetImport(type), u"");
    EXPECT_EQ(desktop.log, (Lines{kOpened[0], kOpened[1], item, item + ".UserProperties", property,
                                  property + ".Value = \"7\"", item + ".save()"}));
  }
  desktop.log.clear();
  EXPECT_EQ(SetImport(u"appointment"), u"");
  EXPECT_EQ(desktop.log, kOpened);
}

TEST_F(Stamps, ItemTypeSaysWhichIdsAreWritten) {
  const std::string item = kNamespace + ".GetItemFromID(\"E\", \"S\")";
  const std::string properties = item + ".UserProperties";
  const struct {
    const char16_t* type;
    const char16_t* item_id;
    Lines stamps;  // names and values by turns, behind that of every item
  } cases[] = {
      {u"Appointment", u"X9", {"guid", "X9", "ACID", "A1"}},
      {u"activity", u"X9", {"USTID", "{X9}"}},
      {u"TASK", u"{X9}", {"USTID", "{X9}"}},
      {u"accountactivity", u"", {"USTID", "{}"}},
      {u"contactactivity", u"X9", {"USTID", "{X9}"}},
      {u"opportunityactivity", u"X9", {"USTID", "{X9}"}},
      {u"projectactivity", u"X9", {"USTID", "{X9}"}},
      {u"Contact", u"X9", {"KESTID", "X9"}},
      {u"email", u"X9", {}},
      {u" task", u"X9", {}},
  };
  for (const bool is_there : {true, false}) {
    for (const auto& example : cases) {
      desktop.log.clear();
      Lines stamps = {"Kestrelon", "true"};
      stamps.insert(stamps.end(), example.stamps.begin(), example.stamps.end());
      Lines expected = {kOpened[0], kOpened[1], item};
      for (size_t i = 0; i < stamps.size(); i += 2) {
        const std::string find = properties + ".Find(\"" + stamps[i] + "\")";
        const std::string add = properties + ".Add(\"" + stamps[i] + "\", 1, True)";
        if (!is_there) desktop.Answer(find, {Value(DispatchPointer())});
        expected.push_back(properties);
        expected.push_back(find);
        if (!is_there) expected.push_back(add);
        expected.push_back((is_there ? find : add) + ".Value = \"" + stamps[i + 1] + "\"");
      }
      expected.push_back(item + ".save()");
      EXPECT_TRUE(Mark(example.type, example.item_id));
      EXPECT_EQ(desktop.log, expected);
    }
  }
}

TEST_F(Stamps, MarkingFallsBackToTheLoopbackAddress) {
  desktop.fail_at = 1;
  EXPECT_TRUE(Mark(u"email"));
  EXPECT_EQ(desktop.log[1], "create Outlook.Application on 127.0.0.1");
}

TEST_F(Stamps, SearchTellsWhereTheItemIs) {
  const std::string contacts = kNamespace + ".GetDefaultFolder(10)";
  const std::string tasks = kNamespace + ".GetDefaultFolder(13)";
  desktop.Answer(contacts + ".Folders.count", {0});
  Fill(contacts, {nullptr, u"77", u""}, "FullName");
  EXPECT_EQ(Check(u"contact"), u"false");
  // The last one of the top folder wins.
  Fill(contacts, {u"7", nullptr, u"7", u"8"}, "FullName");
  EXPECT_EQ(Check(u"Contact"), u"Item 3 in folder Contacts.");
  // Any other type is searched for among the tasks, and subfolders of another kind are passed over.
  Fill(tasks, {u"6"}, "Subject");
  AddSubfolder(tasks, 1, 2);
  AddSubfolder(tasks, 2, 3);
  Fill(tasks + ".Folders.item(2)", {u"5", u"7"}, "Subject");
  EXPECT_EQ(Check(u"appointment"), u"Item 2 in folder Sub 2");
  Fill(tasks, {u"7"}, "Subject");
  EXPECT_EQ(Check(u""), u"Item 1 in folder Tasks.");
}

}  // namespace
}  // namespace kestrelon
