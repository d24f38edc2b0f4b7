#include "frontends/commandline/JsonValue.h"

#include "platform/linux/PageDocuments.h"

namespace kestrelon::commandline {

using Json = nlohmann::ordered_json;

namespace {

Json ObjectToJson(Object object) {
  if (object.IsNothing()) return nullptr;
  // What is printed is no call of the member's, so it is not traced.
  if (object.pointer()->Wrapped() != nullptr) object = object.pointer()->Wrapped();
  Json json;
  const auto is_no_document = IgnoreFailures([&] { json = ToUtf8(MarkupOf(object)); });
  if (is_no_document) json = {{"object", ToUtf8(object.pointer()->TypeName())}};
  return json;
}

}  // namespace

Json ToJson(const Value& value) {
  if (value.IsEmpty() || value.IsNull() || value.IsOmitted()) return nullptr;
  if (value.IsBoolean()) return value.AsBoolean();
  if (value.IsInteger()) return value.AsInteger();
  if (value.IsDouble()) return value.AsDouble();
  if (value.IsObject()) return ObjectToJson(value.ToObject());
  if (value.IsArray()) {
    Json array = Json::array();
    for (const Value& element : value.AsArray()) array.push_back(ToJson(element));
    return array;
  }
  return ToUtf8(value.ToText());
}

Value FromJson(const Json& json) {
  if (json.is_string()) return FromUtf8(json.get<std::string>());
  if (json.is_boolean()) return json.get<bool>();
  if (json.is_number_integer() && !json.is_number_unsigned()) return json.get<int64_t>();
  if (json.is_number_unsigned() && json.get<uint64_t>() <= INT32_MAX) {
    return static_cast<int32_t>(json.get<uint64_t>());
  }
  if (json.is_number()) return json.get<double>();
  if (json.is_null()) return Value::Null{};
  if (!json.is_array()) throw AutomationError(kTypeMismatch);
  Value::Array array;
  for (const Json& element : json) array.push_back(FromJson(element));
  return array;
}

}  // namespace kestrelon::commandline
