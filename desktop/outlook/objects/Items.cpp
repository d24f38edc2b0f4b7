#include "desktop/outlook/objects/Items.h"

#include "desktop/outlook/formats/OutlookErrors.h"
#include "desktop/outlook/objects/Folder.h"
#include "desktop/outlook/objects/Item.h"
#include "desktop/outlook/objects/OutlookApplication.h"

namespace kestrelon::desktop {
namespace {

// Reads each item when its turn comes.
class FolderWalk final : public Enumerator {
 public:
  explicit FolderWalk(MailFolderPointer folder) : folder_(std::move(folder)) {}
  std::optional<Value> Next() override {
    const ItemFilePointer file = folder_->files()->At(next_);
    if (file == nullptr) return std::nullopt;
    ++next_;
    return StoredItem(folder_, file);
  }

 private:
  MailFolderPointer folder_;
  size_t next_ = 0;
};

}  // namespace

const MemberTable<Items>& Items::Members() {
  static const MemberTable<Items> table = MemberTable<Items>(u"Items")
                                              .Property(u"Count", &Items::GetCount)
                                              .Property(u"Application", &Items::GetApplication)
                                              .Property(u"Parent", &Items::GetParent)
                                              .Method(u"Item", &Items::Item, {u"Index"})
                                              .Method(u"", &Items::Item, {u"Index"})
                                              .Method(u"Add", &Items::Add, {u"Type"});
  return table;
}

std::unique_ptr<Enumerator> Items::Enumerate() { return std::make_unique<FolderWalk>(folder_); }

Value Items::GetApplication() { return CreateOutlookApplication(); }

Value Items::GetParent() { return Object(std::make_shared<Folder>(folder_)); }

Value Items::Item(const MethodArguments& arguments) {
  const int32_t index = arguments.Require(0).ToLong();
  const ItemFilePointer file =
      index < 1 ? nullptr : folder_->files()->At(static_cast<size_t>(index) - 1);
  if (file == nullptr) throw ArrayIndexOutOfBounds();
  return StoredItem(folder_, file);
}

Value Items::Add(const MethodArguments& arguments) {
  const auto kind = static_cast<int32_t>(folder_->kind());
  return NewItem(arguments.Has(0) ? arguments[0].ToLong() : kind, folder_);
}

ItemList::ItemList(const std::vector<FoundItem>& items) {
  items_.reserve(items.size());
  for (const FoundItem& item : items) {
    items_.push_back(StoredItem(item.folder, item.file));
  }
}

const MemberTable<ItemList>& ItemList::Members() {
  static const MemberTable<ItemList> table =
      MemberTable<ItemList>(u"Selection")
          .Property(u"Count", &ItemList::GetCount)
          .Property(u"Application", &ItemList::GetApplication)
          .Method(u"Item", &ItemList::Item, {u"Index"})
          .Method(u"", &ItemList::Item, {u"Index"});
  return table;
}

std::unique_ptr<Enumerator> ItemList::Enumerate() {
  return std::make_unique<VectorEnumerator>(items_);
}

Value ItemList::GetApplication() { return CreateOutlookApplication(); }

Value ItemList::Item(const MethodArguments& arguments) {
  return items_[PlaceInCollection(arguments.Require(0), items_.size())];
}

}  // namespace kestrelon::desktop
