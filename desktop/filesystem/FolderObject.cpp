#include "desktop/filesystem/FolderObject.h"

#include <algorithm>

#include "desktop/filesystem/FileObject.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;
namespace {

bool LeadsToNothing(const fs::directory_entry& entry) {
  std::error_code ignored;
  return entry.is_symlink(ignored) && entry.status(ignored).type() == fs::file_type::not_found;
}

}  // namespace

std::vector<fs::path> ListFolder(const fs::path& folder, EntryKind kind) {
  std::error_code error;
  std::vector<std::pair<String, fs::path>> named;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code ignored;
    const bool is_folder = entry->is_directory(ignored);
    if (is_folder != (kind == EntryKind::kFolder)) continue;
    if (LeadsToNothing(*entry)) continue;
    named.emplace_back(LowerCase(TextFromPath(entry->path().filename())), entry->path());
  }
  if (error == std::errc::no_such_file_or_directory) throw AutomationError(kPathNotFound);
  if (error) throw FileError(error.value(), folder);
  std::sort(named.begin(), named.end());
  std::vector<fs::path> paths;
  paths.reserve(named.size());
  for (auto& [name, path] : named) paths.push_back(std::move(path));
  return paths;
}

Object OpenFolderObject(const fs::path& path) {
  std::error_code ignored;
  if (!fs::is_directory(path, ignored)) throw AutomationError(kPathNotFound);
  fs::path absolute = AbsolutePath(path).lexically_normal();
  // "/a/b/" is the folder "b".
  if (!absolute.has_filename() && absolute.has_relative_path()) absolute = absolute.parent_path();
  return Object(std::make_shared<FolderObject>(std::move(absolute)));
}

const MemberTable<FolderObject>& FolderObject::Members() {
  static const MemberTable<FolderObject> table =
      MemberTable<FolderObject>(u"Folder")
          .Property(u"Name", &FolderObject::GetName)
          .Property(u"Path", &FolderObject::GetPath)
          .Property(u"", &FolderObject::GetPath)
          .Property(u"Files", &FolderObject::GetFiles)
          .Property(u"SubFolders", &FolderObject::GetSubFolders);
  return table;
}

Value FolderObject::GetName() { return TextFromPath(path_.filename()); }

Value FolderObject::GetPath() { return TextFromPath(path_); }

Value FolderObject::GetFiles() {
  return Object(std::make_shared<FolderEntries>(path_, EntryKind::kFile));
}

Value FolderObject::GetSubFolders() {
  return Object(std::make_shared<FolderEntries>(path_, EntryKind::kFolder));
}

const MemberTable<FolderEntries>& FolderEntries::Members() {
  static const MemberTable<FolderEntries> table =
      MemberTable<FolderEntries>(u"Files")
          .Property(u"Count", &FolderEntries::GetCount)
          .Method(u"Item", &FolderEntries::Item, {u"Key"})
          .Method(u"", &FolderEntries::Item, {u"Key"});
  return table;
}

std::unique_ptr<Enumerator> FolderEntries::Enumerate() {
  std::vector<Value> entries;
  for (const fs::path& path : ListFolder(folder_, kind_)) {
    entries.emplace_back(kind_ == EntryKind::kFile ? Object(std::make_shared<FileObject>(path))
                                                   : Object(std::make_shared<FolderObject>(path)));
  }
  return std::make_unique<VectorEnumerator>(std::move(entries));
}

Value FolderEntries::GetCount() { return static_cast<int64_t>(ListFolder(folder_, kind_).size()); }

Value FolderEntries::Item(const MethodArguments& arguments) {
  const fs::path path = folder_ / PathFromText(arguments.Require(0).ToText()).filename();
  return kind_ == EntryKind::kFile ? OpenFileObject(path) : OpenFolderObject(path);
}

}  // namespace kestrelon::desktop
