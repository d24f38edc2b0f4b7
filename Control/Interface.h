// How a member of the interface is described, and how its description is made from its function.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "Control/ObjectState.h"
#include "Control/PageDocuments.h"

namespace kestrelon {

enum class ParameterType {
  kNone,     // no result
  kString,   // BSTR
  kBoolean,  // 16-bit boolean
  kInteger,  // 16-bit signed
  kVariant,
  kXmlDocument,   // reference to an MSXML2 DOMDocument
  kHtmlDocument,  // reference to the page's HTMLDocument
  kObject,        // reference to an automation object
};

enum class MemberKind { kMethod, kPropertyPut };

struct Parameter {
  StringView name;
  bool optional = false;
  // What the member sees when the argument is left out; an absent default is the type's empty
  // value.
  std::optional<Value> default_value;
  ParameterType type = ParameterType::kNone;
};

struct Member {
  StringView name;
  uint32_t dispid = 0;
  MemberKind kind = MemberKind::kMethod;
  ParameterType result = ParameterType::kNone;
  std::vector<Parameter> parameters;
  // Takes one value a parameter, in order, Omitted where the caller left one out; converts them,
  // calls the member and writes every parameter back as it stands after the call. A conversion that
  // fails raises its error before the member runs; error 449 for a required argument left out, 450
  // for the wrong number of values.
  std::function<Value(ControlContext&, std::vector<Value>&)> invoke;
};

namespace interface_detail {

template <typename T>
constexpr ParameterType TypeOf() {
  if constexpr (std::is_same_v<T, void>) return ParameterType::kNone;
  if constexpr (std::is_same_v<T, String>) return ParameterType::kString;
  if constexpr (std::is_same_v<T, bool>) return ParameterType::kBoolean;
  if constexpr (std::is_same_v<T, int16_t>) return ParameterType::kInteger;
  if constexpr (std::is_same_v<T, Value>) return ParameterType::kVariant;
  if constexpr (std::is_same_v<T, XmlDocument>) return ParameterType::kXmlDocument;
  if constexpr (std::is_same_v<T, HtmlDocument>) return ParameterType::kHtmlDocument;
  if constexpr (std::is_same_v<T, Object>) return ParameterType::kObject;
}

template <typename T>
T FromValue(const Value& value) {
  if constexpr (std::is_same_v<T, String>) return value.ToText();
  if constexpr (std::is_same_v<T, bool>) return value.ToBoolean();
  if constexpr (std::is_same_v<T, int16_t>) return value.ToInteger();
  if constexpr (std::is_same_v<T, Value>) return value;
  if constexpr (std::is_base_of_v<Object, T>) {
    // `null` from a page is Nothing.
    if (value.IsNull() || value.IsEmpty()) return T();
    return T(value.ToObject().pointer());
  }
}

template <typename T>
Value ToValue(const T& result) {
  if constexpr (std::is_same_v<T, int16_t>) {
    return Value(static_cast<int32_t>(result));
  } else {
    return Value(result);
  }
}

template <typename T>
T Receive(const Parameter& parameter, const Value& given) {
  if (!given.IsOmitted()) return FromValue<T>(given);
  if (!parameter.optional) throw AutomationError(kArgumentNotOptional);
  return parameter.default_value ? FromValue<T>(*parameter.default_value) : T();
}

template <typename Result, typename... Args, size_t... I>
Value CallWithCells(Result (*function)(ControlContext&, Args&...), ControlContext& context,
                    std::tuple<Args...>& cells, std::index_sequence<I...>) {
  if constexpr (std::is_same_v<Result, void>) {
    function(context, std::get<I>(cells)...);
    return {};
  } else {
    return ToValue<Result>(function(context, std::get<I>(cells)...));
  }
}

template <typename... Args, size_t... I>
std::tuple<Args...> ReceiveAll(const std::vector<Parameter>& parameters,
                               const std::vector<Value>& values, std::index_sequence<I...>) {
  return std::tuple<Args...>{Receive<Args>(parameters[I], values[I])...};
}

}  // namespace interface_detail

inline Parameter Required(StringView name) { return {name, false, std::nullopt}; }
inline Parameter Optional(StringView name) { return {name, true, std::nullopt}; }
inline Parameter Optional(StringView name, Value default_value) {
  return {name, true, std::move(default_value)};
}

// The description of a member: its function gives the types, the list the names.
template <typename Result, typename... Args>
Member Describe(StringView name, uint32_t dispid, Result (*function)(ControlContext&, Args&...),
                std::vector<Parameter> parameters = {}, MemberKind kind = MemberKind::kMethod) {
  using namespace interface_detail;
  using Indices = std::index_sequence_for<Args...>;
  const std::vector<ParameterType> types = {TypeOf<Args>()...};
  if (parameters.size() != types.size()) {
    throw std::logic_error(ToUtf8(name) + ": names and parameters of the function do not match");
  }
  for (size_t i = 0; i < types.size(); ++i) parameters[i].type = types[i];
  const auto invoke = [function, parameters](ControlContext& context, std::vector<Value>& values) {
    if (values.size() != sizeof...(Args)) throw AutomationError(kWrongNumberOfArguments);
    std::tuple<Args...> cells = ReceiveAll<Args...>(parameters, values, Indices());
    const auto write_back = [&]<size_t... I>(std::index_sequence<I...>) {
      ((values[I] = ToValue<Args>(std::get<I>(cells))), ...);
    };
    try {
      Value result = CallWithCells(function, context, cells, Indices());
      write_back(Indices());
      return result;
    } catch (const AutomationError&) {
      write_back(Indices());  // a caller's variables keep what the member had stored in them
      throw;
    }
  };
  return {name, dispid, kind, TypeOf<Result>(), std::move(parameters), invoke};
}

}  // namespace kestrelon
