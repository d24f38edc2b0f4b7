// A mail that is being written.
//
// Saved or displayed, it is an unsent draft: an .eml file in Drafts.
#pragma once

#include "desktop/outlook/mail/Attachments.h"
#include "desktop/outlook/mail/Recipients.h"
#include "desktop/outlook/objects/UserProperties.h"
#include "desktop/outlook/store/MailFolder.h"

namespace kestrelon::desktop {

class MailItem final : public ServerObject<MailItem>, public UserFieldOwner {
 public:
  static const MemberTable<MailItem>& Members();

  void SetSubject(const String& subject) { subject_ = subject; }
  void AttachContent(const String& file_name, std::string content);

  std::vector<UserField> UserFields() override { return user_fields_; }
  std::optional<UserField> FindUserField(StringView name) override;
  void PutUserField(const UserField& field) override;
  void RemoveUserField(StringView name) override;

 private:
  template <RecipientType type>
  Value GetRecipientsOf() {
    return recipients_->Joined(type);
  }
  template <RecipientType type>
  void PutRecipientsOf(const Value& value) {
    recipients_->Replace(type, value.ToText());
    ShowChange();
  }
  Value GetApplication();
  Value GetRecipients() { return Object(recipients_); }
  Value GetAttachments() { return Object(attachments_); }
  Value GetSubject() { return subject_; }
  void PutSubject(const Value& value);
  // A mail has one body: setting either form replaces the other. The plain form of an HTML mail is
  // its text; a plain mail has no HTML form.
  Value GetBody();
  void PutBody(const Value& value);
  Value GetHtmlBody() { return html_body_; }
  void PutHtmlBody(const Value& value);
  // Nobody has sent it.
  Value GetSenderName() { return u""; }
  Value GetUserProperties();
  // "" until the mail is saved.
  Value GetEntryId();
  Value GetParent();
  Value GetClass();
  Value GetMessageClass() { return u"IPM.Note"; }

  // Writes the draft and shows it to the user. Nothing waits for the user, modal or not.
  Value Display(const MethodArguments& arguments);
  Value Save(const MethodArguments& arguments);
  // Saves, except when told to discard (1): nobody is asked, and nothing is lost.
  Value Close(const MethodArguments& arguments);
  Value Delete(const MethodArguments& arguments);

  std::string Message() const;
  // Error 0x80040109 when a mail program has changed the draft since, 0x8004010A when it is gone.
  void WriteToDrafts(const std::string& message);
  void Write();
  // What is changed while the user looks at the mail is to be seen there.
  void ShowChange();

  std::shared_ptr<Recipients> recipients_ = std::make_shared<Recipients>();
  std::shared_ptr<Attachments> attachments_ = std::make_shared<Attachments>();
  String subject_;
  String plain_body_;  // of a plain mail
  String html_body_;   // "" in a plain mail
  std::vector<UserField> user_fields_;

  String id_;  // in Message-ID and file name; "" until the mail is written
  MailFolderPointer drafts_;
  ItemFilePointer file_;  // nullptr until the mail is written
  std::string saved_;     // the message as of the last Save or Display
  bool is_displayed_ = false;
  bool is_ahead_of_save_ = false;  // what is shown, of what is saved
  bool is_deleted_ = false;
};

}  // namespace kestrelon::desktop
