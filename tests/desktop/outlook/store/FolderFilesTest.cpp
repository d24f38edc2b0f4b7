#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <random>

#include "desktop/outlook/store/FolderFiles.h"
#include "desktop/storage/AtomicFile.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

namespace fs = std::filesystem;
using Outcome = FolderFiles::ReplaceOutcome;
using testing::ElementsAre;
using testing::HasSubstr;

std::string CardOf(std::string_view name, std::string_view note = "") {
  return "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:" + std::string(name) + "\r\nNOTE:" + std::string(note) +
         "\r\nEND:VCARD\r\n";
}

class FolderFilesTest : public testing::Test {
 protected:
  // As another program writes: in place.
  void WriteAsOther(const std::string& name, std::string_view content) const {
    FILE* file = fopen((path_ / name).c_str(), "w");
    fwrite(content.data(), 1, content.size(), file);
    fclose(file);
  }
  void SetAge(const std::string& name, int hours) const {
    fs::last_write_time(path_ / name, fs::file_time_type::clock::now() - std::chrono::hours(hours));
  }
  ItemFilePointer Create(FolderFiles& files, std::string_view uid) const {
    return files.Create(uid, ".vcf", ItemClass::kContact, CardOf(uid));
  }
  std::vector<std::string> Names(FolderFiles& files) const {
    std::vector<std::string> names;
    for (size_t i = 0; i < files.Count(); ++i) names.push_back(files.At(i)->name);
    return names;
  }
  std::vector<std::string> NamesAfterRestart() const {
    FolderFiles files(path_);
    return Names(files);
  }

  PrivateFolder folder_{"kestrelon-store-test-"};
  fs::path path_ = folder_.path();
  FolderFiles files_{path_};
};

TEST_F(FolderFilesTest, TheOrderIsThatOfCreationWhateverOthersDo) {
  WriteAsOther("young.vcf", CardOf("young"));
  WriteAsOther("old.vcf", CardOf("old"));
  SetAge("old.vcf", 9);
  Create(files_, "b");  // before anything is listed
  ItemFilePointer a = Create(files_, "a");
  EXPECT_THAT(Names(files_), ElementsAre("b.vcf", "a.vcf", "old.vcf", "young.vcf"));
  SetAge("young.vcf", 20);
  WriteAsOther("new.VCF", CardOf("new"));
  EXPECT_EQ(files_.Replace(a, CardOf("a", "changed")), Outcome::kReplaced);
  const auto all = ElementsAre("b.vcf", "a.vcf", "old.vcf", "young.vcf", "new.VCF");
  EXPECT_THAT(Names(files_), all);
  EXPECT_THAT(NamesAfterRestart(), all);
  EXPECT_EQ(files_.Remove(a), Outcome::kReplaced);
  EXPECT_TRUE(a->is_gone);
  fs::remove(path_ / "old.vcf");
  Create(files_, "a");
  EXPECT_THAT(Names(files_), ElementsAre("b.vcf", "young.vcf", "new.VCF", "a.vcf"));
  EXPECT_THAT(NamesAfterRestart(), ElementsAre("b.vcf", "young.vcf", "new.VCF", "a.vcf"));
}

TEST_F(FolderFilesTest, DeadLinesOfTheOrderAreClearedAway) {
  std::string order = "two.vcf\n";
  for (int i = 0; i < 5000; ++i) order += "dead" + std::to_string(i) + ".vcf\n";
  WriteAsOther(".kestrelon-order", order + "one.vcf\n");
  for (const char* name : {"one.vcf", "two.vcf", "line\nbreak.vcf"})
    WriteAsOther(name, CardOf("x"));
  const auto expected = ElementsAre("two.vcf", "one.vcf", "line\nbreak.vcf");
  EXPECT_THAT(Names(files_), expected);
  EXPECT_EQ(ReadWholeFile(path_ / ".kestrelon-order"), "two.vcf\none.vcf\n");
  EXPECT_THAT(NamesAfterRestart(), expected);
}

TEST_F(FolderFilesTest, ADamagedOrderIsMended) {
  for (const char* name : {"one.vcf", "two.vcf", "three.vcf"}) WriteAsOther(name, CardOf("x"));
  WriteAsOther(".kestrelon-order", "three.vcf\ntwo.vcf\nthr");
  EXPECT_THAT(Names(files_), ElementsAre("three.vcf", "two.vcf", "one.vcf"));
  EXPECT_THAT(NamesAfterRestart(), ElementsAre("three.vcf", "two.vcf", "one.vcf"));
  fs::remove(path_ / ".kestrelon-order");
  ASSERT_EQ(mkfifo((path_ / ".kestrelon-order").c_str(), 0600), 0);
  EXPECT_EQ(NamesAfterRestart().size(), 3u);
}

TEST_F(FolderFilesTest, OnlyWholeFilesOfItemsCount) {
  const std::string picture(100'000, 'p');
  WriteAsOther("big.vcf", CardOf("big", picture));
  WriteAsOther("mail.EML", "Subject: x\r\n\r\n");
  for (const char* name : {"text.vcf", ".hidden.vcf", "card.txt", ".vcf"}) WriteAsOther(name, "x");
  WriteAsOther("huge.vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:x\r\nEND:VCARD\r\n");
  fs::resize_file(path_ / "huge.vcf", size_t{65} << 20);
  fs::create_directory(path_ / "folder.vcf");
  ASSERT_EQ(mkfifo((path_ / "pipe.vcf").c_str(), 0600), 0);
  fs::create_symlink("nowhere", path_ / "dangling.vcf");
  for (const char* name : {".kestrelon-AbCdEf", ".kestrelon-FeDcBa"}) WriteAsOther(name, "half");
  SetAge(".kestrelon-AbCdEf", 30);
  EXPECT_EQ(files_.Count(), 2u);
  EXPECT_EQ(files_.Find("big.vcf")->Content(), CardOf("big", picture));
  EXPECT_EQ(files_.Find("mail.EML")->item_class, ItemClass::kMail);
  EXPECT_EQ(files_.Find("mail.EML")->Content(), "Subject: x\r\n\r\n");
  FolderFiles unread(path_);
  for (const char* name : {"text.vcf", "../x.vcf", "huge.vcf", "pipe.vcf", "", "folder.vcf"}) {
    EXPECT_EQ(unread.Find(name), nullptr) << name;
    EXPECT_EQ(files_.Find(name), nullptr) << name;
  }
  EXPECT_EQ(unread.Find("big.vcf"), unread.Find("big.vcf"));
  EXPECT_FALSE(fs::exists(path_ / ".kestrelon-AbCdEf"));
  EXPECT_TRUE(fs::exists(path_ / ".kestrelon-FeDcBa")) << "another process may be writing it";
}

TEST_F(FolderFilesTest, ChangesOfOthersAreSeenAndOwnOnesCostNoWalk) {
  for (const char* name : {"a.vcf", "b.vcf", "c.vcf"}) WriteAsOther(name, CardOf(name));
  ASSERT_EQ(files_.Count(), 3u);  // just after a change of another program
  const ItemFilePointer a = files_.Find("a.vcf"), b = files_.Find("b.vcf");
  const ItemFilePointer c = files_.Find("c.vcf");
  WriteAsOther("a.vcf", CardOf("a", "in place: the folder has not changed"));
  ItemFilePointer own = Create(files_, "own");
  EXPECT_EQ(files_.Replace(own, CardOf("own", "again")), Outcome::kReplaced);
  EXPECT_EQ(files_.Find("a.vcf"), a) << "no walk";
  fs::remove(path_ / "b.vcf");
  ItemFilePointer second = Create(files_, "second");  // must not hide the removal
  EXPECT_THAT(Names(files_), ElementsAre(a->name, "c.vcf", "own.vcf", "second.vcf"));
  EXPECT_TRUE(b->is_gone);
  EXPECT_EQ(files_.Find("c.vcf"), c);
  EXPECT_THAT(files_.Find("a.vcf")->Content(), HasSubstr("in place"));
  WriteAsOther("c.vcf", CardOf("c", "in place"));
  Create(files_, "third");
  EXPECT_EQ(files_.Find("c.vcf"), c) << "no walk for what others changed before";
  EXPECT_EQ(a->Content(), CardOf("a.vcf")) << "the state that was read";
}

TEST_F(FolderFilesTest, NoChangeIsTooSoonAfterAnotherToBeSeen) {
  FolderFiles other(path_);
  for (size_t i = 0; i < 50; ++i) {
    Create(files_, "a" + std::to_string(i));
    Create(other, "b" + std::to_string(i));
    ASSERT_EQ(files_.Count(), 3 * i + 2);
    WriteAsOther("c" + std::to_string(i) + ".vcf", CardOf("c"));
    ASSERT_EQ(files_.Count(), 3 * i + 3);
    ASSERT_EQ(other.Count(), 3 * i + 3);
  }
  EXPECT_EQ(Names(files_), Names(other));
}

TEST_F(FolderFilesTest, NothingIsWrittenOverAStateThatWasNotRead) {
  FolderFiles other(path_);
  ItemFilePointer ours = Create(files_, "x"), theirs = other.Find("x.vcf"), third = theirs;
  EXPECT_EQ(other.Replace(theirs, CardOf("x", "theirs")), Outcome::kReplaced);
  EXPECT_EQ(other.Replace(third, CardOf("x", "third")), Outcome::kChangedMeanwhile)
      << "also within one process";
  EXPECT_EQ(files_.Remove(ours), Outcome::kChangedMeanwhile);
  EXPECT_EQ(ours->Content(), CardOf("x", "theirs"));
  EXPECT_EQ(files_.Replace(ours, CardOf("x", "merged")), Outcome::kReplaced);
  EXPECT_EQ(ReadWholeFile(path_ / "x.vcf"), CardOf("x", "merged"));
  fs::remove(path_ / "x.vcf");
  EXPECT_EQ(files_.Replace(ours, CardOf("x")), Outcome::kGone);
  EXPECT_TRUE(ours->is_gone);
  EXPECT_EQ(files_.Count(), 0u);
  const std::string too_long(201, 'u');
  Create(files_, "x");
  for (const std::string_view uid : {"x", "", "a/b", "../x", ".x", "\xC3\xA4", too_long.c_str()}) {
    const ItemFilePointer made = Create(other, uid);
    EXPECT_EQ(made->name.size(), 36u) << made->name;
    EXPECT_EQ(ReadWholeFile(path_ / made->name), CardOf(uid));
  }
  EXPECT_EQ(files_.Count(), 8u);
}

TEST_F(FolderFilesTest, ALinkStaysAndItsFileIsWritten) {
  const PrivateFolder elsewhere("kestrelon-store-test-");
  WriteFileAtomically(elsewhere.path() / "real", CardOf("linked"));
  fs::create_symlink(elsewhere.path() / "real", path_ / "link.vcf");
  ItemFilePointer link = files_.Find("link.vcf");
  ASSERT_NE(link, nullptr);
  EXPECT_EQ(files_.Replace(link, CardOf("linked", "new")), Outcome::kReplaced);
  EXPECT_EQ(ReadWholeFile(elsewhere.path() / "real"), CardOf("linked", "new"));
  EXPECT_EQ(files_.Remove(link), Outcome::kReplaced);
  EXPECT_TRUE(fs::exists(elsewhere.path() / "real"));
  if (geteuid() != 0) GTEST_SKIP() << "only root can make links of others";
  fs::create_symlink(elsewhere.path() / "real", path_ / "link.vcf");
  ASSERT_EQ(lchown((path_ / "link.vcf").c_str(), 12345, 12345), 0);
  EXPECT_EQ(files_.Find("link.vcf"), nullptr);
  EXPECT_EQ(files_.Count(), 0u);
}

TEST_F(FolderFilesTest, AFolderThatMayNotBeWrittenIsReadAndSaysWhatToDo) {
  for (const char* name : {"b.vcf", "a.vcf"}) WriteAsOther(name, CardOf(name));
  SetAge("b.vcf", 1);
  fs::permissions(path_, fs::perms(0555));
  const bool is_root = geteuid() == 0;
  ASSERT_EQ(seteuid(is_root ? 65534 : geteuid()), 0);
  EXPECT_THAT(Names(files_), ElementsAre("b.vcf", "a.vcf"));
  ItemFilePointer a = files_.Find("a.vcf");
  const AutomationError error = FailureOf([&] { Create(files_, "c"); });
  EXPECT_EQ(NumberOf([&] { files_.Replace(a, CardOf("x")); }), kPermissionDenied);
  EXPECT_EQ(NumberOf([&] { files_.Remove(a); }), kPermissionDenied);
  ASSERT_EQ(seteuid(is_root ? 0 : geteuid()), 0);
  fs::permissions(path_, fs::perms(0700));
  EXPECT_EQ(error.number(), kPermissionDenied);
  EXPECT_THAT(error.what(), HasSubstr("Make that folder writable"));
  EXPECT_EQ(Names(files_).size(), 2u);
  EXPECT_EQ(NumberOf([&] { FolderFiles(path_ / "none").Count(); }), kPathNotFound);
}

// Runs `work` in a process of its own that ends without the test's clean-up.
template <typename Work>
pid_t Fork(Work work) {
  const pid_t child = fork();
  if (child == 0) {
    work();
    _exit(0);
  }
  return child;
}

void WaitFor(pid_t child) {
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

TEST_F(FolderFilesTest, TwoProcessesLoseNothing) {
  constexpr int kRounds = 40;
  Create(files_, "counter");
  const auto work = [&] {
    FolderFiles files(path_);
    for (int i = 0; i < kRounds; ++i) {
      Create(files, "same" + std::to_string(i));
      ItemFilePointer counter = files.Find("counter.vcf");
      while (files.Replace(counter, counter->Content() + "+") != Outcome::kReplaced) continue;
      ItemFilePointer brief = Create(files, "brief");
      if (files.Remove(brief) != Outcome::kReplaced) _exit(1);
    }
  };
  const pid_t first = Fork(work), second = Fork(work);
  for (size_t seen = 0, now = 0, i = 0; i < 200; ++i, seen = now) {
    now = files_.Count();
    EXPECT_GE(now + 2, seen) << "only the brief ones go";
  }
  WaitFor(first);
  WaitFor(second);
  EXPECT_EQ(files_.Count(), 2u * kRounds + 1);
  EXPECT_EQ(files_.Find("counter.vcf")->Content(),
            CardOf("counter") + std::string(2 * kRounds, '+'));
  EXPECT_EQ(Names(files_), NamesAfterRestart());
}

TEST_F(FolderFilesTest, AKilledWriterLeavesWholeFiles) {
  const std::string old_card = CardOf("x", std::string(100'000, 'o'));
  const std::string new_card = CardOf("x", std::string(100'000, 'n'));
  files_.Create("x", ".vcf", ItemClass::kContact, old_card);
  std::mt19937 random(7);
  size_t count = 1;
  for (int round = 0; round < 30; ++round) {
    const pid_t child = Fork([&] {
      FolderFiles files(path_);
      while (true) {
        ItemFilePointer x = files.Find("x.vcf");
        files.Replace(x, x->Content() == old_card ? new_card : old_card);
        files.Create("", ".vcf", ItemClass::kContact, old_card);
      }
    });
    while (files_.Count() == count) usleep(100);
    usleep(random() % 5000);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    FolderFiles files(path_);
    ASSERT_GT(files.Count(), count);
    count = files.Count();
    for (size_t i = 0; i < count; ++i) {
      const std::string content = files.At(i)->Content();
      ASSERT_TRUE(content == old_card || (content == new_card && files.At(i)->name == "x.vcf"));
    }
    EXPECT_EQ(files.At(0)->name, "x.vcf");
  }
}

}  // namespace
}  // namespace kestrelon::desktop
