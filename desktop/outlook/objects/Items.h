// Collections of items. They count from 1.
#pragma once

#include "desktop/outlook/store/MailFolder.h"
#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

// The items of a folder as it is now, in its order.
class Items final : public ServerObject<Items> {
 public:
  explicit Items(MailFolderPointer folder) : folder_(std::move(folder)) {}

  static const MemberTable<Items>& Members();
  std::unique_ptr<Enumerator> Enumerate() override;

 private:
  Value GetCount() { return static_cast<int64_t>(folder_->files()->Count()); }
  Value GetApplication();
  Value GetParent();
  // Constant time.
  Value Item(const MethodArguments& arguments);
  // A new item of the folder's kind, unsaved.
  Value Add(const MethodArguments& arguments);

  MailFolderPointer folder_;
};

// Items that were picked at one moment: a selection, the result of an import.
class ItemList final : public ServerObject<ItemList> {
 public:
  explicit ItemList(const std::vector<FoundItem>& items);

  static const MemberTable<ItemList>& Members();
  std::unique_ptr<Enumerator> Enumerate() override;

 private:
  Value GetCount() { return static_cast<int64_t>(items_.size()); }
  Value GetApplication();
  Value Item(const MethodArguments& arguments);

  std::vector<Value> items_;
};

}  // namespace kestrelon::desktop
