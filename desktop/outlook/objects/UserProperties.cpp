#include "desktop/outlook/objects/UserProperties.h"

#include "desktop/outlook/formats/OutlookErrors.h"

namespace kestrelon::desktop {

const MemberTable<UserProperty>& UserProperty::Members() {
  static const MemberTable<UserProperty> table =
      MemberTable<UserProperty>(u"UserProperty")
          .Property(u"Name", &UserProperty::GetName)
          .Property(u"Type", &UserProperty::GetType)
          .Property(u"Value", &UserProperty::GetValue, &UserProperty::PutValue)
          .Property(u"", &UserProperty::GetValue, &UserProperty::PutValue)
          .Method(u"Delete", &UserProperty::Delete);
  return table;
}

UserField UserProperty::Field() const {
  std::optional<UserField> field = owner_->FindUserField(name_);
  if (!field) throw ObjectNotFound();
  return *std::move(field);
}

void UserProperty::PutValue(const Value& value) {
  UserField field = Field();
  field.value = value.ToText();
  owner_->PutUserField(field);
}

Value UserProperty::Delete(const MethodArguments&) {
  owner_->RemoveUserField(Field().name);
  return {};
}

const MemberTable<UserProperties>& UserProperties::Members() {
  static const MemberTable<UserProperties> table =
      MemberTable<UserProperties>(u"UserProperties")
          .Property(u"Count", &UserProperties::GetCount)
          .Method(u"Item", &UserProperties::Item, {u"Index"})
          .Method(u"", &UserProperties::Item, {u"Index"})
          .Method(u"Find", &UserProperties::Find, {u"Name", u"Custom"})
          .Method(u"Add", &UserProperties::Add,
                  {u"Name", u"Type", u"AddToFolderFields", u"DisplayFormat"})
          .Method(u"Remove", &UserProperties::Remove, {u"Index"});
  return table;
}

std::unique_ptr<Enumerator> UserProperties::Enumerate() {
  std::vector<Value> properties;
  for (const UserField& field : owner_->UserFields()) properties.push_back(Property(field));
  return std::make_unique<VectorEnumerator>(std::move(properties));
}

Value UserProperties::Property(const UserField& field) const {
  return Object(std::make_shared<UserProperty>(owner_, field.name));
}

Value UserProperties::Item(const MethodArguments& arguments) {
  const Value& index = arguments.Require(0);
  if (index.IsString()) {
    const auto field = owner_->FindUserField(index.AsString());
    if (!field) throw ArrayIndexOutOfBounds();
    return Property(*field);
  }
  const std::vector<UserField> fields = owner_->UserFields();
  return Property(fields[PlaceInCollection(index, fields.size())]);
}

Value UserProperties::Find(const MethodArguments& arguments) {
  const auto field = owner_->FindUserField(arguments.Require(0).ToText());
  return field ? Property(*field) : Value(Object());
}

Value UserProperties::Add(const MethodArguments& arguments) {
  UserField field{arguments.Require(0).ToText(), arguments.Require(1).ToLong(), u""};
  if (Trim(field.name).empty()) {
    throw AutomationError(kInvalidProcedureCall, u"A user property needs a name");
  }
  if (const auto existing = owner_->FindUserField(field.name)) return Property(*existing);
  owner_->PutUserField(field);
  return Property(field);
}

Value UserProperties::Remove(const MethodArguments& arguments) {
  const std::vector<UserField> fields = owner_->UserFields();
  owner_->RemoveUserField(fields[PlaceInCollection(arguments.Require(0), fields.size())].name);
  return {};
}

}  // namespace kestrelon::desktop
