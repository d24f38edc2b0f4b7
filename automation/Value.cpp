#include "automation/Value.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "automation/DispatchObject.h"

namespace kestrelon {
namespace {

// Numbers are not written and read by the C library: the program that hosts the control may have
// set that to a language with a decimal comma.

// 15 significant digits, as the run-time writes a Double.
String FormatDouble(double number) {
  std::array<char, 40> buffer{};
  const auto end = std::to_chars(buffer.begin(), buffer.end(), number, std::chars_format::general,
                                 /*precision=*/15)
                       .ptr;
  return UpperCase(FromUtf8({buffer.begin(), end}));
}

std::optional<double> ParseNumber(StringView text) {
  std::string ascii = ToAnsi(Trim(text));
  if (ascii.starts_with('+') && !ascii.starts_with("+-")) ascii.erase(0, 1);
  // What else from_chars knows is no number to the run-time.
  if (ascii.find_first_not_of("0123456789+-.eE") != std::string::npos) return std::nullopt;
  const char* last = ascii.data() + ascii.size();
  double number = 0;
  const auto [end, error] = std::from_chars(ascii.data(), last, number);
  if (error == std::errc::invalid_argument || end != last) return std::nullopt;
  if (error == std::errc::result_out_of_range) {
    const bool is_small = ascii.find('-', 1) != std::string::npos;  // by its exponent
    number = std::copysign(is_small ? 0 : HUGE_VAL, ascii.front() == '-' ? -1 : 1);
  }
  return number;
}

template <typename Integer>
Integer RoundInto(double number) {
  const double rounded = std::nearbyint(number);  // halves to even
  if (!(rounded >= std::numeric_limits<Integer>::min() &&
        rounded <= std::numeric_limits<Integer>::max())) {
    throw AutomationError(kOverflow);
  }
  return static_cast<Integer>(rounded);
}

// What an object stands for: its default member's value, which may again be an object. Error 13 for
// one that leads nowhere, such as an object that is its own default member.
Value ValueBehind(Value value) {
  constexpr int kMaxDepth = 16;
  for (int depth = 0; depth < kMaxDepth; ++depth) {
    if (!value.IsObject()) return value;
    value = value.ToObject().GetDefault();
  }
  throw AutomationError(kTypeMismatch);
}

bool IsNumber(const Value& value) {
  return value.IsInteger() || value.IsDouble() || value.IsBoolean() || value.IsDate();
}

}  // namespace

Value::Value(const Object& object) : data_(object.pointer()) {}

Value::Value(int64_t number) {
  if (number >= std::numeric_limits<int32_t>::min() &&
      number <= std::numeric_limits<int32_t>::max()) {
    data_ = static_cast<int32_t>(number);
  } else {
    data_ = static_cast<double>(number);
  }
}

String Value::ToText() const {
  if (IsString()) return AsString();
  if (IsEmpty()) return {};
  if (IsNull()) throw AutomationError(kInvalidUseOfNull);
  if (IsBoolean()) return AsBoolean() ? u"True" : u"False";
  if (IsInteger()) return FromUtf8(std::to_string(AsInteger()));
  if (IsDouble()) return FormatDouble(AsDouble());
  if (IsDate()) return FormatDate(AsDate());
  if (IsObject()) return ValueBehind(*this).ToText();
  throw AutomationError(kTypeMismatch);
}

bool Value::ToBoolean() const {
  if (IsBoolean()) return AsBoolean();
  if (IsString()) {
    if (EqualIgnoringCase(AsString(), u"true") || EqualIgnoringCase(AsString(), u"#true#")) {
      return true;
    }
    if (EqualIgnoringCase(AsString(), u"false") || EqualIgnoringCase(AsString(), u"#false#")) {
      return false;
    }
  }
  return ToDouble() != 0;
}

int16_t Value::ToInteger() const { return RoundInto<int16_t>(ToDouble()); }

int32_t Value::ToLong() const { return IsInteger() ? AsInteger() : RoundInto<int32_t>(ToDouble()); }

double Value::ToDouble() const {
  if (IsInteger()) return AsInteger();
  if (IsDouble()) return AsDouble();
  if (IsBoolean()) return AsBoolean() ? -1 : 0;
  if (IsDate()) return AsDate().days;
  if (IsEmpty()) return 0;
  if (IsNull()) throw AutomationError(kInvalidUseOfNull);
  if (IsObject()) return ValueBehind(*this).ToDouble();
  if (IsString()) {
    const std::optional<double> number = ParseNumber(AsString());
    if (number) return *number;
  }
  throw AutomationError(kTypeMismatch);
}

Date Value::ToDate() const {
  if (IsDate()) return AsDate();
  if (IsString()) return ParseDate(AsString());
  return Date{ToDouble()};
}

Object Value::ToObject() const {
  if (!IsObject()) throw AutomationError(kObjectRequired);
  return Object(AsObject());
}

bool LooselyEqual(const Value& a, const Value& b) {
  if (a.IsNull() || b.IsNull()) return false;
  if (a.IsObject()) return LooselyEqual(ValueBehind(a), b);
  if (b.IsObject()) return LooselyEqual(a, ValueBehind(b));
  if (IsNumber(a) && IsNumber(b)) return a.ToDouble() == b.ToDouble();
  if (IsNumber(a) && b.IsString()) return LooselyEqual(b, a);
  if (a.IsString() && IsNumber(b)) {
    const std::optional<double> number = ParseNumber(a.AsString());
    return number ? *number == b.ToDouble() : a.AsString() == b.ToText();
  }
  if (a.IsEmpty() && IsNumber(b)) return b.ToDouble() == 0;
  if (b.IsEmpty() && IsNumber(a)) return a.ToDouble() == 0;
  return a.ToText() == b.ToText();
}

}  // namespace kestrelon
