// The properties of an item as a collection, in the order in which a user wants to see them.
#pragma once

#include "desktop/outlook/objects/EditedItem.h"

namespace kestrelon::desktop {

class ItemProperty final : public ServerObject<ItemProperty> {
 public:
  ItemProperty(std::shared_ptr<EditedItem> item, StringView name)
      : item_(std::move(item)), name_(name) {}

  static const MemberTable<ItemProperty>& Members();

 private:
  Value GetName() { return name_; }
  Value GetValue() { return item_->document().Get(LowerCase(name_)); }
  void PutValue(const Value& value) { item_->Put(LowerCase(name_), value); }

  std::shared_ptr<EditedItem> item_;
  String name_;
};

// Counts from 0, unlike Outlook's other collections.
class ItemProperties final : public ServerObject<ItemProperties> {
 public:
  explicit ItemProperties(std::shared_ptr<EditedItem> item) : item_(std::move(item)) {}

  static const MemberTable<ItemProperties>& Members();
  std::unique_ptr<Enumerator> Enumerate() override;

 private:
  const std::vector<StringView>& Names() { return item_->document().PropertyNames(); }
  Value GetCount() { return static_cast<int64_t>(Names().size()); }
  // By number or by name.
  Value Item(const MethodArguments& arguments);

  std::shared_ptr<EditedItem> item_;
};

}  // namespace kestrelon::desktop
