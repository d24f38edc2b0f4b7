// An item of the mailbox as Outlook's scripts see it: contact, distribution list, appointment, task
// or stored mail.
//
// What every item has stands here; every other property is its document's.
#pragma once

#include "desktop/outlook/objects/EditedItem.h"

namespace kestrelon::desktop {

class Item final : public ServerObject<Item> {
 public:
  template <typename... Parts>
  explicit Item(Parts&&... parts) : item_(std::forward<Parts>(parts)...) {}

  static const MemberTable<Item>& Members();
  Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) override;
  String TypeName() const override;

  EditedItem& edited() { return item_; }

 private:
  Value GetApplication();
  Value GetClass() { return static_cast<int32_t>(item_.item_class()); }
  Value GetMessageClass();
  Value GetEntryId();
  Value GetParent();
  Value GetSaved() { return item_.IsSaved(); }
  Value GetSize() { return static_cast<int64_t>(item_.document().content().size()); }
  Value GetLastModificationTime();
  Value GetUserProperties();
  Value GetItemProperties();

  // Shows the item to the user; one with unsaved changes as a copy, which leaves the mailbox as it
  // is. Nothing waits for the user.
  Value Display(const MethodArguments& arguments);
  Value Save(const MethodArguments& arguments);
  // Saves, except when told to discard (1).
  Value Close(const MethodArguments& arguments);
  Value Delete(const MethodArguments& arguments);
  // A new mail with the contact as a file. 438 for other items.
  Value ForwardAsVcard(const MethodArguments& arguments);

  EditedItem item_;
};

// An item that lies in a folder.
Object StoredItem(const MailFolderPointer& folder, const ItemFilePointer& file);
// A new, unsaved one of an OlItemType: 1 appointment, 2 contact, 3 task, or 0 for a mail to write,
// which will lie in Drafts whatever the folder. Error 5 for a type that is none or does not fit.
Object NewItem(int32_t item_type, const MailFolderPointer& folder);

}  // namespace kestrelon::desktop
