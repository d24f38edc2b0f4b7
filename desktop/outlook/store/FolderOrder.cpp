#include "desktop/outlook/store/FolderOrder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "desktop/storage/AtomicFile.h"

namespace kestrelon::desktop {
namespace {

constexpr const char* kOrderFile = ".kestrelon-order";

std::string LinesOf(const std::vector<std::string>& names) {
  std::string lines;
  for (const std::string& name : names) {
    if (name.find('\n') == std::string::npos) lines += name + '\n';
  }
  return lines;
}

}  // namespace

FolderOrder::FolderOrder(const std::filesystem::path& folder) {
  // A pipe of that name must not make us wait.
  std::error_code error;
  if (std::filesystem::is_regular_file(folder / kOrderFile, error)) {
    IgnoreFailures([&] { text_ = ReadWholeFile(folder / kOrderFile); });
  }
  const std::string_view text = text_;
  for (size_t start = 0; start < text.size();) {
    const size_t end = std::min(text.find('\n', start), text.size());
    lines_.push_back(text.substr(start, end - start));
    start = end + 1;
  }
}

void AppendToOrder(int folder, const std::vector<std::string>& names) {
  std::string lines = LinesOf(names);
  if (lines.empty()) return;
  constexpr int kFlags = O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  const FileDescriptor file(openat(folder, kOrderFile, kFlags, 0666));
  struct stat before {};
  if (file.get() < 0 || fstat(file.get(), &before) != 0 || !S_ISREG(before.st_mode)) return;
  char last = '\n';
  if (before.st_size > 0 && pread(file.get(), &last, 1, before.st_size - 1) != 1) return;
  if (last != '\n') lines.insert(0, 1, '\n');
  const ssize_t written = write(file.get(), lines.data(), lines.size());
  // Half a line would swallow the next one.
  if (written != static_cast<ssize_t>(lines.size()) && ftruncate(file.get(), before.st_size) != 0) {
    return;
  }
}

void RewriteOrder(const std::filesystem::path& folder, const std::vector<std::string>& names) {
  IgnoreFailures(
      [&] { WriteFileAtomically(folder / kOrderFile, LinesOf(names), Durability::kPowerLoss); });
}

}  // namespace kestrelon::desktop
