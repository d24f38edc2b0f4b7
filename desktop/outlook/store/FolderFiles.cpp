#include "desktop/outlook/store/FolderFiles.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <future>
#include <thread>
#include <tuple>
#include <utility>

#include "desktop/outlook/store/FolderOrder.h"
#include "desktop/outlook/store/Mailbox.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;
namespace {

constexpr int64_t kSecond = 1'000'000'000;

int64_t Now() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return int64_t{now.tv_sec} * kSecond + now.tv_nsec;
}

int OpenFolder(const fs::path& folder) {
  const int opened = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (opened < 0) {
    if (errno == ENOENT) {
      throw AutomationError(kPathNotFound,
                            u"The folder \"" + TextFromPath(folder) + u"\" does not exist");
    }
    throw FileError(errno, folder);
  }
  return opened;
}

FileStamp StampOfOpened(int folder) {
  struct stat status {};
  return fstat(folder, &status) == 0 ? StampOf(status) : FileStamp{};
}

// Until the folder is closed. A file system without locks leaves us to the stamps alone.
void Lock(int folder) {
  while (flock(folder, LOCK_EX) != 0 && errno == EINTR) continue;
}

// The times of a folder move in ticks of a few milliseconds (two seconds on some file systems):
// another change within the tick of `stamp` would look like none.
bool IsSettled(const FileStamp& stamp, int64_t now) {
  const int64_t tick = stamp.modified % kSecond == 0 ? 2 * kSecond : kSecond / 50;
  return std::abs(now - stamp.modified) > tick;
}

// The exact time, unlike any other, so that no later change can look like none. Where we may not
// set it (a folder of another user), the folder is walked again each time.
FileStamp MarkFolder(int folder) {
  const int64_t now = Now();
  const timespec times[] = {{0, UTIME_OMIT}, {now / kSecond, now % kSecond}};
  if (futimens(folder, times) != 0) return {};
  const FileStamp stamp = StampOfOpened(folder);
  return stamp.modified == now ? stamp : FileStamp{};
}

// What a process that died has left. Younger ones may be another's that is just writing.
bool IsLeftover(int folder, std::string_view name) {
  if (!name.starts_with(".kestrelon-") ||
      name.size() != std::string_view(".kestrelon-XXXXXX").size())
    return false;
  const FileStamp stamp = StampIn(folder, std::string(name));
  return stamp.size >= 0 && Now() - stamp.modified > 24 * 3600 * kSecond;
}

// The names of the items. Leftovers are removed on the way.
std::vector<std::string> ListItems(int folder, const fs::path& path) {
  const int copy = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(copy < 0 ? nullptr : fdopendir(copy), closedir);
  if (!entries) throw FileError(errno, path);
  std::vector<std::string> names;
  while (const dirent* entry = readdir(entries.get())) {
    const std::string_view name = entry->d_name;
    if (IsLeftover(folder, name)) unlinkat(folder, entry->d_name, 0);
    if (!IsItemName(name) || entry->d_type == DT_DIR) continue;
    if (entry->d_type != DT_REG && IsOthersLink(folder, entry->d_name)) continue;
    names.emplace_back(name);
  }
  return names;
}

// Calls `work` for every number below `count`; many of them side by side, as reading files is
// mostly waiting for the system.
template <typename Work>
void ForEachNumber(size_t count, const Work& work) {
  constexpr size_t kWorthAThread = 500;
  constexpr size_t kMostThreads = 4;
  const size_t threads = std::min(
      {size_t{std::thread::hardware_concurrency()}, kMostThreads, 1 + count / kWorthAThread});
  const auto work_on_part = [&](size_t part) {
    for (size_t number = part; number < count; number += threads) work(number);
  };
  std::vector<std::future<void>> parts;
  for (size_t part = 1; part < threads; ++part) {
    parts.push_back(std::async(std::launch::async, work_on_part, part));
  }
  work_on_part(0);
  for (std::future<void>& part : parts) part.get();
}

// Files that are read in the order in which they are walked lie side by side in memory.
void SortAsListed(std::vector<std::string>& names, const FolderOrder& order) {
  std::unordered_map<std::string_view, size_t> ranks;
  ranks.reserve(order.lines().size());
  for (const std::string_view line : order.lines()) ranks.emplace(line, ranks.size());
  std::vector<std::pair<size_t, size_t>> places;  // rank and index
  places.reserve(names.size());
  for (size_t i = 0; i < names.size(); ++i) {
    const auto found = ranks.find(names[i]);
    places.emplace_back(found == ranks.end() ? ~size_t{0} : found->second, i);
  }
  std::ranges::sort(places);
  std::vector<std::string> sorted;
  sorted.reserve(names.size());
  for (const auto& [rank, index] : places) sorted.push_back(std::move(names[index]));
  names = std::move(sorted);
}

bool IsSafeName(std::string_view uid) {
  constexpr size_t kLongest = 200;
  constexpr std::string_view kSafe =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.@+=";
  return !uid.empty() && uid.size() <= kLongest && uid.front() != '.' &&
         uid.find_first_not_of(kSafe) == std::string_view::npos;
}

template <typename Work>
auto WithAdvice(const fs::path& folder, Work work) {
  try {
    return work();
  } catch (const AutomationError& error) {
    throw SavingError(error, u"The item", folder);
  }
}

}  // namespace

FolderFiles::FolderFiles(fs::path folder)
    : folder_(std::move(folder)), shared_folder_(std::make_shared<const fs::path>(folder_)) {}

FolderFiles::~FolderFiles() = default;

size_t FolderFiles::Count() {
  if (is_read_) {
    LookAgain();
  } else {
    Walk();
  }
  return order_.size();
}

ItemFilePointer FolderFiles::At(size_t index) {
  if (!is_read_) Walk();
  return index < order_.size() ? order_[index]->file : nullptr;
}

ItemFilePointer FolderFiles::Find(std::string_view wanted) {
  LookAgain();
  const std::string name(wanted);
  const auto found = slots_.find(name);
  if (is_read_) return found == slots_.end() ? nullptr : found->second.file;
  if (!IsItemName(name) || name.find('\0') != std::string::npos) return nullptr;
  const FileDescriptor folder(OpenFolder(folder_));
  if (found != slots_.end() && IsAsRead(folder.get(), *found->second.file)) {
    return found->second.file;
  }
  ItemFilePointer file =
      IsOthersLink(folder.get(), name) ? nullptr : ReadItemFile(folder.get(), shared_folder_, name);
  if (file) {
    Keep(file);
  } else {
    Forget(name);
  }
  return file;
}

void FolderFiles::LookAgain() {
  struct stat status {};
  if (!is_read_ || (stat(folder_.c_str(), &status) == 0 && StampOf(status) == known_)) return;
  Walk();
}

void FolderFiles::Walk() {
  const FileDescriptor folder(OpenFolder(folder_));
  // Taken before the walk: what changes during it is seen the next time.
  const FileStamp stamp = StampOfOpened(folder.get());
  known_ = IsSettled(stamp, Now()) ? stamp : MarkFolder(folder.get());
  ReadItems(folder.get());
  Arrange(folder.get());
  is_read_ = true;
}

void FolderFiles::ReadItems(int folder) {
  std::vector<std::string> names = ListItems(folder, folder_);
  std::unordered_map<std::string, Slot> before = std::exchange(slots_, {});
  order_.clear();
  slots_.reserve(names.size());
  std::erase_if(names, [&](const std::string& name) {
    const auto known = before.find(name);
    if (known == before.end() || !IsAsRead(folder, *known->second.file)) return false;
    known->second.rank = kNoRank;
    slots_.insert(before.extract(known));
    return true;
  });
  SortAsListed(names, FolderOrder(folder_));
  std::vector<ItemFilePointer> files(names.size());
  ForEachNumber(names.size(), [&](size_t number) {
    files[number] = ReadItemFile(folder, shared_folder_, names[number]);
  });
  for (size_t number = 0; number < names.size(); ++number) {
    if (files[number] == nullptr) continue;
    before.erase(names[number]);
    slots_[std::move(names[number])].file = std::move(files[number]);
  }
  for (const auto& [name, slot] : before) slot.file->is_gone = true;
}

// The listed ones in their order; those that are not listed are returned. Names are written before
// their files appear: read after the files, the order misses none of ours.
std::vector<FolderFiles::Slot*> FolderFiles::ArrangeAsListed(size_t& lines) {
  for (Slot* slot : order_) slot->rank = kNoRank;
  order_.clear();
  const FolderOrder order(folder_);
  lines = next_rank_ = order.lines().size();
  std::string name;
  for (size_t i = lines; i-- > 0;) {
    const auto found = slots_.find(name.assign(order.lines()[i]));
    if (found == slots_.end() || found->second.rank != kNoRank) continue;
    found->second.rank = i;
    order_.push_front(&found->second);
  }
  std::vector<Slot*> others;
  if (order_.size() == slots_.size()) return others;
  for (auto& [unused, slot] : slots_) {
    if (slot.rank == kNoRank) others.push_back(&slot);
  }
  std::ranges::sort(others, [](const Slot* a, const Slot* b) {
    return std::tie(a->file->stamp.modified, a->file->name) <
           std::tie(b->file->stamp.modified, b->file->name);
  });
  return others;
}

void FolderFiles::Arrange(int folder) {
  constexpr size_t kDeadLinesToBear = 1000;
  size_t lines = 0;
  const auto is_littered = [&] { return lines > 2 * order_.size() + kDeadLinesToBear; };
  if (ArrangeAsListed(lines).empty() && !is_littered()) return;
  const FileDescriptor locked(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  Lock(locked.get());
  std::vector<std::string> names;
  for (Slot* slot : ArrangeAsListed(lines)) {
    slot->rank = next_rank_++;
    order_.push_back(slot);
    names.push_back(slot->file->name);
  }
  if (is_littered()) {
    names.clear();
    for (const Slot* slot : order_) names.push_back(slot->file->name);
    ChangeFolder(folder, [&] { RewriteOrder(folder_, names); });
  } else {
    ChangeFolder(folder, [&] { AppendToOrder(folder, names); });
  }
}

// Our own change must not cost a walk, and must not hide one of another program: only when the
// folder is as we know it before, what it is afterwards becomes known. `change` is short: a change
// of another program in the meantime is taken for ours.
void FolderFiles::ChangeFolder(int folder, const std::function<void()>& change) {
  const bool is_in_step = StampOfOpened(folder) == known_;
  change();
  if (!is_in_step) {
    known_ = {};
  } else if (StampOfOpened(folder) != known_) {
    known_ = MarkFolder(folder);
  }
}

bool FolderFiles::IsAsRead(int folder, const ItemFile& file) const {
  return StampIn(folder, file.name) == file.stamp;
}

void FolderFiles::Keep(ItemFilePointer file) {
  const auto [place, is_new] = slots_.try_emplace(file->name);
  place->second.file = std::move(file);
  if (!is_new || !is_read_) return;
  place->second.rank = next_rank_++;
  order_.push_back(&place->second);
}

void FolderFiles::Forget(const std::string& name) {
  const auto found = slots_.find(name);
  if (found == slots_.end()) return;
  found->second.file->is_gone = true;
  const auto place = std::ranges::lower_bound(order_, found->second.rank, {}, &Slot::rank);
  if (place != order_.end() && *place == &found->second) order_.erase(place);
  slots_.erase(found);
}

ItemFilePointer FolderFiles::Create(std::string_view uid, std::string_view extension,
                                    ItemClass item_class, std::string content) {
  return WithAdvice(folder_, [&] {
    const FileDescriptor folder(OpenFolder(folder_));
    Lock(folder.get());
    const auto fresh_name = [&] { return ToUtf8(NewEntryId()) + std::string(extension); };
    auto file = std::make_shared<ItemFile>();
    file->name = IsSafeName(uid) ? std::string(uid) + std::string(extension) : fresh_name();
    file->item_class = item_class;
    file->folder = shared_folder_;
    std::optional<StagedFile> staged;
    ChangeFolder(folder.get(), [&] { staged.emplace(StagedFile::WithoutName(), folder_); });
    staged->Fill(content, Durability::kPowerLoss);
    file->stamp = StampOfOpened(staged->descriptor());
    bool is_placed = faccessat(folder.get(), file->name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) != 0;
    do {
      if (!is_placed) file->name = fresh_name();
      ChangeFolder(folder.get(), [&] {
        AppendToOrder(folder.get(), {file->name});
        is_placed = staged->PlaceAsNew(folder_ / file->name);
      });
    } while (!is_placed);
    ChangeFolder(folder.get(), [&] { staged.reset(); });
    SyncFolder(folder_);
    KeepContent(*file, std::move(content));
    Keep(file);
    return ItemFilePointer(file);
  });
}

FolderFiles::ReplaceOutcome FolderFiles::Replace(ItemFilePointer& file, std::string content) {
  return WithAdvice(folder_, [&] {
    const FileDescriptor folder(OpenFolder(folder_));
    Lock(folder.get());
    if (!IsAsRead(folder.get(), *file)) return TakeOver(folder.get(), file);
    std::optional<StagedFile> staged;
    ChangeFolder(folder.get(), [&] { staged.emplace(folder_ / file->name); });
    staged->Fill(content, Durability::kPowerLoss);
    // Programs that know no lock may have come in while the file was synced.
    const auto is_as_read = [&](const struct stat& status) {
      return StampOf(status) == file->stamp;
    };
    bool is_replaced = false;
    ChangeFolder(folder.get(), [&] {
      is_replaced = staged->ReplaceExpected(is_as_read);
      staged->Discard();
    });
    if (!is_replaced) return TakeOver(folder.get(), file);
    SyncFolder(staged->place().parent_path());
    auto written = std::make_shared<ItemFile>();
    written->name = file->name;
    written->item_class = file->item_class;
    written->folder = file->folder;
    written->stamp = StampOfOpened(staged->descriptor());
    KeepContent(*written, std::move(content));
    Keep(written);
    file = written;
    return ReplaceOutcome::kReplaced;
  });
}

FolderFiles::ReplaceOutcome FolderFiles::Remove(ItemFilePointer& file) {
  return WithAdvice(folder_, [&] {
    const FileDescriptor folder(OpenFolder(folder_));
    Lock(folder.get());
    if (!IsAsRead(folder.get(), *file)) return TakeOver(folder.get(), file);
    ChangeFolder(folder.get(), [&] {
      if (unlinkat(folder.get(), file->name.c_str(), 0) != 0) {
        throw FileError(errno, folder_ / file->name);
      }
    });
    SyncFolder(folder_);
    file->is_gone = true;
    Forget(file->name);
    return ReplaceOutcome::kReplaced;
  });
}

// What lies there instead of `file`.
FolderFiles::ReplaceOutcome FolderFiles::TakeOver(int folder, ItemFilePointer& file) {
  ItemFilePointer current = ReadItemFile(folder, shared_folder_, file->name);
  if (!current) {
    file->is_gone = true;
    Forget(file->name);
    return ReplaceOutcome::kGone;
  }
  Keep(current);
  file = current;
  return ReplaceOutcome::kChangedMeanwhile;
}

}  // namespace kestrelon::desktop
