// The variant of the control: what a late-bound call takes and gives.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "automation/Date.h"
#include "automation/Text.h"

namespace kestrelon {

class DispatchObject;
using DispatchPointer = std::shared_ptr<DispatchObject>;

class Object;

class Value {
 public:
  struct Null {};
  struct Omitted {};  // an optional argument that the caller left out
  using Array = std::vector<Value>;

  Value() = default;  // Empty
  Value(Null null) : data_(null) {}
  Value(Omitted omitted) : data_(omitted) {}
  Value(bool boolean) : data_(boolean) {}
  Value(int32_t number) : data_(number) {}
  Value(int64_t number);  // a Double where 32 bits do not hold it
  Value(double number) : data_(number) {}
  Value(Date date) : data_(date) {}
  Value(String text) : data_(std::move(text)) {}
  Value(StringView text) : data_(String(text)) {}
  Value(const char16_t* text) : data_(String(text)) {}
  Value(DispatchPointer object) : data_(std::move(object)) {}
  Value(const Object& object);
  Value(Array array) : data_(std::make_shared<const Array>(std::move(array))) {}
  template <typename T>
  Value(T*) = delete;  // a pointer must not become a Boolean

  bool IsEmpty() const { return std::holds_alternative<std::monostate>(data_); }
  bool IsNull() const { return std::holds_alternative<Null>(data_); }
  bool IsOmitted() const { return std::holds_alternative<Omitted>(data_); }
  bool IsBoolean() const { return std::holds_alternative<bool>(data_); }
  bool IsInteger() const { return std::holds_alternative<int32_t>(data_); }
  bool IsDouble() const { return std::holds_alternative<double>(data_); }
  bool IsDate() const { return std::holds_alternative<Date>(data_); }
  bool IsString() const { return std::holds_alternative<String>(data_); }
  bool IsObject() const { return std::holds_alternative<DispatchPointer>(data_); }
  bool IsArray() const { return std::holds_alternative<std::shared_ptr<const Array>>(data_); }

  // Conversions as the scripting run-time makes them. Error 94 for Null, 13 for what cannot be
  // converted, 6 for a number out of range. An object is asked for its default member.
  String ToText() const;
  bool ToBoolean() const;
  int16_t ToInteger() const;  // rounds halves to even
  int32_t ToLong() const;     // rounds halves to even
  double ToDouble() const;
  Date ToDate() const;
  // Error 424 unless it holds an object (which may be Nothing).
  Object ToObject() const;

  // What it holds, without conversion; only after the matching Is…().
  bool AsBoolean() const { return std::get<bool>(data_); }
  int32_t AsInteger() const { return std::get<int32_t>(data_); }
  double AsDouble() const { return std::get<double>(data_); }
  Date AsDate() const { return std::get<Date>(data_); }
  const String& AsString() const { return std::get<String>(data_); }
  const DispatchPointer& AsObject() const { return std::get<DispatchPointer>(data_); }
  const Array& AsArray() const { return *std::get<std::shared_ptr<const Array>>(data_); }

 private:
  std::variant<std::monostate, Null, Omitted, bool, int32_t, double, Date, String, DispatchPointer,
               std::shared_ptr<const Array>>
      data_;
};

// The run-time's "=": false whenever either side is Null. Texts compare exactly; a number and a
// text that holds one compare as numbers.
bool LooselyEqual(const Value& a, const Value& b);

}  // namespace kestrelon
