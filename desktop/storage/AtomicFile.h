// Files that are written whole or not at all, and private temporary files and folders.
//
// Paths are UTF-8. Failures are AutomationErrors: 76 when the folder is missing, 70 when it or the
// file may not be written, 53 for a missing file, 61 "Disk full", otherwise 57 "Device I/O error"
// with the system's reason.
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "automation/AutomationError.h"
#include "desktop/storage/FileDescriptor.h"

namespace kestrelon::desktop {

inline constexpr int32_t kDiskFull = 61;

enum class Durability {
  kRename,     // a reader sees the old file or the new one
  kPowerLoss,  // the same after a crash of the machine: file and folder are synced
};

// The automation error of a failed system call on `path`.
AutomationError FileError(int error_code, const std::filesystem::path& path);

// Replaces `path` by `content`: a new file beside it, created exclusively, then renamed. The mode
// of an existing file is kept. A link at `path` is followed, its target replaced.
void WriteFileAtomically(const std::filesystem::path& path, std::string_view content,
                         Durability durability = Durability::kRename);

// A whole file under a hidden name (".kestrelon-XXXXXX") beside its place. It goes away again
// unless it is put there; so does one that it has replaced.
class StagedFile {
 public:
  // Makes the hidden file, still empty. A link at `place` is followed.
  explicit StagedFile(const std::filesystem::path& place);
  // For PlaceAsNew alone: a file in `folder` that has no name before, so that nothing of it can be
  // left behind. Where the system has no such files, it has a hidden name.
  struct WithoutName {};
  StagedFile(WithoutName without_name, const std::filesystem::path& folder);
  ~StagedFile();
  StagedFile(const StagedFile&) = delete;
  StagedFile& operator=(const StagedFile&) = delete;

  const std::filesystem::path& place() const { return place_; }
  // Of the file: its inode, size and time are those that it will have in its place.
  int descriptor() const { return file_->get(); }

  // Once. The mode of the file in its place is taken over. Synced for kPowerLoss, but the folder is
  // not.
  void Fill(std::string_view content, Durability durability);
  // Into its place, whatever lies there.
  void Replace();
  // Into its place when the file there is the one that was expected; false otherwise, and what lies
  // there stays. Nothing that others put there is lost, however late: the two files change places
  // and the other one is looked at then. Where the file system cannot do that, the look comes
  // first.
  bool ReplaceExpected(const std::function<bool(const struct stat&)>& is_expected);
  // Removes what still has the hidden name: this file, or the one that it replaced.
  void Discard();
  // Under a name in the same folder that nothing holds; false when something does.
  bool PlaceAsNew(const std::filesystem::path& place);

 private:
  void MakeHidden();

  std::filesystem::path place_;
  std::string name_;  // "" without one
  std::optional<FileDescriptor> file_;
};

// Makes what was put into or taken out of the folder last through a power loss.
void SyncFolder(const std::filesystem::path& folder);

// Puts the finished file `source` in the place of `path`, by rename where both lie on one file
// system, else by an atomic copy. `source` is gone afterwards.
void MoveFileIntoPlace(const std::filesystem::path& source, const std::filesystem::path& path);

// The whole content. `limit` in bytes; a larger file is error 7 "Out of memory".
std::string ReadWholeFile(const std::filesystem::path& path, size_t limit = size_t{1} << 31);

// $TMPDIR, or /tmp.
std::filesystem::path TempFolder();

// A folder of its own (mode 0700) in the temporary folder, removed with everything in it.
class PrivateFolder {
 public:
  // `prefix` is a plain name ("kestrelon-word-").
  explicit PrivateFolder(std::string_view prefix) : PrivateFolder(prefix, TempFolder()) {}
  PrivateFolder(std::string_view prefix, const std::filesystem::path& parent);
  ~PrivateFolder();
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // From now on the folder stays; for files that are handed to the user.
  void Keep() { keep_ = true; }

 private:
  std::filesystem::path path_;
  bool keep_ = false;
};

}  // namespace kestrelon::desktop
