#include <fcntl.h>
#include <sys/random.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>

#include "desktop/storage/FileDescriptor.h"
#include "desktop/storage/Paths.h"
#include "platform/TempFileNames.h"
#include "platform/linux/LinuxPlatform.h"

namespace kestrelon {
namespace {

constexpr size_t kLongestEnd = std::string_view("FFFF.tmp").size();

std::string PathOf(const std::string& start, uint16_t number) {
  char end[16];
  std::snprintf(end, sizeof end, "%X.tmp", unsigned{number});
  return start + end;
}

// The number of a new, empty file; 0 when none can be made.
uint16_t MakeEmptyFile(const std::string& start) {
  uint16_t number = 0;
  // From anywhere, so that a folder with many files of this prefix has a free number near by.
  if (getrandom(&number, sizeof number, 0) != sizeof number) return 0;
  for (int attempt = 0; attempt <= std::numeric_limits<uint16_t>::max(); ++attempt, ++number) {
    if (number == 0) continue;
    const std::filesystem::path path = desktop::PathFromText(FromAnsi(PathOf(start, number)));
    const desktop::FileDescriptor file(
        open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (file.get() >= 0) return number;
    if (errno != EEXIST) return 0;
  }
  return 0;
}

}  // namespace

uint32_t LinuxPlatform::GetTempFileNameAnsi(const char* folder, const char* prefix, uint32_t unique,
                                            char* buffer) {
  std::string start = folder;
  const std::string_view lead(prefix, strnlen(prefix, kTempPrefixLength));
  if (start.empty() || !IsFileName(lead)) return 0;
  if (start.back() != '/' && start.back() != '\\') start += '/';
  start += lead;
  if (start.size() + kLongestEnd >= kAnsiPathSize) return 0;
  const auto number = unique == 0 ? MakeEmptyFile(start) : static_cast<uint16_t>(unique);
  if (number == 0) return 0;
  const std::string path = PathOf(start, number);
  std::memcpy(buffer, path.c_str(), path.size() + 1);
  return number;
}

}  // namespace kestrelon
