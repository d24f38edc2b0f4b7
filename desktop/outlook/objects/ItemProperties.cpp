#include "desktop/outlook/objects/ItemProperties.h"

#include "desktop/outlook/formats/OutlookErrors.h"

namespace kestrelon::desktop {

const MemberTable<ItemProperty>& ItemProperty::Members() {
  static const MemberTable<ItemProperty> table =
      MemberTable<ItemProperty>(u"ItemProperty")
          .Property(u"Name", &ItemProperty::GetName)
          .Property(u"Value", &ItemProperty::GetValue, &ItemProperty::PutValue)
          .Property(u"", &ItemProperty::GetValue, &ItemProperty::PutValue);
  return table;
}

const MemberTable<ItemProperties>& ItemProperties::Members() {
  static const MemberTable<ItemProperties> table =
      MemberTable<ItemProperties>(u"ItemProperties")
          .Property(u"Count", &ItemProperties::GetCount)
          .Method(u"Item", &ItemProperties::Item, {u"Index"})
          .Method(u"", &ItemProperties::Item, {u"Index"});
  return table;
}

std::unique_ptr<Enumerator> ItemProperties::Enumerate() {
  std::vector<Value> properties;
  for (const StringView name : Names()) {
    properties.push_back(Object(std::make_shared<ItemProperty>(item_, name)));
  }
  return std::make_unique<VectorEnumerator>(std::move(properties));
}

Value ItemProperties::Item(const MethodArguments& arguments) {
  const Value& index = arguments.Require(0);
  size_t place = 0;
  if (index.IsString()) {
    while (place < Names().size() && !EqualIgnoringCase(Names()[place], index.AsString())) ++place;
  } else {
    place = static_cast<size_t>(index.ToLong());
  }
  if (place >= Names().size()) throw ArrayIndexOutOfBounds();
  return Object(std::make_shared<ItemProperty>(item_, Names()[place]));
}

}  // namespace kestrelon::desktop
