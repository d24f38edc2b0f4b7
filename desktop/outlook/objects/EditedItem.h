// An item as one caller sees and changes it: a document of its own, of which nothing reaches the
// mailbox before Save.
//
// Others may change the file meanwhile. Save then makes the changes again on the new state, and
// refuses when both changed the same property.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "desktop/outlook/objects/UserProperties.h"
#include "desktop/outlook/store/MailFolder.h"

namespace kestrelon::desktop {

class EditedItem final : public UserFieldOwner {
 public:
  // Of an item that lies in the folder. Its document is read when it is first needed.
  EditedItem(MailFolderPointer folder, ItemFilePointer file);
  // A new item for the folder.
  EditedItem(MailFolderPointer folder, std::unique_ptr<ItemDocument> document);

  const MailFolderPointer& folder() const { return folder_; }
  // The state that the document stands for; nullptr until the item is saved for the first time.
  const ItemFilePointer& file() const { return file_; }
  ItemClass item_class() const { return file_ ? file_->item_class : document_->item_class(); }
  bool IsSaved() const { return file_ != nullptr && changes_.empty(); }

  const ItemDocument& document();
  // `property` in lower case.
  void Put(StringView property, const Value& value);

  std::vector<UserField> UserFields() override { return document().UserFields(); }
  std::optional<UserField> FindUserField(StringView name) override {
    return document().FindUserField(name);
  }
  void PutUserField(const UserField& field) override;
  void RemoveUserField(StringView name) override;

  // One write, or none when the content is as it was. Error 0x80040109 when another program
  // changed a property that was changed here, 0x8004010A when the item is deleted; nothing is
  // written then.
  void Save();
  // Forgets the changes since the last Save.
  void Discard();
  // Error 0x80040109 when the item is not as it was seen here.
  void Delete();

 private:
  struct Change {
    bool is_user_field;
    String name;
    Value value;   // Empty for a removed user field
    int32_t type;  // of a user field
    void Make(ItemDocument& document) const;
    Value Read(const ItemDocument& document) const;
  };

  void ReadFile();
  void Record(Change change);
  void SaveNew();
  // Makes the changes on what lies there now.
  void Merge(const ItemFilePointer& current);

  MailFolderPointer folder_;
  ItemFilePointer file_;
  std::unique_ptr<ItemDocument> document_;
  std::string content_;          // as it was before the changes; kept while there are any
  std::vector<Change> changes_;  // of a stored item, since the last Save
  bool is_deleted_ = false;
};

}  // namespace kestrelon::desktop
