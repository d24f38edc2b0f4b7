#include "desktop/filesystem/FileObject.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "desktop/filesystem/FileErrors.h"
#include "desktop/filesystem/TextStream.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"

namespace kestrelon::desktop {
namespace {

namespace fs = std::filesystem;

struct stat StatusOf(const fs::path& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) throw FileError(errno, path);
  if (S_ISDIR(status.st_mode)) throw AutomationError(kFileNotFound);
  return status;
}

AutomationError AlreadyExists() {
  return AutomationError(kFileAlreadyExists, u"File already exists");
}

// Renames without ever replacing another file.
void RenameFile(const fs::path& from, const fs::path& to) {
  int result = renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
  if (result != 0 && (errno == EINVAL || errno == ENOSYS)) {
    // A file system without that guarantee.
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(to, ignored))) {
      errno = EEXIST;
    } else {
      result = rename(from.c_str(), to.c_str());
    }
  }
  if (result == 0) return;
  if (errno == EEXIST) throw AlreadyExists();
  throw FileError(errno, from);
}

}  // namespace

Object OpenFileObject(const fs::path& path) {
  StatusOf(path);
  return Object(std::make_shared<FileObject>(AbsolutePath(path).lexically_normal()));
}

void DeleteOneFile(const fs::path& path, bool force) {
  const bool is_protected = (StatusOf(path).st_mode & S_IWUSR) == 0;
  if (is_protected && !force) throw AutomationError(kPermissionDenied);
  if (unlink(path.c_str()) != 0) throw FileError(errno, path);
}

void CopyFileTo(const fs::path& source, const fs::path& target, bool overwrite) {
  StatusOf(source);
  std::error_code ignored;
  if (!overwrite && fs::exists(fs::symlink_status(target, ignored))) throw AlreadyExists();
  const bool is_taken =
      fs::is_directory(target, ignored) || fs::equivalent(source, target, ignored);
  if (is_taken) throw AutomationError(kPermissionDenied);
  const std::string content = ReadWholeFile(source);
  if (overwrite) return WriteFileAtomically(target, content);
  StagedFile file(target);
  file.Fill(content, Durability::kRename);
  if (!file.PlaceAsNew(target)) throw AlreadyExists();
}

const MemberTable<FileObject>& FileObject::Members() {
  static const MemberTable<FileObject> table =
      MemberTable<FileObject>(u"File")
          .Property(u"Name", &FileObject::GetName, &FileObject::PutName)
          .Property(u"Path", &FileObject::GetPath)
          .Property(u"", &FileObject::GetPath)
          .Property(u"Size", &FileObject::GetSize)
          .Method(u"Delete", &FileObject::Delete, {u"Force"})
          .Method(u"OpenAsTextStream", &FileObject::OpenAsTextStream, {u"IOMode", u"Format"});
  return table;
}

Value FileObject::GetName() { return TextFromPath(path_.filename()); }

void FileObject::PutName(const Value& value) {
  const String name = value.ToText();
  const bool is_plain = !name.empty() && name != u"." && name != u".." &&
                        name.find_first_of(u"\\/") == String::npos &&
                        name.find(u'\0') == String::npos;
  if (!is_plain) {
    throw AutomationError(kInvalidProcedureCall, u"\"" + name + u"\" is no name for a file");
  }
  const fs::path renamed = path_.parent_path() / PathFromText(name);
  if (renamed == path_) return;
  RenameFile(path_, renamed);
  path_ = renamed;
}

Value FileObject::GetPath() { return TextFromPath(path_); }

Value FileObject::GetSize() { return static_cast<int64_t>(StatusOf(path_).st_size); }

Value FileObject::Delete(const MethodArguments& arguments) {
  DeleteOneFile(path_, arguments.Has(0) && arguments[0].ToBoolean());
  return {};
}

Value FileObject::OpenAsTextStream(const MethodArguments& arguments) {
  return OpenTextStream(path_, OpenModeOf(arguments[0]), Creation::kNever,
                        TextFormatOf(arguments[1]));
}

}  // namespace kestrelon::desktop
