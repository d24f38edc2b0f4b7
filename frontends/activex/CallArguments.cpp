#include "frontends/activex/CallArguments.h"

#include <cstring>
#include <utility>

#include "automation/DispatchObject.h"
#include "platform/windows/ComErrors.h"
#include "platform/windows/DispatchClient.h"
#include "platform/windows/Variants.h"

namespace kestrelon {
namespace {

// Real callers need two: of references to variables, and of objects that stand for another.
constexpr int kMaxDepth = 8;

bool IsByReference(const VARIANT& variant) { return (variant.vt & VT_BYREF) != 0; }

VARTYPE TypeWithoutReference(const VARIANT& variant) {
  return static_cast<VARTYPE>(variant.vt & ~VT_BYREF);
}

// The end of a chain of references to variants: what holds the argument, or refers to a variable of
// a fixed type. Null where the chain has none.
VARIANT* FollowReferences(VARIANT* argument) {
  for (int depth = 0; depth < kMaxDepth; ++depth) {
    if (IsByReference(*argument) && argument->byref == nullptr) return nullptr;
    if (argument->vt != (VT_BYREF | VT_VARIANT)) return argument;
    argument = argument->pvarVal;
  }
  return nullptr;
}

bool IsOmitted(const VARIANT& variant) {
  return variant.vt == VT_ERROR && variant.scode == DISP_E_PARAMNOTFOUND;
}

bool IsObject(const VARIANT& variant) {
  return variant.vt == VT_DISPATCH || variant.vt == VT_UNKNOWN;
}

// Replaces the object in `variant` by the value of its default member. Objects of a script are only
// asked, for calling one runs it; what others have may be a method.
HRESULT AskDefaultMember(Variant& variant) {
  ComPtr<IDispatch> object;
  if (variant.punkVal == nullptr ||
      FAILED(variant.punkVal->QueryInterface(IID_PPV_ARGS(&object)))) {
    return DISP_E_TYPEMISMATCH;
  }
  for (const WORD flags : {DISPATCH_PROPERTYGET, DISPATCH_PROPERTYGET | DISPATCH_METHOD}) {
    DISPPARAMS none{};
    Variant answer;
    if (FAILED(object->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT, flags, &none, &answer,
                              nullptr, nullptr))) {
      continue;
    }
    std::swap(static_cast<VARIANT&>(variant), static_cast<VARIANT&>(answer));
    return S_OK;
  }
  return DISP_E_TYPEMISMATCH;
}

HRESULT ChangeType(const VARIANT& variant, LCID locale, VARTYPE type, Variant& changed) {
  return VariantChangeTypeEx(&changed, const_cast<VARIANT*>(&variant), locale, VARIANT_ALPHABOOL,
                             type);
}

// `argument` as text, boolean or integer.
HRESULT ConvertScalar(const VARIANT& argument, LCID locale, VARTYPE type, Value& value) {
  Variant own;
  HRESULT result = VariantCopyInd(&own, const_cast<VARIANT*>(&argument));
  for (int depth = 0; SUCCEEDED(result) && IsObject(own) && depth < kMaxDepth; ++depth) {
    result = AskDefaultMember(own);
  }
  if (SUCCEEDED(result) && IsObject(own)) result = DISP_E_TYPEMISMATCH;
  if (FAILED(result)) return result;
  Variant cell;
  result = ChangeType(own, locale, type, cell);
  if (SUCCEEDED(result)) value = ValueOf(cell);
  return result;
}

HRESULT ConvertObject(const VARIANT& argument, Value& value) {
  Variant own;
  const HRESULT result = VariantCopyInd(&own, const_cast<VARIANT*>(&argument));
  if (FAILED(result)) return result;
  if (own.vt == VT_EMPTY || own.vt == VT_NULL) {
    value = Object();
  } else if (IsObject(own)) {
    value = ObjectOf(own.punkVal);
  } else {
    return DISP_E_TYPEMISMATCH;
  }
  return S_OK;
}

HRESULT ConvertArgument(const VARIANT& argument, LCID locale, ParameterType type, Value& value) {
  try {
    switch (type) {
      case ParameterType::kString:
        return ConvertScalar(argument, locale, VT_BSTR, value);
      case ParameterType::kBoolean:
        return ConvertScalar(argument, locale, VT_BOOL, value);
      case ParameterType::kInteger:
        return ConvertScalar(argument, locale, VT_I2, value);
      case ParameterType::kVariant:
        value = ValueOf(argument);
        return S_OK;
      case ParameterType::kXmlDocument:
      case ParameterType::kHtmlDocument:
      case ParameterType::kObject:
        return ConvertObject(argument, value);
      case ParameterType::kNone:
        break;
    }
  } catch (const AutomationError&) {
    // A variant or an object that the control does not know.
  }
  return DISP_E_TYPEMISMATCH;
}

// Whether the member left a value as it was. Arrays are the same only as one and the same array.
bool IsSame(const Value& a, const Value& b) {
  if (a.IsEmpty()) return b.IsEmpty();
  if (a.IsNull()) return b.IsNull();
  if (a.IsOmitted()) return b.IsOmitted();
  if (a.IsBoolean()) return b.IsBoolean() && a.AsBoolean() == b.AsBoolean();
  if (a.IsInteger()) return b.IsInteger() && a.AsInteger() == b.AsInteger();
  if (a.IsDouble()) return b.IsDouble() && a.AsDouble() == b.AsDouble();
  if (a.IsDate()) return b.IsDate() && a.AsDate() == b.AsDate();
  if (a.IsString()) return b.IsString() && a.AsString() == b.AsString();
  if (a.IsObject()) return b.IsObject() && a.AsObject() == b.AsObject();
  return b.IsArray() && &a.AsArray() == &b.AsArray();
}

// The bytes of a variable of a type that needs no freeing; 0 for any other type.
size_t PlainSize(VARTYPE type) {
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
      return 8;
    default:
      return 0;
  }
}

// Stores into the variable that `reference` refers to. What it held is freed by `value`.
void StoreThrough(const VARIANT& reference, LCID locale, const Variant& value) {
  const VARTYPE type = TypeWithoutReference(reference);
  Variant converted;
  if (FAILED(ChangeType(value, locale, type, converted))) return;
  if (const size_t size = PlainSize(type); size != 0) {
    std::memcpy(reference.byref, &converted.bVal, size);
  } else if (type == VT_BSTR) {
    std::swap(*reference.pbstrVal, converted.bstrVal);
  } else if (type == VT_DISPATCH || type == VT_UNKNOWN) {
    std::swap(*reference.ppunkVal, converted.punkVal);
  }
}

}  // namespace

CallArguments::CallArguments(const Member& member, LCID locale, DISPPARAMS& parameters)
    : member_(member), locale_(locale), parameters_(parameters) {}

HRESULT CallArguments::Receive(UINT* failed_argument) {
  const size_t count = parameters_.cArgs;
  if (parameters_.cNamedArgs > count || (count != 0 && parameters_.rgvarg == nullptr) ||
      (parameters_.cNamedArgs != 0 && parameters_.rgdispidNamedArgs == nullptr)) {
    return E_INVALIDARG;
  }
  size_t required = 0;
  for (const Parameter& parameter : member_.parameters) required += parameter.optional ? 0 : 1;
  if (count > member_.parameters.size() || count < required) return DISP_E_BADPARAMCOUNT;
  given_.assign(member_.parameters.size(), nullptr);
  const HRESULT result = Place(failed_argument);
  return FAILED(result) ? result : Convert(failed_argument);
}

HRESULT CallArguments::Place(UINT* failed_argument) {
  const UINT positional = parameters_.cArgs - parameters_.cNamedArgs;
  for (UINT i = 0; i < positional; ++i) given_[i] = &parameters_.rgvarg[parameters_.cArgs - 1 - i];
  for (UINT i = 0; i < parameters_.cNamedArgs; ++i) {
    const DISPID id = parameters_.rgdispidNamedArgs[i];
    const bool is_new_value = id == DISPID_PROPERTYPUT && member_.kind == MemberKind::kPropertyPut;
    const size_t index = is_new_value ? given_.size() - 1 : static_cast<size_t>(id);
    if (index >= given_.size() || given_[index] != nullptr) {
      if (failed_argument != nullptr) *failed_argument = i;
      return DISP_E_PARAMNOTFOUND;
    }
    given_[index] = &parameters_.rgvarg[i];
  }
  return S_OK;
}

HRESULT CallArguments::Convert(UINT* failed_argument) {
  values_.assign(given_.size(), Value::Omitted());
  received_ = values_;
  for (size_t i = 0; i < given_.size(); ++i) {
    const HRESULT result = ConvertOne(i);
    if (SUCCEEDED(result)) continue;
    if (failed_argument != nullptr && given_[i] != nullptr) {
      *failed_argument = static_cast<UINT>(given_[i] - parameters_.rgvarg);
    }
    return result;
  }
  return S_OK;
}

HRESULT CallArguments::ConvertOne(size_t index) {
  const Parameter& parameter = member_.parameters[index];
  const HRESULT left_out = parameter.optional ? S_OK : DISP_E_PARAMNOTOPTIONAL;
  if (given_[index] == nullptr) return left_out;
  const VARIANT* argument = FollowReferences(given_[index]);
  if (argument == nullptr) return DISP_E_TYPEMISMATCH;
  if (IsOmitted(*argument)) return left_out;
  const HRESULT result = ConvertArgument(*argument, locale_, parameter.type, values_[index]);
  if (SUCCEEDED(result) && IsByReference(*given_[index])) received_[index] = values_[index];
  return result;
}

void CallArguments::WriteBack() {
  for (size_t i = 0; i < given_.size(); ++i) {
    if (received_[i].IsOmitted() || IsSame(values_[i], received_[i])) continue;
    // Followed anew: the page may have run meanwhile, and its variable may be another's.
    VARIANT* variable = FollowReferences(given_[i]);
    if (variable == nullptr) continue;
    try {
      Variant value;
      StoreTyped(member_.parameters[i].type, values_[i], value);
      if (IsByReference(*variable)) {
        StoreThrough(*variable, locale_, value);
      } else {
        std::swap(*variable, static_cast<VARIANT&>(value));
      }
    } catch (const AutomationError&) {
      // No memory for the text: the variable keeps its own.
    }
  }
}

void StoreTyped(ParameterType type, const Value& value, VARIANT& variant) {
  if (type != ParameterType::kInteger) return StoreValue(value, variant);
  variant.iVal = value.ToInteger();
  variant.vt = VT_I2;
}

}  // namespace kestrelon
