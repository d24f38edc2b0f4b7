#include "desktop/outlook/objects/EditedItem.h"

#include "desktop/outlook/formats/CalendarDocument.h"
#include "desktop/outlook/formats/ContactDocument.h"
#include "desktop/outlook/formats/OutlookErrors.h"
#include "desktop/outlook/mail/MessageDocument.h"
#include "desktop/storage/Paths.h"

namespace kestrelon::desktop {
namespace {

std::unique_ptr<ItemDocument> ReadDocument(ItemClass item_class, std::string content) {
  switch (item_class) {
    case ItemClass::kContact:
    case ItemClass::kDistributionList:
      return ReadContact(std::move(content));
    case ItemClass::kAppointment:
    case ItemClass::kTask:
      return ReadCalendarItem(std::move(content));
    case ItemClass::kMail:
      return ReadMessage(std::move(content));
  }
  return nullptr;
}

AutomationError Changed(StringView what) {
  return AutomationError(kItemChanged,
                         u"The operation cannot be performed because the item has been changed. " +
                             String(what) + u" Open it again and repeat what you changed.");
}

AutomationError Deleted() {
  return AutomationError(
      kItemDeleted,
      u"The operation cannot be performed because the object has been deleted. Create a new item "
      u"if you want to keep it.");
}

bool IsSame(const Value& a, const Value& b) {
  return a.IsEmpty() || b.IsEmpty() ? a.IsEmpty() == b.IsEmpty() : LooselyEqual(a, b);
}

}  // namespace

EditedItem::EditedItem(MailFolderPointer folder, ItemFilePointer file)
    : folder_(std::move(folder)), file_(std::move(file)) {}

EditedItem::EditedItem(MailFolderPointer folder, std::unique_ptr<ItemDocument> document)
    : folder_(std::move(folder)), document_(std::move(document)) {}

const ItemDocument& EditedItem::document() {
  if (document_ == nullptr) ReadFile();
  return *document_;
}

void EditedItem::ReadFile() {
  document_ = ReadDocument(file_->item_class, file_->Content());
  if (document_ == nullptr) {
    throw AutomationError(kItemChanged, u"\"" + TextFromPath(folder_->path() / file_->name) +
                                            u"\" is no item any more. Look at the file.");
  }
}

void EditedItem::Change::Make(ItemDocument& document) const {
  if (!is_user_field) {
    document.Put(name, value);
  } else if (value.IsEmpty()) {
    document.RemoveUserField(name);
  } else {
    document.PutUserField({name, type, value.AsString()});
  }
}

Value EditedItem::Change::Read(const ItemDocument& document) const {
  if (!is_user_field) return document.Get(name);
  const auto field = document.FindUserField(name);
  return field ? Value(field->value) : Value();
}

void EditedItem::Record(Change change) {
  document();
  if (file_ && changes_.empty()) content_ = document_->content();
  change.Make(*document_);
  if (file_) changes_.push_back(std::move(change));
}

void EditedItem::Put(StringView property, const Value& value) {
  Record({false, String(property), value, 0});
}

void EditedItem::PutUserField(const UserField& field) {
  Record({true, field.name, field.value, field.type});
}

void EditedItem::RemoveUserField(StringView name) { Record({true, String(name), {}, 0}); }

void EditedItem::Save() {
  using enum FolderFiles::ReplaceOutcome;
  if (is_deleted_) throw Deleted();
  if (file_ == nullptr) return SaveNew();
  while (!changes_.empty() && document_->content() != content_) {
    ItemFilePointer current = file_;
    const auto outcome = folder_->files()->Replace(current, document_->content());
    if (outcome == kGone) throw Deleted();
    if (outcome == kChangedMeanwhile) {
      Merge(current);
      continue;
    }
    file_ = std::move(current);
    break;
  }
  changes_.clear();
  content_.clear();
}

void EditedItem::SaveNew() {
  const ItemClass item_class = document_->item_class();
  const bool is_card =
      item_class == ItemClass::kContact || item_class == ItemClass::kDistributionList;
  file_ = folder_->files()->Create(document_->Uid(), is_card ? ".vcf" : ".ics", item_class,
                                   document_->content());
}

void EditedItem::Merge(const ItemFilePointer& current) {
  std::string content = current->Content();
  const auto before = ReadDocument(file_->item_class, content_);
  auto merged = ReadDocument(current->item_class, content);
  if (before == nullptr || merged == nullptr || merged->item_class() != before->item_class()) {
    throw Changed(u"It is of another kind now.");
  }
  for (const Change& change : changes_) {
    const Value theirs = change.Read(*merged);
    if (!IsSame(theirs, change.Read(*before)) && !IsSame(theirs, change.Read(*document_))) {
      throw Changed(u"Another program gave its \"" + change.name + u"\" another value.");
    }
  }
  for (const Change& change : changes_) change.Make(*merged);
  document_ = std::move(merged);
  content_ = std::move(content);
  file_ = current;
}

void EditedItem::Discard() {
  if (file_) document_.reset();
  changes_.clear();
  content_.clear();
}

void EditedItem::Delete() {
  using enum FolderFiles::ReplaceOutcome;
  if (is_deleted_) throw Deleted();
  if (file_) {
    ItemFilePointer current = file_;
    const auto outcome = folder_->files()->Remove(current);
    if (outcome == kGone) throw Deleted();
    if (outcome == kChangedMeanwhile) throw Changed(u"It is not deleted.");
  }
  is_deleted_ = true;
}

}  // namespace kestrelon::desktop
