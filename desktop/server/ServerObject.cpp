#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

MethodArguments PlaceArguments(const Arguments& arguments, const ParameterNames& names) {
  if (arguments.positional.size() > names.size()) throw AutomationError(kWrongNumberOfArguments);
  if (arguments.named.empty()) return MethodArguments(std::span(arguments.positional));
  std::vector<Value> values = arguments.positional;
  for (const NamedArgument& argument : arguments.named) {
    size_t index = 0;
    while (index < names.size() && !EqualIgnoringCase(names[index], argument.name)) ++index;
    if (index == names.size()) throw AutomationError(kNamedArgumentNotFound);
    if (index < arguments.positional.size()) throw AutomationError(kWrongNumberOfArguments);
    if (values.size() <= index) values.resize(index + 1, Value(Value::Omitted{}));
    values[index] = argument.value;
  }
  return MethodArguments(std::move(values));
}

StringView FoldMemberName(StringView name, String& buffer) {
  for (const char16_t unit : name) {
    if (LowerCase(unit) != unit) {
      buffer = LowerCase(name);
      return buffer;
    }
  }
  return name;
}

}  // namespace kestrelon::desktop
