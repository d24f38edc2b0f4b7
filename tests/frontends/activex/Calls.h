// Calls as COM clients make them, and what comes of them.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "platform/windows/Variants.h"

namespace kestrelon::testing {

constexpr LCID kEnglish = 0x0409;
constexpr LCID kGerman = 0x0407;
constexpr DISPID kNewValue = DISPID_PROPERTYPUT;
constexpr WORD kScriptCall = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

template <typename T>
VARIANT Plain(VARTYPE type, T content) {
  VARIANT variant{};
  variant.vt = type;
  std::memcpy(&variant.bVal, &content, sizeof content);
  return variant;
}
inline VARIANT Number(int number) { return Plain(VT_I4, number); }
inline VARIANT ByReference(VARIANT& variable) { return Plain(VT_VARIANT | VT_BYREF, &variable); }
inline const VARIANT kEmpty{};
inline const VARIANT kNull = Plain(VT_NULL, 0);
inline const VARIANT kSkipped = Plain(VT_ERROR, DISP_E_PARAMNOTFOUND);

// What a variant holds, as "type:text".
inline std::string Described(const VARIANT& variant) {
  Variant text;
  if (variant.vt != VT_DISPATCH) {
    VariantChangeTypeEx(&text, const_cast<VARIANT*>(&variant), kEnglish, VARIANT_ALPHABOOL,
                        VT_BSTR);
  }
  return std::to_string(variant.vt) + ":" + ToUtf8(ValueOf(text).ToText());
}

constexpr UINT kNoPlace = 99;

// One call, with the arguments in the order of rgvarg.
struct Outcome {
  HRESULT status = S_OK;
  UINT failed_argument = kNoPlace;
  std::string result;
  SCODE scode = S_OK;  // this and the texts are of EXCEPINFO
  String source;
  String description;
};

template <typename Call>
Outcome Perform(std::vector<VARIANT> arguments, std::vector<DISPID> names, const Call& call) {
  DISPPARAMS parameters{arguments.data(), names.data(), static_cast<UINT>(arguments.size()),
                        static_cast<UINT>(names.size())};
  Variant result;
  EXCEPINFO exception{};
  Outcome outcome;
  outcome.status = call(parameters, &result, &exception, &outcome.failed_argument);
  outcome.result = Described(result);
  outcome.scode = exception.scode;
  outcome.source = Bstr(exception.bstrSource).text();
  outcome.description = Bstr(exception.bstrDescription).text();
  return outcome;
}

}  // namespace kestrelon::testing
