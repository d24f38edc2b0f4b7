#include "outlook/UnsyncedItems.h"
#include "tests/outlook/OutlookMembers.h"

namespace kestrelon {
namespace {

class UnsyncedItems : public OutlookMembers {
 protected:
  // An item that is named and identified by `id`; the user properties without a value are missing.
  Value Item(const std::string& id, int32_t item_class,
             const std::map<std::string, String>& properties) {
    desktop.Answer(id + ".Class", {item_class});
    for (const char* field : {".FullName", ".Subject"}) {
      desktop.Answer(id + field, {Value(FromUtf8("name " + id))});
    }
    desktop.Answer(id + ".EntryID", {Value(FromUtf8(id))});
    for (const char* name : {"Kestrelon", "KESTID", "USTID"}) {
      const std::string find = id + ".UserProperties.Find(\"" + name + "\")";
      const auto property = properties.find(name);
      if (property == properties.end()) {
        desktop.Answer(find, {Value(DispatchPointer())});
      } else {
        desktop.Answer(find + ".Value", {Value(property->second)});
      }
    }
    return desktop.NamedObject(id);
  }
  void Fill(const std::string& folder, Value::Array items) {
    desktop.Answer(kNamespace + "." + folder + ".Items.Each", {Value(std::move(items))});
  }
};

TEST_F(UnsyncedItems, AreThoseWithoutTheStampOfTheirKind) {
  Fill("GetDefaultFolder(9)",
       {Item("a1", 26, {{"Kestrelon", u"true"}}), Item("a2", 26, {{"Kestrelon", u"True"}}),
        Item("a3", 26, {{"KESTID", u"7"}}), Item("a4", 43, {})});
  EXPECT_EQ(GetUnsyncedAppts(context).ToText(), u"name a2#~a2#~name a3#~a3#~");
  Fill("GetDefaultFolder(13)",
       {Item("t1", 48, {{"KESTID", u"7"}}), Item("t2", 48, {{"USTID", u"{7}"}}),
        Item("t3", 48, {{"KESTID", u""}, {"USTID", u""}, {"Kestrelon", u"true"}}),
        Item("t4", 48, {})});
  EXPECT_EQ(GetUnsyncedTasks(context).ToText(), u"name t3#~t3#~name t4#~t4#~");
  Fill("GetDefaultFolder(10)", {Item("c1", 40, {{"KESTID", u"7"}}), Item("c2", 69, {})});
  String folder;
  EXPECT_EQ(GetUnsyncedContacts(context, folder).ToText(), u"");
  Fill("GetFolderFromID(\"F1\")", {Item("c3", 40, {{"USTID", u"7"}})});
  folder = u"#F#1";
  EXPECT_EQ(GetUnsyncedContacts(context, folder).ToText(), u"name c3#~c3#~");
  EXPECT_EQ(folder, u"F1");
}

}  // namespace
}  // namespace kestrelon
