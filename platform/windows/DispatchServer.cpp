#include "platform/windows/DispatchServer.h"

#include <algorithm>
#include <map>
#include <optional>

#include "platform/windows/ComClass.h"
#include "platform/windows/ComErrors.h"
#include "platform/windows/DispatchClient.h"
#include "platform/windows/Variants.h"

namespace kestrelon {
namespace {

class EnumeratorServer final : public ComClass<IEnumVARIANT> {
 public:
  explicit EnumeratorServer(DispatchPointer collection)
      : collection_(std::move(collection)), elements_(collection_->Enumerate()) {}

  STDMETHODIMP Next(ULONG count, VARIANT* elements, ULONG* fetched) override {
    if (fetched != nullptr) *fetched = 0;
    if (elements == nullptr && count > 0) return E_POINTER;
    return Guard([&] {
      std::vector<Variant> found;
      while (found.size() < count) {
        const std::optional<Value> element = elements_->Next();
        if (!element) break;
        found.emplace_back(*element);
      }
      for (size_t i = 0; i < found.size(); ++i) elements[i] = found[i].Detach();
      if (fetched != nullptr) *fetched = static_cast<ULONG>(found.size());
      return found.size() == count ? S_OK : S_FALSE;
    });
  }
  STDMETHODIMP Skip(ULONG count) override {
    return Guard([&] {
      while (count > 0 && elements_->Next()) --count;
      return count == 0 ? S_OK : S_FALSE;
    });
  }
  STDMETHODIMP Reset() override {
    return Guard([&] {
      elements_ = collection_->Enumerate();
      return S_OK;
    });
  }
  STDMETHODIMP Clone(IEnumVARIANT** copy) override {
    if (copy != nullptr) *copy = nullptr;
    return E_NOTIMPL;
  }

 private:
  DispatchPointer collection_;
  std::unique_ptr<Enumerator> elements_;
};

class DispatchServer final : public ComClass<IDispatch> {
 public:
  explicit DispatchServer(DispatchPointer object) : object_(std::move(object)) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    return Guard([&] {
      const bool is_own = object != nullptr && IsEqualIID(iid, OwnInterface());
      if (!is_own) return ComClass::QueryInterface(iid, object);
      AddRef();
      *object = this;
      return S_OK;
    });
  }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** information) override {
    if (information != nullptr) *information = nullptr;
    return DISP_E_BADINDEX;
  }
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID,
                             DISPID* ids) override {
    if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    if (count > 0 && (names == nullptr || ids == nullptr)) return E_POINTER;
    return Guard([&] {
      for (UINT i = 0; i < count; ++i) {
        if (names[i] == nullptr) return E_POINTER;
        ids[i] = IdOf(FromWide(names[i]));
      }
      return S_OK;
    });
  }
  STDMETHODIMP Invoke(DISPID member, REFIID reserved, LCID, WORD flags, DISPPARAMS* parameters,
                      VARIANT* result, EXCEPINFO* information, UINT*) override {
    if (result != nullptr) VariantInit(result);
    if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    if (parameters == nullptr) return E_POINTER;
    return Guard([&]() -> HRESULT {
      const ComPtr<DispatchServer> kept_alive(this);  // the call may let go of it
      try {
        Variant answer;
        const HRESULT status = member == DISPID_NEWENUM
                                   ? StoreEnumerator(answer)
                                   : StoreAnswer(member, flags, *parameters, answer);
        if (result != nullptr) *result = answer.Detach();
        return status;
      } catch (const AutomationError& error) {
        FillExceptionInfo(error, object_->TypeName(), information);
        return DISP_E_EXCEPTION;
      }
    });
  }

  // The object behind an interface that another server of this module offers; null for any other.
  static DispatchPointer ObjectBehind(IDispatch* dispatch) {
    ComPtr<DispatchServer> server;
    if (FAILED(dispatch->QueryInterface(OwnInterface(),
                                        reinterpret_cast<void**>(server.GetAddressOf())))) {
      return nullptr;
    }
    return server->object_;
  }

 private:
  // Only servers of this very module answer it, as only they are of this class.
  static const IID& OwnInterface() {
    static const IID iid = [] {
      IID made{};
      Check(CoCreateGuid(&made));
      return made;
    }();
    return iid;
  }

  // Every spelling has an id of its own, so that the object hears the name as the caller writes it.
  DISPID IdOf(const String& name) {
    const auto [entry, added] = ids_.try_emplace(name, static_cast<DISPID>(names_.size()) + 1);
    if (added) names_.push_back(name);
    return entry->second;
  }
  std::optional<String> NameOf(DISPID id) const {
    if (id == DISPID_VALUE) return String();
    if (id < 1 || static_cast<size_t>(id) > names_.size()) return std::nullopt;
    return names_[static_cast<size_t>(id) - 1];
  }
  // Our own objects come back as themselves.
  static Value ReceivedValue(const VARIANT& variant) {
    const Value value = ValueOf(variant);
    if (!value.IsObject()) return value;
    const auto* client = dynamic_cast<const DispatchClient*>(value.AsObject().get());
    const DispatchPointer own = client == nullptr ? nullptr : ObjectBehind(client->dispatch());
    return own == nullptr ? value : Value(own);
  }
  // Those by name stand first, then the others from the last to the first. The new value of a
  // property has a name of the system's, which some callers leave out, and is our last positional
  // argument.
  HRESULT ReceiveArguments(const DISPPARAMS& parameters, bool is_put, Arguments& arguments) const {
    if (parameters.cNamedArgs > parameters.cArgs ||
        (parameters.cArgs != 0 && parameters.rgvarg == nullptr) ||
        (parameters.cNamedArgs != 0 && parameters.rgdispidNamedArgs == nullptr)) {
      return E_INVALIDARG;
    }
    if (is_put && parameters.cArgs == 0) return DISP_E_BADPARAMCOUNT;
    const UINT first_name = is_put ? 1 : 0;
    for (UINT i = first_name; i < parameters.cNamedArgs; ++i) {
      const std::optional<String> name = NameOf(parameters.rgdispidNamedArgs[i]);
      if (!name) return DISP_E_PARAMNOTFOUND;
      arguments.Add({*name, ReceivedValue(parameters.rgvarg[i])});
    }
    for (UINT i = parameters.cArgs; i > std::max(parameters.cNamedArgs, first_name); --i) {
      arguments.Add(ReceivedValue(parameters.rgvarg[i - 1]));
    }
    if (is_put) arguments.Add(ReceivedValue(parameters.rgvarg[0]));
    return S_OK;
  }
  HRESULT StoreEnumerator(VARIANT& result) const {
    result.punkVal = MakeComObject<EnumeratorServer>(object_).Detach();
    result.vt = VT_UNKNOWN;
    return S_OK;
  }
  HRESULT StoreAnswer(DISPID member, WORD flags, const DISPPARAMS& parameters, VARIANT& result) {
    const std::optional<String> name = NameOf(member);
    if (!name) return DISP_E_MEMBERNOTFOUND;
    const bool is_put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    Arguments arguments;
    const HRESULT status = ReceiveArguments(parameters, is_put, arguments);
    if (FAILED(status)) return status;
    const InvokeKind kind = is_put                           ? InvokeKind::kPut
                            : (flags & DISPATCH_METHOD) != 0 ? InvokeKind::kCall
                                                             : InvokeKind::kGet;
    StoreValue(object_->Invoke(kind, *name, arguments), result);
    return S_OK;
  }

  DispatchPointer object_;
  std::map<String, DISPID> ids_;
  std::vector<String> names_;
};

}  // namespace

ComPtr<IDispatch> DispatchOf(const DispatchPointer& object) {
  if (object == nullptr) return nullptr;
  if (const auto* client = dynamic_cast<const DispatchClient*>(object.get())) {
    return client->dispatch();
  }
  return MakeComObject<DispatchServer>(object);
}

}  // namespace kestrelon
