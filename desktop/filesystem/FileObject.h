// A file by its path.
#pragma once

#include <filesystem>

#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

// Error 53 when there is no such file.
Object OpenFileObject(const std::filesystem::path& path);

// Error 53 when there is no such file, 70 for a write-protected one unless `force`.
void DeleteOneFile(const std::filesystem::path& path, bool force);

// Puts a copy in the place of `target`, whole or not at all. Error 53 when there is no such file,
// 58 when the target is there and may not be replaced, 70 when it is a folder, write-protected or
// the file itself.
void CopyFileTo(const std::filesystem::path& source, const std::filesystem::path& target,
                bool overwrite);

class FileObject final : public ServerObject<FileObject> {
 public:
  explicit FileObject(std::filesystem::path path) : path_(std::move(path)) {}
  static const MemberTable<FileObject>& Members();

 private:
  Value GetName();
  // Renames the file within its folder. Error 58 when the new name is taken.
  void PutName(const Value& value);
  Value GetPath();
  Value GetSize();
  Value Delete(const MethodArguments& arguments);
  Value OpenAsTextStream(const MethodArguments& arguments);

  std::filesystem::path path_;
};

}  // namespace kestrelon::desktop
