// A file by its path.
#pragma once

#include <filesystem>

#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

// Error 53 when there is no such file.
Object OpenFileObject(const std::filesystem::path& path);

// Error 53 when there is no such file, 70 for a write-protected one unless `force`.
void DeleteOneFile(const std::filesystem::path& path, bool force);

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
