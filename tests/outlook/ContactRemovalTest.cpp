#include "outlook/ContactRemoval.h"
#include "tests/outlook/OutlookMembers.h"
#include "tests/outlook/ScriptedContacts.h"

namespace kestrelon {
namespace {

using ::testing::Contains;
using ::testing::Not;

const std::string kStamp = ".UserProperties.Find(\"KESTID\")";
const std::string kMark = ".UserProperties.Find(\"Kestrelon\")";

class ContactRemoval : public OutlookMembers {
 protected:
  ContactRemoval() {
    desktop.Answer(kNamespace + ".GetDefaultFolder(10)", {desktop.NamedObject("D")});
    desktop.Answer("D.Folders.count", {3});
    for (int i = 1; i <= 3; ++i) {
      const std::string name = "S" + std::to_string(i);
      desktop.Answer("D.Folders.item(" + std::to_string(i) + ")", {desktop.NamedObject(name)});
      desktop.Answer(name + ".DefaultItemType", {i == 2 ? 3 : 2});
      Fill(name, {});
    }
    Fill("D", {});
  }
  // Items stamped with these ids; "-" for an item without stamp.
  void Fill(const std::string& folder, const std::vector<String>& ids) {
    desktop.Answer(folder + ".Items.count", {static_cast<int32_t>(ids.size())});
    for (size_t i = 0; i < ids.size(); ++i) {
      const auto stamp = ids[i] == u"-" ? std::nullopt : std::optional(ids[i]);
      ScriptStamp(desktop, testing::ItemPath(folder, i + 1), stamp);
    }
  }
  String Remove(bool strDelete) {
    String strContactID = u"a";
    return RemoveContact(context, strContactID, strDelete);
  }
  // What was changed, in its order.
  Lines Changes() const {
    Lines changes;
    for (const std::string& line : desktop.log) {
      const bool is_change = line.find(" = ") != std::string::npos || line.ends_with(".save()") ||
                             line.ends_with(".Delete()");
      if (is_change) changes.push_back(line);
    }
    return changes;
  }
};

TEST_F(ContactRemoval, TakesTheStampsOffAndSavesInSubfoldersOnly) {
  Fill("D", {u"a", u"A", u"-", u"a"});
  Fill("S1", {u"b", u"a"});
  Fill("S2", {u"a"});
  Fill("S3", {u"a"});
  desktop.Answer("S3.Items(1)" + kMark, {Value(Object())});
  EXPECT_EQ(Remove(false),
            u"The contact was successfully unsynchronized from its associated Outlook Contact");
  EXPECT_EQ(Changes(),
            (Lines{"D.Items(1)" + kStamp + ".Value = \"\"", "D.Items(4)" + kStamp + ".Value = \"\"",
                   "S1.Items(2)" + kMark + ".Value = \"\"",
                   "S1.Items(2)" + kStamp + ".Value = \"\"", "S1.Items(2).save()",
                   "S3.Items(1)" + kStamp + ".Value = \"\"", "S3.Items(1).save()"}));
  EXPECT_THAT(desktop.log, Not(Contains("S2.Items")));
}

TEST_F(ContactRemoval, PassesOverTheItemBehindADeletedOneAndStopsAtTheFoldersEnd) {
  // What stands at each position when it is looked at.
  Fill("D", {u"a", u"b", u"a", u"-"});
  desktop.Answer("D.Items.count", {4, 3, 2});
  Fill("S3", {u"a", u"b"});
  desktop.Answer("S3.Items.count", {2, 1});
  desktop.Fail("D.Items(4)", AutomationError(-2147352567, u"Array index out of bounds."));
  desktop.Fail("S3.Items(2)", AutomationError(-2147352567, u"Array index out of bounds."));
  EXPECT_EQ(Remove(true), u"The associated Outlook contact was successfully deleted from");
  EXPECT_EQ(Changes(),
            (Lines{"D.Items(1).Delete()", "D.Items(3).Delete()", "S3.Items(1).Delete()"}));
}

const std::string kNew = "D.Items.Add()";

TEST_F(ContactRemoval, AVcardIsMailedAndItsContactIsNotSaved) {
  HtmlDocument page(desktop.NamedObject("Page").ToObject().pointer());
  desktop.Answer("Page.getElementById(\"ANNIVERSARY\").Value", {Value(u"1 May 1990")});
  EXPECT_TRUE(CreateContactAsvCard(context, page));
  const Lines tail(desktop.log.end() - 3, desktop.log.end());
  EXPECT_EQ(tail, (Lines{kNew + ".Anniversary = \"1 May 1990\"", kNew + ".ForwardAsVcard()",
                         kNew + ".ForwardAsVcard().display()"}));
  EXPECT_THAT(desktop.log, Not(Contains(kNew + ".save()")));
}

}  // namespace
}  // namespace kestrelon
