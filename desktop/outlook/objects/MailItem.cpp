#include "desktop/outlook/objects/MailItem.h"

#include "desktop/opener/Opener.h"
#include "desktop/outlook/mail/DraftMessage.h"
#include "desktop/outlook/mail/HtmlText.h"
#include "desktop/outlook/store/Mailbox.h"
#include "desktop/storage/Paths.h"

namespace kestrelon::desktop {

const MemberTable<MailItem>& MailItem::Members() {
  using enum RecipientType;
  static const MemberTable<MailItem> table =
      MemberTable<MailItem>(u"MailItem")
          .Property(u"To", &MailItem::GetRecipientsOf<kTo>, &MailItem::PutRecipientsOf<kTo>)
          .Property(u"CC", &MailItem::GetRecipientsOf<kCc>, &MailItem::PutRecipientsOf<kCc>)
          .Property(u"BCC", &MailItem::GetRecipientsOf<kBcc>, &MailItem::PutRecipientsOf<kBcc>)
          .Property(u"Recipients", &MailItem::GetRecipients)
          .Property(u"Attachments", &MailItem::GetAttachments)
          .Property(u"Subject", &MailItem::GetSubject, &MailItem::PutSubject)
          .Property(u"Body", &MailItem::GetBody, &MailItem::PutBody)
          .Property(u"HTMLBody", &MailItem::GetHtmlBody, &MailItem::PutHtmlBody)
          .Property(u"EntryID", &MailItem::GetEntryId)
          .Property(u"Class", &MailItem::GetClass)
          .Method(u"Display", &MailItem::Display, {u"Modal"})
          .Method(u"Save", &MailItem::Save)
          .Method(u"Close", &MailItem::Close, {u"SaveMode"});
  return table;
}

Value MailItem::GetBody() {
  return html_body_.empty() ? plain_body_ : FromUtf8(HtmlToPlainText(ToUtf8(html_body_)));
}

void MailItem::PutBody(const Value& value) {
  plain_body_ = value.ToText();
  html_body_.clear();
}

void MailItem::PutHtmlBody(const Value& value) {
  html_body_ = value.ToText();
  plain_body_.clear();
}

Value MailItem::GetClass() {
  constexpr int32_t kMail = 43;
  return kMail;
}

Value MailItem::Display(const MethodArguments&) {
  const std::filesystem::path draft = WriteToDrafts();
  if (OpenForUser(draft.string()) == OpenOutcome::kCannotStart) {
    throw AutomationError(kFileNotFound,
                          u"The mail is saved as \"" + TextFromPath(draft) +
                              u"\", but the program that shows it cannot be started. Check "
                              u"KESTRELON_OPENER.");
  }
  return {};
}

Value MailItem::Save(const MethodArguments&) {
  WriteToDrafts();
  return {};
}

Value MailItem::Close(const MethodArguments& arguments) {
  constexpr int32_t kDiscard = 1;
  if (arguments.Require(0).ToLong() != kDiscard) WriteToDrafts();
  return {};
}

std::filesystem::path MailItem::WriteToDrafts() {
  const String entry_id = entry_id_.empty() ? NewEntryId() : entry_id_;
  DraftMessage draft;
  draft.id = ToUtf8(entry_id);
  draft.subject = ToUtf8(subject_);
  draft.recipients = &recipients_->all();
  draft.attachments = &attachments_->all();
  draft.plain_body = ToUtf8(plain_body_);
  draft.html_body = ToUtf8(html_body_);
  const std::filesystem::path path = WriteDraft(entry_id, Compose(draft));
  entry_id_ = entry_id;
  return path;
}

}  // namespace kestrelon::desktop
