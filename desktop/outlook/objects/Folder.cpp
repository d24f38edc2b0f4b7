#include "desktop/outlook/objects/Folder.h"

#include <algorithm>

#include "desktop/outlook/formats/OutlookErrors.h"
#include "desktop/outlook/objects/DefaultFolders.h"
#include "desktop/outlook/objects/Items.h"
#include "desktop/outlook/objects/NameSpace.h"
#include "desktop/outlook/objects/OutlookApplication.h"
#include "desktop/outlook/objects/Showing.h"

namespace kestrelon::desktop {
const MemberTable<Folder>& Folder::Members() {
  static const MemberTable<Folder> table =
      MemberTable<Folder>(u"Folder")
          .Property(u"Application", &Folder::GetApplication)
          .Property(u"Class", &Folder::GetClass)
          .Property(u"Name", &Folder::GetName)
          .Property(u"", &Folder::GetName)
          .Property(u"EntryID", &Folder::GetEntryId)
          .Property(u"StoreID", &Folder::GetStoreId)
          .Property(u"DefaultItemType", &Folder::GetDefaultItemType)
          .Property(u"FolderPath", &Folder::GetFolderPath)
          .Property(u"Parent", &Folder::GetParent)
          .Property(u"Folders", &Folder::GetFolders)
          .Property(u"Items", &Folder::GetItems)
          .Method(u"Display", &Folder::Display);
  return table;
}

Value Folder::GetApplication() { return CreateOutlookApplication(); }

Value Folder::GetClass() {
  constexpr int32_t kFolder = 2;
  return kFolder;
}

Value Folder::GetFolderPath() {
  String path;
  for (MailFolderPointer folder = folder_; folder != nullptr; folder = folder->parent()) {
    path = u"\\" + folder->Name() + path;
  }
  const String& user = folder_->store()->user;
  return u"\\\\" + (user.empty() ? u"Mailbox" : user) + path;
}

Value Folder::GetParent() {
  if (folder_->parent() == nullptr) return Object(std::make_shared<NameSpace>());
  return Object(std::make_shared<Folder>(folder_->parent()));
}

Value Folder::GetFolders() {
  if (folders_ == nullptr) folders_ = std::make_shared<Folders>(folder_->store(), folder_);
  return Object(folders_);
}

Value Folder::GetItems() {
  if (items_ == nullptr) items_ = std::make_shared<Items>(folder_);
  folder_->files()->LookAgain();
  return Object(items_);
}

Value Folder::Display(const MethodArguments&) {
  ShowFile(folder_->path());
  return {};
}

const MemberTable<Folders>& Folders::Members() {
  static const MemberTable<Folders> table = MemberTable<Folders>(u"Folders")
                                                .Property(u"Count", &Folders::GetCount)
                                                .Method(u"Item", &Folders::Item, {u"Index"})
                                                .Method(u"", &Folders::Item, {u"Index"})
                                                .Method(u"Add", &Folders::Add, {u"Name", u"Type"});
  return table;
}

void Folders::Refresh() {
  std::vector<std::shared_ptr<Folder>> fresh;
  for (MailFolderPointer& folder : parent_ ? parent_->Subfolders() : TopFolders(store_)) {
    const auto known = std::find_if(folders_.begin(), folders_.end(), [&](const auto& one) {
      return one->folder()->path() == folder->path() && one->folder()->kind() == folder->kind();
    });
    fresh.push_back(known != folders_.end() ? *known : std::make_shared<Folder>(folder));
  }
  folders_ = std::move(fresh);
}

std::unique_ptr<Enumerator> Folders::Enumerate() {
  Refresh();
  return std::make_unique<VectorEnumerator>(std::vector<Value>(folders_.begin(), folders_.end()));
}

Value Folders::GetCount() {
  Refresh();
  return static_cast<int64_t>(folders_.size());
}

Value Folders::Item(const MethodArguments& arguments) {
  const Value& index = arguments.Require(0);
  if (index.IsString()) {
    Refresh();
    for (const auto& folder : folders_) {
      if (EqualIgnoringCase(folder->folder()->Name(), index.AsString())) return Object(folder);
    }
    throw ObjectNotFound();
  }
  if (index.ToLong() > static_cast<int64_t>(folders_.size())) Refresh();
  return Object(folders_[PlaceInCollection(index, folders_.size())]);
}

Value Folders::Add(const MethodArguments& arguments) {
  const String name = arguments.Require(0).ToText();
  if (parent_ == nullptr) {
    throw AutomationError(kInvalidProcedureCall, u"\"" + name +
                                                     u"\" cannot be a top folder. Add it to a "
                                                     u"folder such as Contacts.");
  }
  const auto kind = arguments.Has(1) ? KindOfDefaultFolder(arguments[1].ToLong()) : parent_->kind();
  if (!kind) {
    throw AutomationError(kInvalidProcedureCall,
                          u"\"" + name +
                              u"\" can be a folder for mail (6), appointments (9), contacts (10) "
                              u"or tasks (13)");
  }
  const MailFolderPointer added = parent_->AddSubfolder(name, *kind);
  Refresh();
  for (const auto& folder : folders_) {
    if (folder->folder()->path() == added->path()) return Object(folder);
  }
  return Object(std::make_shared<Folder>(added));
}

}  // namespace kestrelon::desktop
