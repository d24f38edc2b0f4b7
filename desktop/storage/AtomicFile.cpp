#include "desktop/storage/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "automation/Text.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;
namespace {

constexpr int32_t kDeviceError = 57;
constexpr int32_t kDiskFull = 61;

class FileDescriptor {
 public:
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  ~FileDescriptor() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  int get() const { return descriptor_; }

 private:
  int descriptor_;
};

void WriteAll(int descriptor, std::string_view content, const fs::path& path) {
  while (!content.empty()) {
    const ssize_t written = write(descriptor, content.data(), content.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      throw FileError(errno, path);
    }
    content.remove_prefix(static_cast<size_t>(written));
  }
}

// A new file beside `path`, created exclusively by mkstemp, never through a planted link.
std::string CreateBeside(const fs::path& path, int& descriptor) {
  std::string name = (path.parent_path() / ".kestrelon-XXXXXX").string();
  descriptor = mkostemp(name.data(), O_CLOEXEC);
  if (descriptor < 0) throw FileError(errno, path);
  return name;
}

mode_t ModeFor(const fs::path& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) == 0) return status.st_mode & 07777;
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

// A rename asks the folder alone; a file that may not be written is to stay, as it would if it were
// written in place.
void CheckMayReplace(const fs::path& path) {
  if (access(path.c_str(), W_OK) != 0 && errno != ENOENT) throw FileError(errno, path);
}

fs::path FollowLink(const fs::path& path) {
  std::error_code error;
  if (!fs::is_symlink(path, error)) return path;
  const fs::path target = fs::canonical(path, error);
  return error ? path : target;
}

}  // namespace

AutomationError FileError(int error_code, const fs::path& path) {
  const std::string reason = ": " + path.string() + " (" + std::strerror(error_code) + ")";
  switch (error_code) {
    case ENOENT:
      return AutomationError(fs::exists(path.parent_path().empty() ? "." : path.parent_path())
                                 ? kFileNotFound
                                 : kPathNotFound);
    case ENOTDIR:
      return AutomationError(kPathNotFound);
    case EACCES:
    case EPERM:
    case EROFS:
      return AutomationError(kPermissionDenied);
    case ENOSPC:
    case EDQUOT:
      return AutomationError(kDiskFull, FromUtf8("Disk full" + reason));
    default:
      return AutomationError(kDeviceError, FromUtf8("Device I/O error" + reason));
  }
}

void WriteFileAtomically(const fs::path& path, std::string_view content, Durability durability) {
  const fs::path target = FollowLink(path);
  CheckMayReplace(target);
  int raw = -1;
  const std::string temporary = CreateBeside(target, raw);
  try {
    const FileDescriptor file(raw);
    WriteAll(file.get(), content, target);
    if (fchmod(file.get(), ModeFor(target)) != 0) throw FileError(errno, target);
    if (durability == Durability::kPowerLoss && fsync(file.get()) != 0) {
      throw FileError(errno, target);
    }
    if (rename(temporary.c_str(), target.c_str()) != 0) throw FileError(errno, target);
  } catch (...) {
    unlink(temporary.c_str());
    throw;
  }
  if (durability == Durability::kPowerLoss) {
    const fs::path folder = target.parent_path().empty() ? fs::path(".") : target.parent_path();
    const FileDescriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.get() < 0 || fsync(opened.get()) != 0) throw FileError(errno, folder);
  }
}

void MoveFileIntoPlace(const fs::path& source, const fs::path& path) {
  const fs::path target = FollowLink(path);
  CheckMayReplace(target);
  if (chmod(source.c_str(), ModeFor(target)) != 0) throw FileError(errno, source);
  if (rename(source.c_str(), target.c_str()) == 0) return;
  if (errno != EXDEV) throw FileError(errno, target);
  WriteFileAtomically(target, ReadWholeFile(source));
  unlink(source.c_str());
}

std::string ReadWholeFile(const fs::path& path, size_t limit) {
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.get() < 0) throw FileError(errno, path);
  struct stat status {};
  if (fstat(file.get(), &status) != 0) throw FileError(errno, path);
  if (S_ISDIR(status.st_mode)) throw AutomationError(kPermissionDenied);
  std::string content;
  content.resize(static_cast<size_t>(status.st_size) + 1);
  size_t size = 0;
  while (true) {
    if (size > limit) throw AutomationError(kOutOfMemory);
    if (size == content.size()) content.resize(content.size() * 2);
    const ssize_t got = read(file.get(), content.data() + size, content.size() - size);
    if (got < 0) {
      if (errno == EINTR) continue;
      throw FileError(errno, path);
    }
    if (got == 0) break;
    size += static_cast<size_t>(got);
  }
  content.resize(size);
  return content;
}

PrivateFolder::PrivateFolder(std::string_view prefix, const fs::path& parent) {
  std::string name = (parent / (std::string(prefix) + "XXXXXX")).string();
  if (mkdtemp(name.data()) == nullptr) throw FileError(errno, name);
  path_ = name;
}

PrivateFolder::~PrivateFolder() {
  if (keep_) return;
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

fs::path TempFolder() {
  const char* folder = std::getenv("TMPDIR");
  return folder != nullptr && *folder != '\0' ? fs::path(folder) : fs::path("/tmp");
}

}  // namespace kestrelon::desktop
