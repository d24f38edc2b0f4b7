#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "desktop/opener/Opener.h"
#include "desktop/storage/Paths.h"
#include "platform/linux/LinuxPlatform.h"

namespace kestrelon {
namespace {

namespace fs = std::filesystem;

// Result codes of the shell; what is over 32 is a success.
enum ShellCode : int32_t {
  kNoSuchFile = 2,
  kNoSuchFolder = 3,
  kAccessDenied = 5,
  kBrokenAssociation = 27,
  kNoAssociation = 31,
  kOpened = 33,
};

bool IsAsciiLetter(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

// "https://…", "mailto:…". One letter and a colon is a drive of another system.
bool IsLink(StringView text) {
  const size_t colon = text.find(u':');
  if (colon == StringView::npos || colon < 2 || !IsAsciiLetter(text.front())) return false;
  return std::all_of(text.begin(), text.begin() + static_cast<ptrdiff_t>(colon), [](char16_t unit) {
    return IsAsciiLetter(unit) || (unit >= u'0' && unit <= u'9') || unit == u'+' || unit == u'-' ||
           unit == u'.';
  });
}

ShellCode Open(const std::string& target) {
  switch (desktop::OpenForUser(target)) {
    case desktop::OpenOutcome::kStarted:
      return kOpened;
    case desktop::OpenOutcome::kNoOpener:
      return kNoAssociation;
    case desktop::OpenOutcome::kCannotStart:
      break;
  }
  return kBrokenAssociation;
}

ShellCode OpenPath(const fs::path& path) {
  // `errno` of access stands for the file as it would be opened; a link to nothing is not there.
  if (access(path.c_str(), R_OK) != 0) {
    if (errno == EACCES) return kAccessDenied;
    std::error_code error;
    return fs::is_directory(path.parent_path(), error) ? kNoSuchFile : kNoSuchFolder;
  }
  return desktop::HasProgramForFile(path) ? Open(path) : kNoAssociation;
}

}  // namespace

int32_t LinuxPlatform::ShellExecute(SystemHandle /*window*/, const String& /*operation*/,
                                    const String& file, const String& /*parameters*/,
                                    const String& /*directory*/, int32_t /*show*/) {
  // A NUL would end the name that the system sees, and another file would be opened.
  if (file.empty() || file.find(u'\0') != String::npos) return kNoSuchFile;
  std::error_code error;
  const fs::path path = fs::absolute(desktop::PathFromText(file), error);
  // A file's own name may begin like a link ("notes:today.txt").
  if (IsLink(file) && !fs::exists(path, error)) return Open(ToUtf8(file));
  return OpenPath(path);
}

}  // namespace kestrelon
