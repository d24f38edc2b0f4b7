#include "platform/windows/Variants.h"

#include "platform/windows/ComErrors.h"
#include "platform/windows/DispatchClient.h"
#include "platform/windows/DispatchServer.h"

namespace kestrelon {
namespace {

// `variant` as another type; what it holds is copied.
Variant ConvertedTo(VARTYPE type, const VARIANT& variant) {
  Variant converted;
  Check(VariantChangeType(&converted, const_cast<VARIANT*>(&variant), 0, type));
  return converted;
}

AutomationError Unsupported(VARTYPE type) {
  return AutomationError(kTypeMismatch, u"Type mismatch: a value of variant type " +
                                            Value(int32_t{type}).ToText() +
                                            u" cannot be used here");
}

// Follows references to variants. There is one of them by the rules and there are a few in
// practice, so a chain that does not end is a ring.
const VARIANT& Behind(const VARIANT& variant) {
  const VARIANT* held = &variant;
  for (int steps = 0; held->vt == (VT_BYREF | VT_VARIANT); ++steps) {
    if (held->pvarVal == nullptr || steps == 16) throw Unsupported(held->vt);
    held = held->pvarVal;
  }
  return *held;
}

// Keeps the elements of an array in their place: reading an object among them may let others run.
class ArrayLock {
 public:
  explicit ArrayLock(SAFEARRAY* array) : array_(array) { Check(SafeArrayLock(array)); }
  ~ArrayLock() { SafeArrayUnlock(array_); }
  ArrayLock(const ArrayLock&) = delete;
  ArrayLock& operator=(const ArrayLock&) = delete;

 private:
  SAFEARRAY* array_;
};

// An array of any type and number of dimensions, first index fastest, as COM stores it.
Value::Array ElementsOf(SAFEARRAY* array, VARTYPE type) {
  Value::Array elements;
  if (array == nullptr || array->cDims == 0) return elements;
  size_t count = 1;
  for (UINT i = 0; i < array->cDims; ++i) count *= array->rgsabound[i].cElements;
  if (count == 0) return elements;
  const ArrayLock lock(array);
  // Careless callers name another type than the array has, which alone says what the memory holds.
  VARTYPE own_type = VT_EMPTY;
  if (type != VT_RECORD && SUCCEEDED(SafeArrayGetVartype(array, &own_type))) type = own_type;
  for (size_t i = 0; i < count; ++i) {
    VARIANT element;
    VariantInit(&element);
    element.vt = static_cast<VARTYPE>(type | VT_BYREF);
    element.byref = static_cast<char*>(array->pvData) + i * array->cbElements;
    elements.push_back(ValueOf(element));
  }
  return elements;
}

void StoreArray(const Value::Array& elements, VARIANT& variant) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(elements.size()));
  if (array == nullptr) throw AutomationError(kOutOfMemory);
  variant.vt = VT_ARRAY | VT_VARIANT;
  variant.parray = array;
  auto* data = static_cast<VARIANT*>(array->pvData);
  for (size_t i = 0; i < elements.size(); ++i) StoreValue(elements[i], data[i]);
}

void StoreText(const String& text, VARIANT& variant) {
  variant.bstrVal = Bstr(text).Detach();
  variant.vt = VT_BSTR;
}

}  // namespace

Bstr::Bstr(StringView text)
    : text_(SysAllocStringLen(reinterpret_cast<const wchar_t*>(text.data()),
                              static_cast<UINT>(text.size()))) {
  if (text_ == nullptr) throw AutomationError(kOutOfMemory);
}

StringView Bstr::text() const {
  return {reinterpret_cast<const char16_t*>(text_), SysStringLen(text_)};
}

Variant::Variant(const Value& value) : Variant() { StoreValue(value, *this); }

Variant::Variant(Variant&& other) noexcept : VARIANT(other) { other.vt = VT_EMPTY; }

VARIANT Variant::Detach() {
  const VARIANT held = *this;
  vt = VT_EMPTY;
  return held;
}

Value ValueOf(const VARIANT& reference) {
  const VARIANT& variant = Behind(reference);
  const bool is_reference = (variant.vt & VT_BYREF) != 0;
  const auto type = static_cast<VARTYPE>(variant.vt & ~VT_BYREF);
  if (is_reference && variant.byref == nullptr) throw Unsupported(variant.vt);
  if ((type & VT_ARRAY) != 0) {
    return ElementsOf(is_reference ? *variant.pparray : variant.parray,
                      static_cast<VARTYPE>(type & ~VT_ARRAY));
  }
  if (is_reference) {
    Variant own;
    // A record has a second pointer, which an element of an array lacks.
    if (type == VT_RECORD || FAILED(VariantCopyInd(&own, const_cast<VARIANT*>(&variant)))) {
      throw Unsupported(variant.vt);
    }
    return ValueOf(own);
  }
  switch (type) {
    case VT_EMPTY:
      return {};
    case VT_NULL:
      return Value::Null();
    case VT_ERROR:
      if (variant.scode == DISP_E_PARAMNOTFOUND) return Value::Omitted();
      break;
    case VT_BOOL:
      return variant.boolVal != VARIANT_FALSE;
    case VT_BSTR:
      return StringView(reinterpret_cast<const char16_t*>(variant.bstrVal),
                        SysStringLen(variant.bstrVal));
    case VT_DATE:
      return Date{variant.date};
    case VT_R4:
    case VT_R8:
    case VT_CY:
    case VT_DECIMAL:
      return ConvertedTo(VT_R8, variant).dblVal;
    case VT_I1:
    case VT_UI1:
    case VT_I2:
    case VT_UI2:
    case VT_I4:
    case VT_INT:
    case VT_UI4:
    case VT_UINT:
    case VT_I8:
      return int64_t{ConvertedTo(VT_I8, variant).llVal};
    case VT_UI8:
      return ConvertedTo(VT_R8, variant).dblVal;
    case VT_DISPATCH:
      // Not asked for its IDispatch again: an object may have several, and this one was meant.
      return ObjectOf(variant.pdispVal);
    case VT_UNKNOWN:
      return ObjectOf(variant.punkVal);
    default:
      break;
  }
  throw Unsupported(variant.vt);
}

void StoreValue(const Value& value, VARIANT& variant) {
  if (value.IsNull()) {
    variant.vt = VT_NULL;
  } else if (value.IsOmitted()) {
    variant.scode = DISP_E_PARAMNOTFOUND;
    variant.vt = VT_ERROR;
  } else if (value.IsBoolean()) {
    variant.boolVal = value.AsBoolean() ? VARIANT_TRUE : VARIANT_FALSE;
    variant.vt = VT_BOOL;
  } else if (value.IsInteger()) {
    variant.lVal = value.AsInteger();
    variant.vt = VT_I4;
  } else if (value.IsDouble()) {
    variant.dblVal = value.AsDouble();
    variant.vt = VT_R8;
  } else if (value.IsDate()) {
    variant.date = value.AsDate().days;
    variant.vt = VT_DATE;
  } else if (value.IsString()) {
    StoreText(value.AsString(), variant);
  } else if (value.IsArray()) {
    StoreArray(value.AsArray(), variant);
  } else if (value.IsObject()) {
    variant.pdispVal = DispatchOf(value.AsObject()).Detach();
    variant.vt = VT_DISPATCH;
  }
}

}  // namespace kestrelon
