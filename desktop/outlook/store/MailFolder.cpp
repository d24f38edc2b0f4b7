#include "desktop/outlook/store/MailFolder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <unordered_map>

#include "desktop/outlook/formats/OutlookErrors.h"
#include "desktop/outlook/store/EntryIds.h"
#include "desktop/outlook/store/FolderNames.h"
#include "desktop/outlook/store/Mailbox.h"
#include "desktop/outlook/store/Subfolders.h"
#include "desktop/storage/AtomicFile.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;
namespace {

constexpr const char* kKindFile = ".kestrelon-kind";
// By FolderKind.
constexpr std::array<std::string_view, 4> kKindNames = {"mail", "calendar", "contacts", "tasks"};

struct DefaultFolderEntry {
  int32_t number;  // OlDefaultFolders
  std::string_view name;
  FolderKind kind;
};

// In the order in which they are listed.
constexpr DefaultFolderEntry kDefaultFolders[] = {
    {6, "Inbox", FolderKind::kMail},         {16, "Drafts", FolderKind::kMail},
    {5, "Sent Items", FolderKind::kMail},    {3, "Deleted Items", FolderKind::kMail},
    {4, "Outbox", FolderKind::kMail},        {9, "Calendar", FolderKind::kCalendar},
    {10, "Contacts", FolderKind::kContacts}, {13, "Tasks", FolderKind::kTasks},
};

std::optional<FolderKind> StatedKind(const fs::path& folder) {
  std::string text;
  std::error_code error;
  if (fs::is_regular_file(folder / kKindFile, error)) {
    IgnoreFailures([&] { text = ReadWholeFile(folder / kKindFile); });
  }
  const auto kind = std::ranges::find(kKindNames, text.substr(0, text.find_first_of(" \r\n")));
  if (kind == kKindNames.end()) return std::nullopt;
  return static_cast<FolderKind>(kind - kKindNames.begin());
}

FolderKind KindFor(ItemClass item_class) {
  switch (item_class) {
    case ItemClass::kAppointment:
      return FolderKind::kCalendar;
    case ItemClass::kTask:
      return FolderKind::kTasks;
    case ItemClass::kContact:
    case ItemClass::kDistributionList:
      return FolderKind::kContacts;
    case ItemClass::kMail:
      break;
  }
  return FolderKind::kMail;
}

// What one of the items is for; the others will be alike.
std::optional<FolderKind> KindOfContent(const fs::path& folder) {
  FolderFiles files(folder);
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename();
    if (!IsItemName(name)) continue;
    if (const ItemFilePointer file = files.Find(name)) return KindFor(file->item_class);
  }
  return std::nullopt;
}

// The folder of that file name; it is there.
MailFolderPointer OpenFolder(const MailStorePointer& store, const MailFolderPointer& parent,
                             const fs::path& relative) {
  std::optional<FolderKind> kind;
  if (!parent) {
    const auto known = std::ranges::find(kDefaultFolders, relative, &DefaultFolderEntry::name);
    if (known != std::end(kDefaultFolders)) kind = known->kind;
  }
  if (!kind) kind = StatedKind(store->path / relative);
  if (!kind) kind = KindOfContent(store->path / relative);
  if (!kind) kind = parent ? parent->kind() : FolderKind::kMail;
  return std::make_shared<MailFolder>(store, parent, relative, *kind);
}

// Piece by piece; nullptr when one is not there.
MailFolderPointer FindFolder(const MailStorePointer& store, const fs::path& relative) {
  MailFolderPointer folder;
  fs::path path;
  for (const fs::path& piece : relative) {
    path /= piece;
    if (!IsFolder(store->path / path)) return nullptr;
    folder = OpenFolder(store, folder, path);
  }
  return folder;
}

void SortByName(std::vector<MailFolderPointer>& folders) {
  std::ranges::sort(folders, [](const MailFolderPointer& a, const MailFolderPointer& b) {
    const String name = a->Name(), other = b->Name();
    return std::pair(LowerCase(name), name) < std::pair(LowerCase(other), other);
  });
}

// A link back up would be a tree without an end.
bool IsOrContains(const MailFolder& folder, const fs::path& path) {
  std::error_code error;
  if (fs::equivalent(folder.path(), path, error)) return true;
  return folder.parent() && IsOrContains(*folder.parent(), path);
}

AutomationError NameIsTaken(const String& name, const String& folder) {
  constexpr auto kObjectExists = static_cast<int32_t>(0x8004060C);
  return AutomationError(kObjectExists, u"\"" + folder +
                                            u"\" holds a folder or file of the name \"" + name +
                                            u"\". Choose another name.");
}

}  // namespace

MailFolder::MailFolder(MailStorePointer store, MailFolderPointer parent, fs::path relative,
                       FolderKind kind)
    : store_(std::move(store)),
      parent_(std::move(parent)),
      relative_(std::move(relative)),
      kind_(kind) {}

String MailFolder::Name() const { return NameFromFileName(relative_.filename().native()); }

String MailFolder::EntryId() const { return ToEntryId(EntryType::kFolder, relative_); }

String MailFolder::EntryIdOf(const ItemFile& file) const {
  return ToEntryId(EntryType::kItem, relative_ / file.name);
}

std::shared_ptr<FolderFiles> MailFolder::files() {
  static std::unordered_map<std::string, std::weak_ptr<FolderFiles>> known;
  if (!files_) {
    std::weak_ptr<FolderFiles>& shared = known[path().native()];
    files_ = shared.lock();
    if (!files_) shared = files_ = std::make_shared<FolderFiles>(path());
  }
  return files_;
}

std::vector<MailFolderPointer> MailFolder::Subfolders() {
  // The children hold their parent; it is not ours to hand out, so it is made again.
  const MailFolderPointer self = std::make_shared<MailFolder>(*this);
  std::vector<MailFolderPointer> folders;
  for (const std::string& name : FolderNamesIn(path())) {
    if (fs::is_symlink(path() / name) && IsOrContains(*this, path() / name)) continue;
    folders.push_back(OpenFolder(store_, self, relative_ / name));
  }
  SortByName(folders);
  return folders;
}

MailFolderPointer MailFolder::AddSubfolder(const String& name, FolderKind kind) {
  const fs::path relative = relative_ / FileNameFromName(name);
  for (const std::string& present : FolderNamesIn(path())) {
    if (EqualIgnoringCase(NameFromFileName(present), name)) throw NameIsTaken(name, Name());
  }
  const fs::path made = store_->path / relative;
  constexpr mode_t kForTheUserAlone = 0700;
  if (mkdir(made.c_str(), kForTheUserAlone) != 0) {
    if (errno == EEXIST) throw NameIsTaken(name, Name());
    throw SavingError(FileError(errno, made), u"The folder", path());
  }
  try {
    WriteFileAtomically(made / kKindFile, std::string(kKindNames[static_cast<size_t>(kind)]) + '\n',
                        Durability::kPowerLoss);
    SyncFolder(path());
  } catch (const AutomationError& error) {
    rmdir(made.c_str());
    throw SavingError(error, u"The folder", path());
  }
  return std::make_shared<MailFolder>(store_, std::make_shared<MailFolder>(*this), relative, kind);
}

MailFolderPointer DefaultFolder(const MailStorePointer& store, int32_t default_folder) {
  const auto known =
      std::ranges::find(kDefaultFolders, default_folder, &DefaultFolderEntry::number);
  if (known == std::end(kDefaultFolders)) return nullptr;
  const fs::path path = store->path / known->name;
  if (!IsFolder(path)) {
    if (!store->user.empty()) throw ObjectNotFound();
    try {
      MakeFolder(path);
      if (!IsFolder(path)) throw FileError(EACCES, path);
    } catch (const AutomationError& error) {
      throw SavingError(error, u"The folder " + FromUtf8(known->name), store->path);
    }
  }
  return std::make_shared<MailFolder>(store, nullptr, known->name, known->kind);
}

std::vector<MailFolderPointer> TopFolders(const MailStorePointer& store) {
  std::vector<MailFolderPointer> folders, others;
  for (const DefaultFolderEntry& known : kDefaultFolders) {
    if (MailFolderPointer folder = FindFolder(store, known.name)) folders.push_back(folder);
  }
  for (const std::string& name : FolderNamesIn(store->path)) {
    const auto is_name = [&](const DefaultFolderEntry& known) { return known.name == name; };
    if (name == kSharedFolder || std::ranges::any_of(kDefaultFolders, is_name)) continue;
    others.push_back(OpenFolder(store, nullptr, name));
  }
  SortByName(others);
  folders.insert(folders.end(), others.begin(), others.end());
  return folders;
}

MailFolderPointer FolderById(const MailStorePointer& store, StringView entry_id) {
  const std::optional<fs::path> path = PathFromEntryId(EntryType::kFolder, entry_id);
  return path ? FindFolder(store, *path) : nullptr;
}

std::optional<FoundItem> ItemById(const MailStorePointer& store, StringView entry_id) {
  const std::optional<fs::path> path = PathFromEntryId(EntryType::kItem, entry_id);
  const MailFolderPointer folder = path ? FindFolder(store, path->parent_path()) : nullptr;
  if (!folder) return std::nullopt;
  ItemFilePointer file = folder->files()->Find(path->filename().native());
  if (!file) return std::nullopt;
  return FoundItem{folder, std::move(file)};
}

}  // namespace kestrelon::desktop
