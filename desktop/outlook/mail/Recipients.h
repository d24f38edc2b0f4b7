// Whom an item goes to.
#pragma once

#include <vector>

#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

enum class RecipientType : int32_t { kTo = 1, kCc = 2, kBcc = 3 };

// A recipient as the caller named it: "a@b", "Name <a@b>", or a text that is no address. That one
// is resolved only when it is a name that the mailbox knows; it goes into the mail as a name for
// the user to replace.
class Recipient final : public ServerObject<Recipient> {
 public:
  using KnowsUser = bool (*)(StringView name);
  // `knows_user` is asked for names without an address.
  Recipient(StringView text, RecipientType type, KnowsUser knows_user = nullptr);

  static const MemberTable<Recipient>& Members();

  const String& text() const { return text_; }
  const String& name() const { return name_; }
  const String& address() const { return address_; }  // "" for a name alone
  RecipientType type() const { return type_; }

 private:
  Value GetName() { return name_; }
  Value GetAddress() { return address_; }
  Value GetResolved();
  Value GetType() { return static_cast<int32_t>(type_); }
  void PutType(const Value& value);
  Value Resolve(const MethodArguments&) { return GetResolved(); }

  String text_;
  String name_;
  String address_;
  RecipientType type_;
  KnowsUser knows_user_;
};

// Counts from 1.
class Recipients final : public ServerObject<Recipients> {
 public:
  static const MemberTable<Recipients>& Members();
  std::unique_ptr<Enumerator> Enumerate() override;

  const std::vector<std::shared_ptr<Recipient>>& all() const { return recipients_; }
  // The recipients of one type, joined by "; ".
  String Joined(RecipientType type) const;
  // Replaces them by those in a text separated by ";", or by "," between addresses.
  void Replace(RecipientType type, StringView text);

 private:
  Value GetCount();
  Value Item(const MethodArguments& arguments);
  Value Add(const MethodArguments& arguments);
  void AddEach(RecipientType type, StringView text);

  std::vector<std::shared_ptr<Recipient>> recipients_;
};

}  // namespace kestrelon::desktop
