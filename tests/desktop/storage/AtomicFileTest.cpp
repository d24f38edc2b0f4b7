#include <gtest/gtest.h>
#include <unistd.h>

#include "desktop/storage/AtomicFile.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

namespace fs = std::filesystem;

TEST(AtomicFile, AReadOnlyFileStaysThoughItsFolderCouldReplaceIt) {
  if (geteuid() == 0) GTEST_SKIP() << "root may write read-only files";
  const PrivateFolder folder("kestrelon-storage-test-");
  const fs::path kept = folder.path() / "kept", link = folder.path() / "link";
  const fs::path source = folder.path() / "source";
  WriteFileAtomically(kept, "old");
  WriteFileAtomically(source, "new");
  fs::permissions(kept, fs::perms::owner_read);
  fs::create_symlink(kept, link);
  for (const fs::path& target : {kept, link}) {
    EXPECT_EQ(NumberOf([&] { WriteFileAtomically(target, "new"); }), kPermissionDenied);
    EXPECT_EQ(NumberOf([&] { MoveFileIntoPlace(source, target); }), kPermissionDenied);
  }
  EXPECT_EQ(ReadWholeFile(kept), "old");
  EXPECT_EQ(ReadWholeFile(source), "new");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 3);
  fs::permissions(kept, fs::perms::owner_all);
  MoveFileIntoPlace(source, link);
  EXPECT_EQ(ReadWholeFile(kept), "new");
}

TEST(AtomicFile, AStagedFileReplacesTheExpectedOneOnly) {
  const PrivateFolder folder("kestrelon-test-");
  const fs::path place = folder.path() / "place";
  const auto replace = [&](std::string_view content, bool is_expected) {
    StagedFile staged(place);
    staged.Fill(content, Durability::kRename);
    return staged.ReplaceExpected(
        [=](const struct stat& old) { return is_expected && old.st_size == 5; });
  };
  EXPECT_FALSE(replace("new", true));  // nothing lies there
  WriteFileAtomically(place, "other");
  EXPECT_FALSE(replace("new", false));
  EXPECT_EQ(ReadWholeFile(place), "other");
  EXPECT_TRUE(replace("new", true));
  EXPECT_EQ(ReadWholeFile(place), "new");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
}

TEST(AtomicFile, AStagedFileTakesAFreeNameOnlyAndLeavesNothingBehind) {
  const PrivateFolder folder("kestrelon-storage-test-");
  const fs::path held = folder.path() / "held", free = folder.path() / "free";
  WriteFileAtomically(held, "old");
  fs::create_symlink("nowhere", folder.path() / "dangling");
  const auto place = [&](StagedFile& staged) {
    staged.Fill("new", Durability::kPowerLoss);
    EXPECT_FALSE(staged.PlaceAsNew(held));
    EXPECT_FALSE(staged.PlaceAsNew(folder.path() / "dangling"));
    EXPECT_TRUE(staged.PlaceAsNew(free));
  };
  for (const bool has_name : {true, false}) {
    std::optional<StagedFile> staged;
    has_name ? staged.emplace(held) : staged.emplace(StagedFile::WithoutName(), folder.path());
    place(*staged);
    staged.emplace(StagedFile::WithoutName(), folder.path());
    staged->Fill("dropped", Durability::kRename);
    staged.emplace(held);
    staged->Fill("dropped", Durability::kRename);
    staged.reset();
    EXPECT_EQ(ReadWholeFile(held), "old");
    EXPECT_EQ(ReadWholeFile(free), "new");
    EXPECT_EQ(fs::status(free).permissions(), fs::status(held).permissions());
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 3);
    fs::remove(free);
  }
}

}  // namespace
}  // namespace kestrelon::desktop
