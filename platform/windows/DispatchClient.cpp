#include "platform/windows/DispatchClient.h"

#include "platform/windows/ComErrors.h"
#include "platform/windows/Variants.h"

namespace kestrelon {
namespace {

// The ids of a member and of the arguments that are given by name.
std::vector<DISPID> IdsOf(IDispatch& dispatch, StringView member, const Arguments& arguments) {
  std::vector<DISPID> ids(1 + arguments.named.size(), DISPID_VALUE);
  if (member.empty() && arguments.named.empty()) return ids;
  std::vector<String> names = {String(member)};
  for (const NamedArgument& argument : arguments.named) names.push_back(argument.name);
  std::vector<LPOLESTR> pointers;
  for (String& name : names) pointers.push_back(const_cast<wchar_t*>(AsWide(name)));
  const HRESULT result =
      dispatch.GetIDsOfNames(IID_NULL, pointers.data(), static_cast<UINT>(pointers.size()),
                             LOCALE_USER_DEFAULT, ids.data());
  if (result == DISP_E_UNKNOWNNAME && ids[0] != DISPID_UNKNOWN) {
    throw AutomationError(kNamedArgumentNotFound);
  }
  Check(result);
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

// `dispatch` is kept alive by the caller: while a server works, the page may call again and let go
// of what the control holds.
HRESULT InvokeOnce(IDispatch& dispatch, DISPID member, WORD flags, DISPPARAMS& parameters,
                   Variant& result) {
  EXCEPINFO information{};
  const HRESULT status = dispatch.Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                         (flags & DISPATCH_PROPERTYGET) != 0 ? &result : nullptr,
                                         &information, nullptr);
  if (status == DISP_E_EXCEPTION) throw ErrorOf(information);
  return status;
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
  std::vector<DISPID> ids = IdsOf(*dispatch.Get(), member, arguments);
  const DISPID id = ids.front();
  ids.erase(ids.begin());
  CallParameters call(kind, arguments, std::move(ids));
  DISPPARAMS parameters = call.Get();
  Variant result;
  HRESULT status = E_UNEXPECTED;
  for (const WORD flags : FlagsOf(kind, arguments)) {
    status = InvokeOnce(*dispatch.Get(), id, flags, parameters, result);
    if (status != DISP_E_MEMBERNOTFOUND) break;
  }
  Check(status);
  return ValueOf(result);
}

std::unique_ptr<Enumerator> DispatchClient::Enumerate() {
  const ComPtr<IDispatch> dispatch = dispatch_;
  DISPPARAMS none{};
  Variant result;
  const HRESULT status = InvokeOnce(*dispatch.Get(), DISPID_NEWENUM,
                                    DISPATCH_METHOD | DISPATCH_PROPERTYGET, none, result);
  if (status == DISP_E_MEMBERNOTFOUND) throw AutomationError(kNotACollection);
  Check(status);
  ComPtr<IEnumVARIANT> elements;
  if ((result.vt != VT_UNKNOWN && result.vt != VT_DISPATCH) || result.punkVal == nullptr ||
      FAILED(result.punkVal->QueryInterface(IID_PPV_ARGS(&elements)))) {
    throw AutomationError(kNotACollection);
  }
  return std::make_unique<VariantEnumerator>(std::move(elements));
}

String DispatchClient::TypeName() const {
  ComPtr<ITypeInfo> information;
  Bstr name;
  if (FAILED(dispatch_->GetTypeInfo(0, LOCALE_USER_DEFAULT, &information)) || !information ||
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
  return Object(std::make_shared<DispatchClient>(std::move(dispatch)));
}

}  // namespace kestrelon
