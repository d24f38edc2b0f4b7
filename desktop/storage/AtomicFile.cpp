#include "desktop/storage/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <system_error>

#include "automation/Text.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;
namespace {

constexpr const char* kOpenFiles = "/proc/self/fd/";

constexpr int32_t kDeviceError = 57;

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

// The clock's own time: that of the file system stands still for some milliseconds, and two states
// of a file could look alike.
void SetExactTime(int descriptor) {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  const timespec times[] = {now, now};
  futimens(descriptor, times);
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

StagedFile::StagedFile(const fs::path& place) : place_(FollowLink(place)) {
  CheckMayReplace(place_);
  MakeHidden();
}

StagedFile::StagedFile(WithoutName, const fs::path& folder) : place_(folder / "") {
  // The way to a name leads through /proc.
  static const bool has_proc = access(kOpenFiles, X_OK) == 0;
  const int descriptor = has_proc ? open(folder.c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, 0600) : -1;
  if (descriptor >= 0) {
    file_.emplace(descriptor);
  } else {
    MakeHidden();
  }
}

// Created exclusively, never through a planted link.
void StagedFile::MakeHidden() {
  name_ = (place_.parent_path() / ".kestrelon-XXXXXX").string();
  const int descriptor = mkostemp(name_.data(), O_CLOEXEC);
  if (descriptor < 0) {
    const int error = errno;
    name_.clear();
    throw FileError(error, place_);
  }
  file_.emplace(descriptor);
}

void StagedFile::Fill(std::string_view content, Durability durability) {
  WriteAll(descriptor(), content, place_);
  const mode_t mode = ModeFor(place_.has_filename() ? place_ : fs::path());
  if (fchmod(descriptor(), mode) != 0) throw FileError(errno, place_);
  SetExactTime(descriptor());
  if (durability == Durability::kPowerLoss && fsync(descriptor()) != 0) {
    throw FileError(errno, place_);
  }
}

StagedFile::~StagedFile() { Discard(); }

void StagedFile::Discard() {
  if (!name_.empty()) unlink(name_.c_str());
  name_.clear();
}

void StagedFile::Replace() {
  if (rename(name_.c_str(), place_.c_str()) != 0) throw FileError(errno, place_);
  name_.clear();
}

bool StagedFile::ReplaceExpected(const std::function<bool(const struct stat&)>& is_expected) {
  const auto change_places = [this] {
    return renameat2(AT_FDCWD, name_.c_str(), AT_FDCWD, place_.c_str(), RENAME_EXCHANGE) == 0;
  };
  struct stat other {};
  if (change_places()) {
    if (stat(name_.c_str(), &other) == 0 && is_expected(other)) return true;
    // Unless something newer lies there again.
    struct stat ours {
    }, present{};
    const bool is_ours = fstat(descriptor(), &ours) == 0 && stat(place_.c_str(), &present) == 0 &&
                         ours.st_ino == present.st_ino;
    if (is_ours) change_places();
    return false;
  }
  if (errno == ENOENT) return false;
  if (stat(place_.c_str(), &other) != 0 || !is_expected(other)) return false;
  Replace();
  return true;
}

bool StagedFile::PlaceAsNew(const fs::path& place) {
  if (name_.empty()) {
    const std::string open_file = kOpenFiles + std::to_string(descriptor());
    const int flags = AT_SYMLINK_FOLLOW;
    if (linkat(AT_FDCWD, open_file.c_str(), AT_FDCWD, place.c_str(), flags) == 0) return true;
  } else if (renameat2(AT_FDCWD, name_.c_str(), AT_FDCWD, place.c_str(), RENAME_NOREPLACE) == 0) {
    name_.clear();
    return true;
  }
  // Not every file system knows that flag; the hidden name then goes with this object.
  if (!name_.empty() && errno == EINVAL && link(name_.c_str(), place.c_str()) == 0) return true;
  if (errno == EEXIST) return false;
  throw FileError(errno, place);
}

void SyncFolder(const fs::path& folder) {
  const FileDescriptor opened(
      open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.get() < 0 || fsync(opened.get()) != 0) throw FileError(errno, folder);
}

void WriteFileAtomically(const fs::path& path, std::string_view content, Durability durability) {
  StagedFile file(path);
  file.Fill(content, durability);
  file.Replace();
  if (durability == Durability::kPowerLoss) SyncFolder(file.place().parent_path());
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
