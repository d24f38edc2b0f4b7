#include "desktop/outlook/objects/Explorer.h"

#include "desktop/outlook/formats/OutlookErrors.h"
#include "desktop/outlook/objects/DefaultFolders.h"
#include "desktop/outlook/objects/Folder.h"
#include "desktop/outlook/objects/Items.h"
#include "desktop/outlook/objects/OutlookApplication.h"
#include "desktop/outlook/store/UserSession.h"

namespace kestrelon::desktop {
namespace {

// Of an item of the user's own mailbox; error 0x8004010F for any other.
String EntryIdOf(const MethodArguments& arguments) {
  const Object item = arguments.Require(0).ToObject();
  const String store_id = item.GetChild(u"Parent").Get(u"StoreID").ToText();
  if (store_id != OwnStore()->StoreId()) throw ObjectNotFound();
  return item.Get(u"EntryID").ToText();
}

}  // namespace

const MemberTable<Explorer>& Explorer::Members() {
  static const MemberTable<Explorer> table =
      MemberTable<Explorer>(u"Explorer")
          .Property(u"Application", &Explorer::GetApplication)
          .Property(u"Caption", &Explorer::GetCaption)
          .Property(u"Selection", &Explorer::GetSelection)
          .Property(u"CurrentFolder", &Explorer::GetCurrentFolder)
          .Method(u"ClearSelection", &Explorer::ClearSelection)
          .Method(u"AddToSelection", &Explorer::AddToSelection, {u"Item"})
          .Method(u"RemoveFromSelection", &Explorer::RemoveFromSelection, {u"Item"})
          .Method(u"Display", &Explorer::Display)
          .Method(u"Close", &Explorer::Close);
  return table;
}

Value Explorer::GetApplication() { return CreateOutlookApplication(); }

Value Explorer::GetCaption() { return u"Inbox - Outlook"; }

Value Explorer::GetSelection() {
  std::vector<FoundItem> items;
  for (const String& entry_id : SelectedItems()) {
    if (auto item = ItemById(OwnStore(), entry_id)) items.push_back(*std::move(item));
  }
  return Object(std::make_shared<ItemList>(std::move(items)));
}

Value Explorer::GetCurrentFolder() {
  return Object(std::make_shared<Folder>(DefaultFolder(OwnStore(), kInbox)));
}

Value Explorer::ClearSelection(const MethodArguments&) {
  SelectItems({});
  return {};
}

Value Explorer::AddToSelection(const MethodArguments& arguments) {
  const String entry_id = EntryIdOf(arguments);
  if (!ItemById(OwnStore(), entry_id)) throw ObjectNotFound();
  std::vector<String> selected = SelectedItems();
  std::erase(selected, entry_id);
  selected.push_back(entry_id);
  SelectItems(selected);
  return {};
}

Value Explorer::RemoveFromSelection(const MethodArguments& arguments) {
  std::vector<String> selected = SelectedItems();
  if (std::erase(selected, EntryIdOf(arguments)) == 0) throw ObjectNotFound();
  SelectItems(selected);
  return {};
}

Value Explorer::Display(const MethodArguments&) {
  MarkOutlookOpen(true);
  return {};
}

Value Explorer::Close(const MethodArguments&) {
  MarkOutlookOpen(false);
  return {};
}

const MemberTable<Explorers>& Explorers::Members() {
  static const MemberTable<Explorers> table = MemberTable<Explorers>(u"Explorers")
                                                  .Property(u"Count", &Explorers::GetCount)
                                                  .Method(u"Item", &Explorers::Item, {u"Index"})
                                                  .Method(u"", &Explorers::Item, {u"Index"});
  return table;
}

std::unique_ptr<Enumerator> Explorers::Enumerate() {
  return std::make_unique<VectorEnumerator>(
      std::vector<Value>{Object(std::make_shared<Explorer>())});
}

Value Explorers::GetCount() {
  constexpr int32_t kOne = 1;
  return kOne;
}

Value Explorers::Item(const MethodArguments& arguments) {
  PlaceInCollection(arguments.Require(0), 1);
  return Object(std::make_shared<Explorer>());
}

}  // namespace kestrelon::desktop
