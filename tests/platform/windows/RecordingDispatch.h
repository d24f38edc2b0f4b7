// A COM server of the tests that writes down what arrives, and answers as a test says.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/windows/ComClass.h"
#include "platform/windows/DispatchClient.h"
#include "platform/windows/Variants.h"

namespace kestrelon::testing {

using Lines = std::vector<std::string>;

// "TYPE:TEXT" with the number of the variant type, so that 1, 1.0, True and "1" differ.
inline std::string Describe(const Value& value) {
  std::string text;
  if (value.IsArray()) {
    for (const Value& element : value.AsArray()) text += "[" + Describe(element) + "]";
  } else if (!value.IsNull() && !value.IsOmitted() && !value.IsObject()) {
    text = ToUtf8(value.ToText());
  }
  return std::to_string(Variant(value).vt) + ":" + text;
}

// "NUMBER: DESCRIPTION" of the failure that `action` ends with; "" when it does not fail.
inline std::string FailureOf(const std::function<void()>& action) {
  try {
    action();
    return {};
  } catch (const AutomationError& error) {
    return std::to_string(error.number()) + ": " + ToUtf8(error.description());
  }
}

class RecordingDispatch final : public ComClass<IDispatch, ISupportErrorInfo> {
 public:
  // "?item start" for a question for ids; "1 flags 3 names 10 values 3:5 8:x" for a call, with the
  // names and values as they stand.
  Lines log;
  std::function<HRESULT(WORD flags, VARIANT* result, EXCEPINFO* information)> answer =
      [](WORD, VARIANT*, EXCEPINFO*) { return S_OK; };
  bool leaves_error_info = false;
  LCID only_language = 0;  // every other one is turned down; 0 for none

  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID language,
                             DISPID* ids) override {
    if (only_language != 0 && language != only_language) return TYPE_E_INVDATAREAD;
    static const std::map<String, DISPID> known = {{u"Item", 1}, {u"Name", 2}, {u"Start", 10}};
    HRESULT status = S_OK;
    log.push_back("?");
    for (UINT i = 0; i < count; ++i) {
      const auto found = known.find(FromWide(names[i]));
      ids[i] = found == known.end() ? DISPID_UNKNOWN : found->second;
      if (found == known.end()) status = DISP_E_UNKNOWNNAME;
      log.back() += (i > 0 ? " " : "") + ToUtf8(FromWide(names[i]));
    }
    return status;
  }
  STDMETHODIMP Invoke(DISPID member, REFIID, LCID language, WORD flags, DISPPARAMS* parameters,
                      VARIANT* result, EXCEPINFO* information, UINT*) override {
    if (only_language != 0 && language != only_language) return TYPE_E_INVDATAREAD;
    std::string line = std::to_string(member) + " flags " + std::to_string(flags);
    for (UINT i = 0; i < parameters->cNamedArgs; ++i) {
      line += (i == 0 ? " names " : " ") + std::to_string(parameters->rgdispidNamedArgs[i]);
    }
    for (UINT i = 0; i < parameters->cArgs; ++i) {
      line += (i == 0 ? " values " : " ") + Describe(ValueOf(parameters->rgvarg[i]));
    }
    log.push_back(line);
    return answer(flags, result, information);
  }
  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID) override {
    return leaves_error_info ? S_OK : S_FALSE;
  }
};

}  // namespace kestrelon::testing
