// A mail that is being written.
#pragma once

#include <filesystem>

#include "desktop/outlook/mail/Attachments.h"
#include "desktop/outlook/mail/Recipients.h"
#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

class MailItem final : public ServerObject<MailItem> {
 public:
  static const MemberTable<MailItem>& Members();

 private:
  template <RecipientType type>
  Value GetRecipientsOf() {
    return recipients_->Joined(type);
  }
  template <RecipientType type>
  void PutRecipientsOf(const Value& value) {
    recipients_->Replace(type, value.ToText());
  }
  Value GetRecipients() { return Object(recipients_); }
  Value GetAttachments() { return Object(attachments_); }
  Value GetSubject() { return subject_; }
  void PutSubject(const Value& value) { subject_ = value.ToText(); }
  // A mail has one body: setting either form replaces the other. The plain form of an HTML mail is
  // its text; a plain mail has no HTML form.
  Value GetBody();
  void PutBody(const Value& value);
  Value GetHtmlBody() { return html_body_; }
  void PutHtmlBody(const Value& value);
  // "" until the mail is saved.
  Value GetEntryId() { return entry_id_; }
  Value GetClass();

  // Writes the draft and shows it to the user. Nothing waits for the user, modal or not.
  Value Display(const MethodArguments& arguments);
  Value Save(const MethodArguments& arguments);
  // Saves, except when told to discard (1): nobody is asked, and nothing is lost.
  Value Close(const MethodArguments& arguments);

  std::filesystem::path WriteToDrafts();

  std::shared_ptr<Recipients> recipients_ = std::make_shared<Recipients>();
  std::shared_ptr<Attachments> attachments_ = std::make_shared<Attachments>();
  String subject_;
  String plain_body_;  // of a plain mail
  String html_body_;   // "" in a plain mail
  String entry_id_;
};

}  // namespace kestrelon::desktop
