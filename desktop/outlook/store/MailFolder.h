// Folders of the mailbox.
//
//   Contacts/ Tasks/ Calendar/ Inbox/ Drafts/   the default folders, each with subfolders
//   Shared/NAME/                                another user's mailbox (or a link to it)
//
// A name that is no file name ("a/b", ".x") is stored with its odd characters as %XX. What kind of
// items a subfolder is for stands in its file ".kestrelon-kind"; without one, it is what the files
// in it are, else what its parent is for. Folders are made on first use, for the user alone.
//
// Links to folders and files are followed when the user (or root) has made them; those of others
// are as if they were not there. Failures to write are errors of desktop/storage, with the folder
// and what to do in the description.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/outlook/store/FolderFiles.h"

namespace kestrelon::desktop {

// OlItemType of the items that a folder is for.
enum class FolderKind : int32_t { kMail = 0, kCalendar = 1, kContacts = 2, kTasks = 3 };

class MailFolder;
using MailFolderPointer = std::shared_ptr<MailFolder>;

// A mailbox of the user or of another one. One object for each in a process.
struct MailStore {
  std::filesystem::path path;
  String user;  // "" for the user's own
  // Upper-case hexadecimal digits that say which mailbox this is, not where it lies.
  String StoreId() const;
};
using MailStorePointer = std::shared_ptr<const MailStore>;

class MailFolder {
 public:
  MailFolder(MailStorePointer store, MailFolderPointer parent, std::filesystem::path relative,
             FolderKind kind);

  const MailStorePointer& store() const { return store_; }
  // nullptr for the top folders.
  const MailFolderPointer& parent() const { return parent_; }
  String Name() const;
  FolderKind kind() const { return kind_; }
  std::filesystem::path path() const { return store_->path / relative_; }
  // Upper-case hexadecimal digits; the same as long as the folder has its name.
  String EntryId() const;

  // The direct subfolders by name, without regard to case first. Those that hold nothing for us
  // (hidden ones, Shared) are left out.
  std::vector<MailFolderPointer> Subfolders();
  // Error 0x8004060C when there is one of that name, 5 for a name that cannot be one.
  MailFolderPointer AddSubfolder(const String& name, FolderKind kind);

  // One for all objects of this folder in the process, as long as one of them holds it.
  std::shared_ptr<FolderFiles> files();
  String EntryIdOf(const ItemFile& file) const;

 private:
  MailStorePointer store_;
  MailFolderPointer parent_;
  std::filesystem::path relative_;
  FolderKind kind_;
  std::shared_ptr<FolderFiles> files_;
};

// The user's mailbox, and that of another user, whose name is matched without regard to case;
// nullptr when Shared holds none of that name.
MailStorePointer OwnStore();
MailStorePointer SharedStore(StringView user);
// By store id; nullptr for an id that no mailbox has.
MailStorePointer StoreById(StringView store_id);

// OlDefaultFolders: 6 Inbox, 9 Calendar, 10 Contacts, 13 Tasks, 16 Drafts; 3 (Deleted Items),
// 4 (Outbox) and 5 (Sent Items) likewise. nullptr for any other. Made when missing in the user's
// own mailbox; error 0x8004010F when another user's lacks it.
MailFolderPointer DefaultFolder(const MailStorePointer& store, int32_t default_folder);
// The default folders that are there, then the others by name.
std::vector<MailFolderPointer> TopFolders(const MailStorePointer& store);

// By entry id, looked for in `store`. nullptr for an id that stands for nothing there.
MailFolderPointer FolderById(const MailStorePointer& store, StringView entry_id);

struct FoundItem {
  MailFolderPointer folder;
  ItemFilePointer file;
};
std::optional<FoundItem> ItemById(const MailStorePointer& store, StringView entry_id);

}  // namespace kestrelon::desktop
