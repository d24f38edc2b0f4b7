#include "outlook/ContactFields.h"

#include "outlook/OutlookConstants.h"

namespace kestrelon {

Object AddUserProperty(ControlContext& context, const Object& item, StringView name) {
  Object& properties = context.state.user_properties;
  properties = item.GetChild(u"UserProperties");
  return properties.CallChild(u"Add", name, olText);
}

void WriteStreetLine(const Object& contact, StringView property, int number, const String& line) {
  if (line.empty()) return;
  contact.Put(property, number == 1 ? line : contact.Get(property).ToText() + u"\r\n" + line);
}

}  // namespace kestrelon
