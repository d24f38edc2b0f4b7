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

// "https" of "https://…", in lower case; "" for what is no link. One letter and a colon is a drive
// of another system.
std::string SchemeOfLink(StringView text) {
  const StringView scheme = text.substr(0, text.find(u':'));
  if (scheme.size() == text.size() || scheme.size() < 2 || !IsAsciiLetter(scheme.front()))
    return {};
  const bool is_scheme = std::all_of(scheme.begin(), scheme.end(), [](char16_t unit) {
    return IsAsciiLetter(unit) || (unit >= u'0' && unit <= u'9') || unit == u'+' || unit == u'-' ||
           unit == u'.';
  });
  return is_scheme ? ToUtf8(LowerCase(scheme)) : std::string();
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

ShellCode OpenLink(const std::string& link, const std::string& scheme) {
  // Whom a file's own link goes to depends on the file, which the opener looks up.
  const bool has_program = scheme == "file" || desktop::HasProgramForLinks(scheme);
  return has_program ? Open(link) : kNoAssociation;
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
  const std::string scheme = SchemeOfLink(file);
  if (!scheme.empty() && !fs::exists(path, error)) return OpenLink(ToUtf8(file), scheme);
  return OpenPath(path);
}

}  // namespace kestrelon
