#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "desktop/outlook/formats/OutlookErrors.h"
#include "desktop/outlook/store/EntryIds.h"
#include "desktop/outlook/store/MailFolder.h"
#include "desktop/outlook/store/Mailbox.h"
#include "desktop/outlook/store/UserSession.h"
#include "desktop/storage/AtomicFile.h"
#include "tests/desktop/opener/RecordingOpener.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

constexpr int32_t kCalendar = 9, kContacts = 10, kTasks = 13;
constexpr auto kObjectExists = static_cast<int32_t>(0x8004060C);
constexpr std::string_view kCard = "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:x\r\nEND:VCARD\r\n";

String IdOf(std::string_view text) { return FromUtf8(ToHex(text)); }

class MailFolderTest : public testing::Test {
 protected:
  static std::vector<String> Names(const std::vector<MailFolderPointer>& folders) {
    std::vector<String> names;
    for (const MailFolderPointer& folder : folders) names.push_back(folder->Name());
    return names;
  }
  void WriteCard(const fs::path& path) const { WriteFileAtomically(path, kCard); }

  PrivateFolder folder_{"kestrelon-store-test-"};
  fs::path box_ = folder_.path() / "box";
  ChangedEnvironment mailbox_{"KESTRELON_MAILBOX", box_.string()};
  MailStorePointer own_ = OwnStore();
};

TEST_F(MailFolderTest, DefaultFoldersAreMadeOnFirstUseForTheUserAlone) {
  EXPECT_TRUE(TopFolders(own_).empty());
  EXPECT_EQ(DefaultFolder(own_, 7), nullptr);
  EXPECT_EQ(DefaultFolder(own_, kTasks)->kind(), FolderKind::kTasks);
  EXPECT_EQ(DefaultFolder(own_, kCalendar)->Name(), u"Calendar");
  EXPECT_EQ(fs::status(box_).permissions(), fs::perms(0700));
  EXPECT_EQ(fs::status(box_ / "Tasks").permissions(), fs::perms(0700));
  for (const char* name : {"Shared/bob", ".kestrelon", "Notes"})
    fs::create_directories(box_ / name);
  EXPECT_THAT(Names(TopFolders(own_)), ElementsAre(u"Calendar", u"Tasks", u"Notes"));
  WriteCard(box_ / "Contacts");
  EXPECT_NE(NumberOf([&] { DefaultFolder(own_, kContacts); }), 0) << "a file has that name";
}

TEST_F(MailFolderTest, SubfoldersHaveAnyNameAndKeepTheirKind) {
  const MailFolderPointer contacts = DefaultFolder(own_, kContacts);
  for (const char16_t* name : {u"b", u"A/..", u"..", u".x", u"50%25", u"c.vcf", u"\u00E9\t"}) {
    const MailFolderPointer made = contacts->AddSubfolder(name, FolderKind::kTasks);
    EXPECT_EQ(made->Name(), name);
    EXPECT_EQ(made->path().parent_path(), contacts->path());
    const MailFolderPointer found = FolderById(own_, made->EntryId());
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->EntryId(), made->EntryId());
    EXPECT_EQ(found->kind(), FolderKind::kTasks);
    EXPECT_EQ(found->parent()->EntryId(), contacts->EntryId());
    EXPECT_EQ(found->files(), made->files());
  }
  EXPECT_THAT(Names(contacts->Subfolders()),
              ElementsAre(u"..", u".x", u"50%25", u"A/..", u"b", u"c.vcf", u"\u00E9\t"));
  WriteCard(contacts->path() / "file");
  for (const char16_t* taken : {u"B", u"a/..", u"file"}) {
    EXPECT_EQ(NumberOf([&] { contacts->AddSubfolder(taken, FolderKind::kMail); }), kObjectExists);
  }
  for (const String& impossible : {String(), String(256, u'x')}) {
    EXPECT_EQ(NumberOf([&] { contacts->AddSubfolder(impossible, FolderKind::kMail); }),
              kInvalidProcedureCall);
  }
  const fs::path tasks = DefaultFolder(own_, kTasks)->path();
  for (const char* name : {"cards", "none", "100%"}) fs::create_directory(tasks / name);
  fs::create_symlink(box_, tasks / "up");
  WriteCard(tasks / "cards/x.vcf");
  const std::vector<MailFolderPointer> found = DefaultFolder(own_, kTasks)->Subfolders();
  EXPECT_THAT(Names(found), ElementsAre(u"100%", u"cards", u"none", u"up"));
  EXPECT_EQ(found[1]->kind(), FolderKind::kContacts) << "what is in it";
  EXPECT_EQ(found[2]->kind(), FolderKind::kTasks) << "what its parent is for";
  const std::vector<MailFolderPointer> above = found[3]->Subfolders();
  EXPECT_THAT(Names(above[1]->Subfolders()), ElementsAre(u"100%", u"cards", u"none"))
      << "a link to a folder above has an end";
}

TEST_F(MailFolderTest, IdsLeadToItemsOfTheMailboxAlone) {
  const MailFolderPointer contacts = DefaultFolder(own_, kContacts);
  ItemFilePointer file =
      contacts->files()->Create("x", ".vcf", ItemClass::kContact, std::string(kCard));
  const String id = contacts->EntryIdOf(*file);
  EXPECT_EQ(ItemById(own_, id)->file, file);
  EXPECT_EQ(ItemById(own_, LowerCase(id))->folder->EntryId(), contacts->EntryId());
  EXPECT_EQ(FolderById(own_, id), nullptr);
  EXPECT_FALSE(ItemById(own_, contacts->EntryId()));
  for (const char* name : {"Shared/bob/Contacts", ".kestrelon"}) {
    fs::create_directories(box_ / name);
    WriteCard(box_ / name / "x.vcf");
  }
  WriteCard(folder_.path() / "x.vcf");
  WriteCard(box_ / "x.vcf");
  WriteCard(box_ / "Contacts/.x.vcf");
  const std::string absolute = box_ / "Contacts/x.vcf", with_nul("Contacts/x.vcf\0", 15);
  for (const std::string& path : std::vector<std::string>{
           "../x.vcf", "Contacts/../Contacts/x.vcf", absolute, "Contacts//x.vcf",
           "./Contacts/x.vcf", "x.vcf", ".kestrelon/x.vcf", "Shared/bob/Contacts/x.vcf",
           "Contacts/.x.vcf", with_nul, "Contacts/", "Contacts/none.vcf", "/", ""}) {
    EXPECT_FALSE(ItemById(own_, IdOf("1i:" + path))) << path;
  }
  for (const char* path :
       {"..", "", "/", "Contacts/", "Contacts/..", "Shared", "Shared/bob", "x.vcf"}) {
    EXPECT_EQ(FolderById(own_, IdOf(std::string("1f:") + path)), nullptr) << path;
  }
  for (const char16_t* text : {u"", u"1", u"ZZ", u"1i:Contacts/x.vcf", u"\u0661\u0661"}) {
    EXPECT_FALSE(ItemById(own_, text));
    EXPECT_EQ(StoreById(text), nullptr);
  }
  EXPECT_TRUE(ItemById(SharedStore(u"bob"), id)) << "the same path in the other mailbox";
}

TEST_F(MailFolderTest, MailboxesOfOthersAreFoundByName) {
  EXPECT_EQ(SharedStore(u"Ann"), nullptr);
  const fs::path real = folder_.path() / "anns";
  fs::create_directories(real / "Contacts");
  fs::create_directories(box_ / "Shared/b%2Fc");
  fs::create_symlink(real, box_ / "Shared/Ann");
  const MailStorePointer ann = SharedStore(u"aNN");
  ASSERT_NE(ann, nullptr);
  EXPECT_EQ(ann->user, u"Ann");
  EXPECT_EQ(SharedStore(u"B/C")->path, box_ / "Shared/b%2Fc");
  EXPECT_EQ(StoreById(ann->StoreId()), ann);
  EXPECT_EQ(StoreById(own_->StoreId()), own_);
  for (const char16_t* user : {u"", u"..", u".", u"Ann/Contacts"}) {
    EXPECT_EQ(SharedStore(user), nullptr);
  }
  if (geteuid() != 0) GTEST_SKIP() << "only root can make links of others";
  fs::create_directory_symlink(folder_.path(), real / "Tasks");
  ASSERT_EQ(lchown((real / "Tasks").c_str(), 12345, 12345), 0);
  EXPECT_THAT(Names(TopFolders(ann)), ElementsAre(u"Contacts"));
  EXPECT_EQ(FolderById(ann, IdOf("1f:Tasks")), nullptr);
  EXPECT_EQ(NumberOf([&] { DefaultFolder(ann, kTasks); }), kObjectNotFound);
}

TEST_F(MailFolderTest, ADamagedSelectionIsReadAsFarAsItIsOne) {
  MarkOutlookOpen(true);
  const String one = IdOf("1i:Contacts/b.vcf"), two = IdOf("1i:Contacts/a.vcf");
  SelectItems({one, two});
  EXPECT_THAT(SelectedItems(), ElementsAre(one, two));
  WriteFileAtomically(box_ / ".kestrelon/selection", "junk\n" + ToUtf8(two) + "\n" + "31\n");
  EXPECT_THAT(SelectedItems(), ElementsAre(two));
}

}  // namespace
}  // namespace kestrelon::desktop
