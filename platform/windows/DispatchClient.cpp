#include "platform/windows/DispatchClient.h"

#include "platform/windows/ComErrors.h"
#include "platform/windows/Variants.h"

namespace kestrelon {
namespace {

// A call into a server, in the user's language. Spreadsheets that lack that language turn every
// call down, and are then asked in English.
template <typename Call>
HRESULT InKnownLanguage(const Call& call) {
  constexpr LCID kEnglish = 0x0409;
  const HRESULT status = call(LOCALE_USER_DEFAULT);
  return status == TYPE_E_INVDATAREAD ? call(kEnglish) : status;
}

// The ids of a member and of the arguments that are given by name. They are asked for in one call,
// as an argument has an id only beside its member.
std::vector<DISPID> AskForIds(IDispatch& dispatch, StringView member, const Arguments& arguments) {
  std::vector<String> names = {String(member)};
  for (const NamedArgument& argument : arguments.named) names.push_back(argument.name);
  std::vector<LPOLESTR> pointers;
  for (String& name : names) pointers.push_back(const_cast<wchar_t*>(AsWide(name)));
  std::vector<DISPID> ids(names.size(), DISPID_UNKNOWN);
  const HRESULT result = InKnownLanguage([&](LCID language) {
    return dispatch.GetIDsOfNames(IID_NULL, pointers.data(), static_cast<UINT>(pointers.size()),
                                  language, ids.data());
  });
  if (result == DISP_E_UNKNOWNNAME && ids[0] != DISPID_UNKNOWN && !arguments.named.empty()) {
    throw AutomationError(kNamedArgumentNotFound);
  }
  Check(result);
  return ids;
}

std::vector<DISPID> IdsOf(IDispatch& dispatch, StringView member, const Arguments& arguments,
                          DispatchClient::MemberIds& known) {
  if (!arguments.named.empty()) return AskForIds(dispatch, member, arguments);
  if (member.empty()) return {DISPID_VALUE};
  const auto found = known.find(String(member));
  if (found != known.end()) return {found->second};
  std::vector<DISPID> ids = AskForIds(dispatch, member, arguments);
  known.emplace(member, ids.front());
  return ids;
}

// The arguments as COM takes them: those by name first, then the others from the last to the first.
// The new value of a property has the name DISPID_PROPERTYPUT and stands before all.
class CallParameters {
 public:
  CallParameters(InvokeKind kind, const Arguments& arguments, std::vector<DISPID> names)
      : names_(std::move(names)) {
    auto next = arguments.positional.rbegin();
    if (kind == InvokeKind::kPut) {
      if (arguments.positional.empty()) throw AutomationError(kArgumentNotOptional);
      names_.insert(names_.begin(), DISPID_PROPERTYPUT);
      variants_.emplace_back(*next++);
    }
    for (const NamedArgument& argument : arguments.named) variants_.emplace_back(argument.value);
    for (; next != arguments.positional.rend(); ++next) variants_.emplace_back(*next);
  }
  DISPPARAMS Get() {
    return {variants_.data(), names_.empty() ? nullptr : names_.data(),
            static_cast<UINT>(variants_.size()), static_cast<UINT>(names_.size())};
  }

 private:
  std::vector<Variant> variants_;
  std::vector<DISPID> names_;
};

// Which flags say what is meant, in the order in which a server is asked. Most servers take a
// property and a method of one name for the same; some only one of the two.
std::vector<WORD> FlagsOf(InvokeKind kind, const Arguments& arguments) {
  switch (kind) {
    case InvokeKind::kGet:
      return {DISPATCH_PROPERTYGET, DISPATCH_METHOD | DISPATCH_PROPERTYGET};
    case InvokeKind::kCall:
      return {DISPATCH_METHOD | DISPATCH_PROPERTYGET};
    case InvokeKind::kPut:
      break;
  }
  if (!arguments.positional.empty() && arguments.positional.back().IsObject()) {
    return {DISPATCH_PROPERTYPUTREF, DISPATCH_PROPERTYPUT};
  }
  return {DISPATCH_PROPERTYPUT};
}

// A server that turns a call down for what it asks for has not begun with it, so that asking in
// another way does nothing twice.
bool IsRefusal(HRESULT status) {
  return FAILED(status) && HRESULT_FACILITY(status) == FACILITY_DISPATCH;
}

// What the server reports. A function of another process, or half its address, must not be called
// here: what such a server wanted to fill in later is the duty of its proxy, and lost without it.
AutomationError ReportOf(IDispatch& dispatch, EXCEPINFO& information) {
  ComPtr<IClientSecurity> proxy;
  if (information.pfnDeferredFillIn != nullptr &&
      SUCCEEDED(dispatch.QueryInterface(IID_PPV_ARGS(&proxy)))) {
    information.pfnDeferredFillIn = nullptr;
  }
  return ErrorOf(information);
}

// What a plain failure means: the text of the thread's error object goes with it, but only when
// `dispatch` says that it leaves one there.
AutomationError FailureOf(IDispatch& dispatch, HRESULT status) {
  const AutomationError plain = ErrorOf(status);
  ComPtr<IErrorInfo> information;
  ComPtr<ISupportErrorInfo> support;
  Bstr description;
  // Taken first, since every further call may replace it.
  if (GetErrorInfo(0, &information) != S_OK ||
      FAILED(dispatch.QueryInterface(IID_PPV_ARGS(&support))) ||
      support->InterfaceSupportsErrorInfo(IID_IDispatch) != S_OK ||
      FAILED(information->GetDescription(description.Receive())) || description.text().empty()) {
    return plain;
  }
  return AutomationError(plain.number(), String(description.text()));
}

// Tries the `flags` in order until the server accepts one. `dispatch` is kept alive by the caller.
Value InvokeMember(IDispatch& dispatch, DISPID member, const std::vector<WORD>& flags,
                   DISPPARAMS parameters) {
  HRESULT status = E_UNEXPECTED;
  for (const WORD flag : flags) {
    EXCEPINFO information{};
    Variant result;
    SetErrorInfo(0, nullptr);  // whatever an earlier failure left
    status = InKnownLanguage([&](LCID language) {
      VariantClear(&result);  // careless servers fail and answer
      return dispatch.Invoke(member, IID_NULL, language, flag, &parameters,
                             (flag & DISPATCH_PROPERTYGET) != 0 ? &result : nullptr, &information,
                             nullptr);
    });
    if (SUCCEEDED(status)) return ValueOf(result);
    if (status == DISP_E_EXCEPTION) throw ReportOf(dispatch, information);
    if (!IsRefusal(status)) break;
  }
  throw FailureOf(dispatch, status);
}

class VariantEnumerator final : public Enumerator {
 public:
  explicit VariantEnumerator(ComPtr<IEnumVARIANT> elements) : elements_(std::move(elements)) {}
  std::optional<Value> Next() override {
    Variant element;
    ULONG fetched = 0;
    const ComPtr<IEnumVARIANT> elements = elements_;
    const HRESULT status = elements->Next(1, &element, &fetched);
    Check(status);
    if (status != S_OK) return std::nullopt;
    return ValueOf(element);
  }

 private:
  ComPtr<IEnumVARIANT> elements_;
};

}  // namespace

Value DispatchClient::Invoke(InvokeKind kind, StringView member, const Arguments& arguments) {
  const ComPtr<IDispatch> dispatch = dispatch_;
  const std::shared_ptr<MemberIds> known = ids_;
  std::vector<DISPID> ids = IdsOf(*dispatch.Get(), member, arguments, *known);
  const DISPID id = ids.front();
  ids.erase(ids.begin());
  CallParameters call(kind, arguments, std::move(ids));
  return InvokeMember(*dispatch.Get(), id, FlagsOf(kind, arguments), call.Get());
}

std::unique_ptr<Enumerator> DispatchClient::Enumerate() {
  const ComPtr<IDispatch> dispatch = dispatch_;
  DISPPARAMS none{};
  EXCEPINFO information{};
  Variant result;
  const HRESULT status = InKnownLanguage([&](LCID language) {
    VariantClear(&result);
    return dispatch->Invoke(DISPID_NEWENUM, IID_NULL, language,
                            DISPATCH_METHOD | DISPATCH_PROPERTYGET, &none, &result, &information,
                            nullptr);
  });
  if (status == DISP_E_EXCEPTION) throw ReportOf(*dispatch.Get(), information);
  if (IsRefusal(status)) throw AutomationError(kNotACollection);
  Check(status);
  ComPtr<IEnumVARIANT> elements;
  if ((result.vt != VT_UNKNOWN && result.vt != VT_DISPATCH) || result.punkVal == nullptr ||
      FAILED(result.punkVal->QueryInterface(IID_PPV_ARGS(&elements)))) {
    throw AutomationError(kNotACollection);
  }
  return std::make_unique<VariantEnumerator>(std::move(elements));
}

String DispatchClient::TypeName() const {
  const ComPtr<IDispatch> dispatch = dispatch_;
  ComPtr<ITypeInfo> information;
  Bstr name;
  if (FAILED(dispatch->GetTypeInfo(0, LOCALE_USER_DEFAULT, &information)) || !information ||
      FAILED(
          information->GetDocumentation(MEMBERID_NIL, name.Receive(), nullptr, nullptr, nullptr))) {
    return u"Object";
  }
  return String(name.text());
}

Object ObjectOf(IUnknown* unknown) {
  if (unknown == nullptr) return nullptr;
  ComPtr<IDispatch> dispatch;
  if (FAILED(unknown->QueryInterface(IID_PPV_ARGS(&dispatch)))) {
    throw AutomationError(kDoesNotSupportAutomation);
  }
  return ObjectOf(dispatch.Get());
}

Object ObjectOf(IDispatch* dispatch) {
  if (dispatch == nullptr) return nullptr;
  return Object(std::make_shared<DispatchClient>(dispatch));
}

}  // namespace kestrelon
