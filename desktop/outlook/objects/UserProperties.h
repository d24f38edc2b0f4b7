// The user properties of an item: named values that someone added to it.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "desktop/outlook/formats/ItemDocument.h"
#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

// An item that carries them. Names are matched without regard to case.
class UserFieldOwner {
 public:
  virtual ~UserFieldOwner() = default;
  virtual std::vector<UserField> UserFields() = 0;
  virtual std::optional<UserField> FindUserField(StringView name) = 0;
  // Replaces the field of that name or adds one.
  virtual void PutUserField(const UserField& field) = 0;
  virtual void RemoveUserField(StringView name) = 0;
};

class UserProperty final : public ServerObject<UserProperty> {
 public:
  UserProperty(std::shared_ptr<UserFieldOwner> owner, String name)
      : owner_(std::move(owner)), name_(std::move(name)) {}

  static const MemberTable<UserProperty>& Members();

 private:
  Value GetName() { return name_; }
  Value GetType() { return Field().type; }
  Value GetValue() { return Field().value; }
  void PutValue(const Value& value);
  Value Delete(const MethodArguments& arguments);

  // Error 0x8004010F once it is deleted.
  UserField Field() const;

  std::shared_ptr<UserFieldOwner> owner_;
  String name_;
};

// Counts from 1.
class UserProperties final : public ServerObject<UserProperties> {
 public:
  explicit UserProperties(std::shared_ptr<UserFieldOwner> owner) : owner_(std::move(owner)) {}

  static const MemberTable<UserProperties>& Members();
  std::unique_ptr<Enumerator> Enumerate() override;

 private:
  Value GetCount() { return static_cast<int64_t>(owner_->UserFields().size()); }
  // By number or by name.
  Value Item(const MethodArguments& arguments);
  // Nothing when there is none of that name.
  Value Find(const MethodArguments& arguments);
  // The one that is there when the name is taken.
  Value Add(const MethodArguments& arguments);
  Value Remove(const MethodArguments& arguments);

  Value Property(const UserField& field) const;

  std::shared_ptr<UserFieldOwner> owner_;
};

}  // namespace kestrelon::desktop
