#include "desktop/outlook/store/ItemFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <optional>

#include "desktop/outlook/formats/CalendarDocument.h"
#include "desktop/outlook/formats/ContactDocument.h"
#include "desktop/storage/AtomicFile.h"

namespace kestrelon::desktop {
namespace {

constexpr size_t kKeptInMemory = size_t{16} << 10;

bool EndsIn(std::string_view name, std::string_view extension) {
  if (name.size() <= extension.size()) return false;
  name.remove_prefix(name.size() - extension.size());
  return std::ranges::equal(name, extension,
                            [](unsigned char a, unsigned char b) { return std::tolower(a) == b; });
}

bool IsMail(std::string_view name) { return EndsIn(name, ".eml"); }

// Up to `size` bytes; less when the file ends before.
std::optional<std::string> ReadBytes(int file, size_t size) {
  std::array<char, kKeptInMemory> buffer;
  if (size <= buffer.size()) {
    const ssize_t got = read(file, buffer.data(), size);
    if (got == static_cast<ssize_t>(size)) return std::string(buffer.data(), size);
    if (got < 0 && errno != EINTR) return std::nullopt;
    if (lseek(file, 0, SEEK_SET) != 0) return std::nullopt;
  }
  std::string content(size, '\0');
  size_t filled = 0;
  while (filled < size) {
    const ssize_t got = read(file, content.data() + filled, size - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return std::nullopt;
    if (got == 0) break;
    filled += static_cast<size_t>(got);
  }
  content.resize(filled);
  return content;
}

std::optional<ItemClass> ClassOfContent(std::string_view name, std::string_view content) {
  if (IsMail(name)) return ItemClass::kMail;
  return EndsIn(name, ".vcf") ? ClassOfCard(content) : ClassOfCalendarObject(content);
}

}  // namespace

FileStamp StampOf(const struct stat& status) {
  return {status.st_ino, status.st_size,
          int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec};
}

std::string ItemFile::Content() const {
  return is_kept ? kept_content : ReadWholeFile(*folder / name);
}

bool IsItemName(std::string_view name) {
  return !name.starts_with('.') && name.find('/') == std::string_view::npos &&
         (EndsIn(name, ".vcf") || EndsIn(name, ".ics") || IsMail(name));
}

void KeepContent(ItemFile& file, std::string content) {
  file.is_kept = content.size() <= kKeptInMemory && file.item_class != ItemClass::kMail;
  file.kept_content = file.is_kept ? std::move(content) : std::string();
}

ItemFilePointer ReadItemFile(int folder, const std::shared_ptr<const std::filesystem::path>& path,
                             const std::string& name) {
  // A pipe of that name must not make us wait.
  constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  const FileDescriptor file(openat(folder, name.c_str(), kFlags));
  struct stat status {};
  if (file.get() < 0 || fstat(file.get(), &status) != 0) return nullptr;
  if (!S_ISREG(status.st_mode)) return nullptr;
  if (!IsMail(name) && status.st_size > kLargestCardOrEvent) return nullptr;
  std::string content;
  if (!IsMail(name)) {
    std::optional<std::string> read = ReadBytes(file.get(), static_cast<size_t>(status.st_size));
    if (!read) return nullptr;
    content = std::move(*read);
  }
  const std::optional<ItemClass> item_class = ClassOfContent(name, content);
  if (!item_class) return nullptr;
  auto item = std::make_shared<ItemFile>();
  item->name = name;
  item->item_class = *item_class;
  item->stamp = StampOf(status);
  item->folder = path;
  KeepContent(*item, std::move(content));
  return item;
}

FileStamp StampIn(int folder, const std::string& name) {
  struct stat status {};
  return fstatat(folder, name.c_str(), &status, 0) == 0 ? StampOf(status) : FileStamp{};
}

bool IsOthersLink(int folder, const std::string& name) {
  struct stat status {};
  if (fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
  return S_ISLNK(status.st_mode) && status.st_uid != geteuid() && status.st_uid != 0;
}

}  // namespace kestrelon::desktop
