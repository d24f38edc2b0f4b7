// A folder of the mailbox and the collection of its subfolders.
#pragma once

#include <memory>
#include <vector>

#include "desktop/outlook/store/MailFolder.h"
#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

class Folders;
class Items;

class Folder final : public ServerObject<Folder> {
 public:
  explicit Folder(MailFolderPointer folder) : folder_(std::move(folder)) {}

  static const MemberTable<Folder>& Members();

  const MailFolderPointer& folder() const { return folder_; }

 private:
  Value GetApplication();
  Value GetClass();
  Value GetName() { return folder_->Name(); }
  Value GetEntryId() { return folder_->EntryId(); }
  Value GetStoreId() { return folder_->store()->StoreId(); }
  Value GetDefaultItemType() { return static_cast<int32_t>(folder_->kind()); }
  // \\USER\Contacts\Clients; "Mailbox" stands for the user's own.
  Value GetFolderPath();
  // The folder above; of a top folder, the namespace.
  Value GetParent();
  // One collection of each for a folder object: what it has read once serves every later question.
  Value GetFolders();
  Value GetItems();
  Value Display(const MethodArguments& arguments);

  MailFolderPointer folder_;
  std::shared_ptr<Folders> folders_;
  std::shared_ptr<Items> items_;
};

// Counts from 1.
class Folders final : public ServerObject<Folders> {
 public:
  // The subfolders of `parent`; the top folders of `store` when that is nullptr.
  Folders(MailStorePointer store, MailFolderPointer parent)
      : store_(std::move(store)), parent_(std::move(parent)) {}

  static const MemberTable<Folders>& Members();
  std::unique_ptr<Enumerator> Enumerate() override;

 private:
  Value GetCount();
  // By number, as of the last Count where there was one, or by name.
  Value Item(const MethodArguments& arguments);
  // `Type` is one of OlDefaultFolders; the parent's kind when it is left out.
  Value Add(const MethodArguments& arguments);

  // Looks again which folders there are. Folders that stay keep their objects.
  void Refresh();

  MailStorePointer store_;
  MailFolderPointer parent_;
  std::vector<std::shared_ptr<Folder>> folders_;
};

}  // namespace kestrelon::desktop
