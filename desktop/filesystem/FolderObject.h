// A folder by its path, and the collections of what it holds.
#pragma once

#include <filesystem>
#include <vector>

#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

enum class EntryKind { kFile, kFolder };

// The entries of one kind, by name without regard to case; links to nothing are none. Error
// 76 when the folder is missing, 70 when it may not be read.
std::vector<std::filesystem::path> ListFolder(const std::filesystem::path& folder, EntryKind kind);

// Error 76 when there is no such folder.
Object OpenFolderObject(const std::filesystem::path& path);

class FolderObject final : public ServerObject<FolderObject> {
 public:
  explicit FolderObject(std::filesystem::path path) : path_(std::move(path)) {}
  static const MemberTable<FolderObject>& Members();

 private:
  Value GetName();
  Value GetPath();
  Value GetFiles();
  Value GetSubFolders();

  std::filesystem::path path_;
};

// Files or sub-folders, as they are at each call.
class FolderEntries final : public ServerObject<FolderEntries> {
 public:
  FolderEntries(std::filesystem::path folder, EntryKind kind)
      : folder_(std::move(folder)), kind_(kind) {}
  static const MemberTable<FolderEntries>& Members();
  String TypeName() const override { return kind_ == EntryKind::kFile ? u"Files" : u"Folders"; }
  std::unique_ptr<Enumerator> Enumerate() override;

 private:
  Value GetCount();
  // By name. Error 53 (a file) or 76 (a folder) when it is not there.
  Value Item(const MethodArguments& arguments);

  std::filesystem::path folder_;
  EntryKind kind_;
};

}  // namespace kestrelon::desktop
