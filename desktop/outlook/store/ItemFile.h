// One state of the file of an item.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "desktop/outlook/formats/ItemDocument.h"

namespace kestrelon::desktop {

// What tells one state of a file from another.
struct FileStamp {
  uint64_t inode = 0;
  int64_t size = -1;
  int64_t modified = 0;  // nanoseconds since 1970
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

FileStamp StampOf(const struct stat& status);

// The file as it was read or written. When it changes, its folder has another object for the new
// state; who holds this one is told so by FolderFiles::Replace.
struct ItemFile {
  std::string name;  // within its folder
  ItemClass item_class = ItemClass::kContact;
  FileStamp stamp;
  bool is_gone = false;  // deleted since it was read

  // Small files are kept in memory; mails, and cards with pictures, are read here. When another
  // program has changed such a file, this is its new content, and Replace will refuse. Errors of
  // desktop/storage.
  std::string Content() const;

  std::shared_ptr<const std::filesystem::path> folder;
  std::string kept_content;
  bool is_kept = false;
};

using ItemFilePointer = std::shared_ptr<ItemFile>;

// Whether the name is that of an item: visible, and ending in .vcf, .ics or .eml in any case.
bool IsItemName(std::string_view name);

// `content` is kept when it is small.
void KeepContent(ItemFile& file, std::string content);

// In bytes. Mails, with their attachments, may be larger.
inline constexpr int64_t kLargestCardOrEvent = int64_t{64} << 20;

// Reads the file `name` in the opened `folder`. nullptr when it is not there, may not be read, is
// too large, or is no item.
ItemFilePointer ReadItemFile(int folder, const std::shared_ptr<const std::filesystem::path>& path,
                             const std::string& name);

// The state of the file `name`, links followed; a size of -1 when there is none.
FileStamp StampIn(int folder, const std::string& name);

// Links lead out of the mailbox only where the user has made them: one of another user, in a shared
// mailbox, is as if it were not there.
bool IsOthersLink(int folder, const std::string& name);

}  // namespace kestrelon::desktop
