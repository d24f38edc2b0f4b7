// The items of one folder: a file each, in a stable order.
//
// A file is an item when its name ends in .vcf, .ics or .eml and its content is such an item; names
// that begin with "." and all else are left alone. The order is that of creation, kept by name in
// ".kestrelon-order"; files of other programs come after the known ones, oldest first, and keep the
// place where they were first seen.
//
// Other programs may change the folder at any time. It is looked at again whenever its time has
// changed, and no write goes over a file that is not as it was read. Writers wait for each other by
// a lock on the folder (flock). Links to files are followed; those of other users are left alone.
//
// Errors are those of desktop/storage, with the folder and what to do in the description.
#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "desktop/outlook/store/ItemFile.h"

namespace kestrelon::desktop {

class FolderFiles {
 public:
  // Nothing is read until something is asked. The folder must exist by then.
  explicit FolderFiles(std::filesystem::path folder);
  ~FolderFiles();
  FolderFiles(const FolderFiles&) = delete;
  FolderFiles& operator=(const FolderFiles&) = delete;

  const std::filesystem::path& folder() const { return folder_; }

  // As the folder is now: looks whether others have changed it.
  size_t Count();
  // As the folder was at the last look, so that a walk by index meets every item once. Constant
  // time. nullptr past the end. `index` counts from 0.
  ItemFilePointer At(size_t index);
  // Looks whether others have changed the folder. Costs nothing before the folder is read.
  void LookAgain();
  // By file name, without reading the others when nothing is read yet; nullptr when there is none.
  ItemFilePointer Find(std::string_view name);

  // A new file at the end of the order, named UID + extension (".vcf") where that is safe as a file
  // name and free, else by fresh random digits. It is there whole, and synced, or not at all.
  ItemFilePointer Create(std::string_view uid, std::string_view extension, ItemClass item_class,
                         std::string content);

  enum class ReplaceOutcome {
    kReplaced,
    kChangedMeanwhile,  // nothing was written; `file` is now the state that lies there
    kGone               // nothing was written; another program deleted it, or it is no item now
  };
  // Puts new content into the place of what was read, synced. `file` is the new state then; others
  // who hold the old one are told when they write.
  ReplaceOutcome Replace(ItemFilePointer& file, std::string content);
  // Deletes the file, unless it is not as it was read.
  ReplaceOutcome Remove(ItemFilePointer& file);

 private:
  static constexpr size_t kNoRank = ~size_t{0};
  // `rank` rises along the order.
  struct Slot {
    ItemFilePointer file;
    size_t rank = kNoRank;
  };

  void Walk();
  void ReadItems(int folder);
  void Arrange(int folder);
  std::vector<Slot*> ArrangeAsListed(size_t& lines);
  // Nothing of others may get lost in a change of our own: see the definition.
  void ChangeFolder(int folder, const std::function<void()>& change);
  bool IsAsRead(int folder, const ItemFile& file) const;
  ReplaceOutcome TakeOver(int folder, ItemFilePointer& file);
  void Keep(ItemFilePointer file);
  void Forget(const std::string& name);

  std::filesystem::path folder_;
  std::shared_ptr<const std::filesystem::path> shared_folder_;
  bool is_read_ = false;
  FileStamp known_;  // of the folder, as of the walk or our last change; empty when out of step
  std::unordered_map<std::string, Slot> slots_;  // also files found before the walk
  std::deque<Slot*> order_;
  size_t next_rank_ = 0;
};

}  // namespace kestrelon::desktop
