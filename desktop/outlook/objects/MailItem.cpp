#include "desktop/outlook/objects/MailItem.h"

#include <algorithm>

#include "desktop/outlook/formats/OutlookErrors.h"
#include "desktop/outlook/mail/DraftMessage.h"
#include "desktop/outlook/mail/HtmlText.h"
#include "desktop/outlook/mail/MessageDocument.h"
#include "desktop/outlook/objects/DefaultFolders.h"
#include "desktop/outlook/objects/Folder.h"
#include "desktop/outlook/objects/OutlookApplication.h"
#include "desktop/outlook/objects/Showing.h"
#include "desktop/outlook/store/Mailbox.h"

namespace kestrelon::desktop {
namespace {

AutomationError Deleted() {
  return AutomationError(kItemDeleted,
                         u"The operation cannot be performed because the mail has been deleted or "
                         u"sent. Write a new one.");
}

AutomationError Changed() {
  return AutomationError(kItemChanged,
                         u"The operation cannot be performed because the mail has been changed in "
                         u"another program. Go on there.");
}

}  // namespace

const MemberTable<MailItem>& MailItem::Members() {
  using enum RecipientType;
  static const MemberTable<MailItem> table =
      MemberTable<MailItem>(u"MailItem")
          .Property(u"Application", &MailItem::GetApplication)
          .Property(u"To", &MailItem::GetRecipientsOf<kTo>, &MailItem::PutRecipientsOf<kTo>)
          .Property(u"CC", &MailItem::GetRecipientsOf<kCc>, &MailItem::PutRecipientsOf<kCc>)
          .Property(u"BCC", &MailItem::GetRecipientsOf<kBcc>, &MailItem::PutRecipientsOf<kBcc>)
          .Property(u"Recipients", &MailItem::GetRecipients)
          .Property(u"Attachments", &MailItem::GetAttachments)
          .Property(u"Subject", &MailItem::GetSubject, &MailItem::PutSubject)
          .Property(u"Body", &MailItem::GetBody, &MailItem::PutBody)
          .Property(u"HTMLBody", &MailItem::GetHtmlBody, &MailItem::PutHtmlBody)
          .Property(u"SenderName", &MailItem::GetSenderName)
          .Property(u"UserProperties", &MailItem::GetUserProperties)
          .Property(u"EntryID", &MailItem::GetEntryId)
          .Property(u"Parent", &MailItem::GetParent)
          .Property(u"Class", &MailItem::GetClass)
          .Property(u"MessageClass", &MailItem::GetMessageClass)
          .Method(u"Display", &MailItem::Display, {u"Modal"})
          .Method(u"Save", &MailItem::Save)
          .Method(u"Close", &MailItem::Close, {u"SaveMode"})
          .Method(u"Delete", &MailItem::Delete);
  return table;
}

void MailItem::AttachContent(const String& file_name, std::string content) {
  attachments_->Append(std::make_shared<Attachment>(file_name, file_name, std::move(content)));
}

std::optional<UserField> MailItem::FindUserField(StringView name) {
  for (const UserField& field : user_fields_) {
    if (EqualIgnoringCase(field.name, name)) return field;
  }
  return std::nullopt;
}

void MailItem::PutUserField(const UserField& field) {
  for (UserField& known : user_fields_) {
    if (!EqualIgnoringCase(known.name, field.name)) continue;
    known = field;
    return;
  }
  user_fields_.push_back(field);
}

void MailItem::RemoveUserField(StringView name) {
  std::erase_if(user_fields_,
                [&](const UserField& field) { return EqualIgnoringCase(field.name, name); });
}

Value MailItem::GetApplication() { return CreateOutlookApplication(); }

void MailItem::PutSubject(const Value& value) {
  subject_ = value.ToText();
  ShowChange();
}

Value MailItem::GetBody() {
  return html_body_.empty() ? plain_body_ : FromUtf8(HtmlToPlainText(ToUtf8(html_body_)));
}

void MailItem::PutBody(const Value& value) {
  plain_body_ = value.ToText();
  html_body_.clear();
  ShowChange();
}

void MailItem::PutHtmlBody(const Value& value) {
  html_body_ = value.ToText();
  plain_body_.clear();
  ShowChange();
}

Value MailItem::GetUserProperties() {
  return Object(std::make_shared<UserProperties>(shared_from_this()));
}

Value MailItem::GetEntryId() { return file_ ? drafts_->EntryIdOf(*file_) : String(); }

Value MailItem::GetParent() {
  return Object(std::make_shared<Folder>(DefaultFolder(OwnStore(), kDrafts)));
}

Value MailItem::GetClass() { return static_cast<int32_t>(ItemClass::kMail); }

Value MailItem::Display(const MethodArguments&) {
  Write();
  ShowFile(drafts_->path() / file_->name);
  is_displayed_ = true;
  return {};
}

Value MailItem::Save(const MethodArguments&) {
  Write();
  return {};
}

Value MailItem::Close(const MethodArguments& arguments) {
  constexpr int32_t kDiscard = 1;
  if (arguments.Require(0).ToLong() != kDiscard) {
    Write();
  } else if (is_ahead_of_save_) {
    WriteToDrafts(saved_);
    is_ahead_of_save_ = false;
  }
  is_displayed_ = false;
  return {};
}

Value MailItem::Delete(const MethodArguments&) {
  if (is_deleted_) throw Deleted();
  if (file_) {
    using enum FolderFiles::ReplaceOutcome;
    ItemFilePointer current = file_;
    const auto outcome = drafts_->files()->Remove(current);
    if (outcome == kGone) throw Deleted();
    if (outcome == kChangedMeanwhile) throw Changed();
  }
  is_deleted_ = true;
  return {};
}

std::string MailItem::Message() const {
  DraftMessage draft;
  draft.id = ToUtf8(id_);
  draft.subject = ToUtf8(subject_);
  draft.recipients = &recipients_->all();
  draft.attachments = &attachments_->all();
  draft.plain_body = ToUtf8(plain_body_);
  draft.html_body = ToUtf8(html_body_);
  std::string message = Compose(draft);
  if (user_fields_.empty()) return message;
  const auto document = ReadMessage(std::move(message));
  for (const UserField& field : user_fields_) document->PutUserField(field);
  return document->content();
}

void MailItem::Write() {
  if (is_deleted_) throw Deleted();
  if (id_.empty()) id_ = NewEntryId();
  std::string message = Message();
  WriteToDrafts(message);
  saved_ = std::move(message);
  is_ahead_of_save_ = false;
}

void MailItem::WriteToDrafts(const std::string& message) {
  using enum FolderFiles::ReplaceOutcome;
  if (file_ == nullptr) {
    drafts_ = DefaultFolder(OwnStore(), kDrafts);
    file_ = drafts_->files()->Create(ToUtf8(id_), ".eml", ItemClass::kMail, message);
    return;
  }
  ItemFilePointer current = file_;
  const auto outcome = drafts_->files()->Replace(current, message);
  if (outcome == kGone) throw Deleted();
  if (outcome == kChangedMeanwhile) throw Changed();
  file_ = std::move(current);
}

void MailItem::ShowChange() {
  if (!is_displayed_) return;
  WriteToDrafts(Message());
  is_ahead_of_save_ = true;
}

}  // namespace kestrelon::desktop
