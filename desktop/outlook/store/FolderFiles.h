// The items of one folder: a file each, in a stable order.
//
// A file is an item when its name ends in .vcf, .ics or .eml and its content is such an item; names
// that begin with "." and all else are left alone. The order is that of creation, kept by name in
// ".kestrelon-order"; files of other programs come after the known ones, oldest first, and keep the
// place where they were first seen.
//
// Other programs may change the folder at any time. It is looked at again whenever its time has
// changed, and no write goes over a file that is not as it was read.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "desktop/outlook/formats/ItemDocument.h"

namespace kestrelon::desktop {

// What tells one state of a file from another.
struct FileStamp {
  uint64_t inode = 0;
  int64_t size = -1;
  int64_t modified = 0;  // nanoseconds since 1970
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

struct ItemFile {
  std::string name;  // within its folder
  ItemClass item_class = ItemClass::kContact;
  FileStamp stamp;  // of the state that `content` holds
  std::string content;
  bool is_gone = false;  // deleted since it was read
};

using ItemFilePointer = std::shared_ptr<ItemFile>;

class FolderFiles {
 public:
  // Nothing is read until something is asked. The folder must exist by then.
  explicit FolderFiles(std::filesystem::path folder);
  ~FolderFiles();
  FolderFiles(const FolderFiles&) = delete;
  FolderFiles& operator=(const FolderFiles&) = delete;

  const std::filesystem::path& folder() const { return folder_; }

  // As the folder is now. Each call looks whether others have changed it.
  size_t Count();
  // Constant time. nullptr past the end. `index` counts from 0.
  ItemFilePointer At(size_t index);
  // By file name, without reading the others when nothing is read yet; nullptr when there is none.
  ItemFilePointer Find(std::string_view name);

  // A new file at the end of the order, named UID + extension (".vcf") where that is safe as a file
  // name and free, else by fresh random digits. It is there whole, and synced, or not at all.
  ItemFilePointer Create(std::string_view uid, std::string_view extension, ItemClass item_class,
                         std::string content);

  enum class ReplaceOutcome {
    kReplaced,
    kChangedMeanwhile,  // nothing was written; `file` now holds the state that lies there
    kGone               // nothing was written; another program deleted it
  };
  // Puts new content into the place of what was read, synced.
  ReplaceOutcome Replace(ItemFile& file, std::string content);
  // Deletes the file, unless it is not as it was read.
  ReplaceOutcome Remove(ItemFile& file);

 private:
  std::filesystem::path folder_;
};

}  // namespace kestrelon::desktop
