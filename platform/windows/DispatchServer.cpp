#include "platform/windows/DispatchServer.h"

#include <map>

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
    return Guard([&] {
      ULONG done = 0;
      for (; done < count; ++done) {
        const std::optional<Value> element = elements_->Next();
        if (!element) break;
        VariantInit(&elements[done]);
        StoreValue(*element, elements[done]);
      }
      if (fetched != nullptr) *fetched = done;
      return done == count ? S_OK : S_FALSE;
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
  STDMETHODIMP Clone(IEnumVARIANT** /*copy*/) override { return E_NOTIMPL; }

 private:
  DispatchPointer collection_;
  std::unique_ptr<Enumerator> elements_;
};

class DispatchServer final : public ComClass<IDispatch> {
 public:
  explicit DispatchServer(DispatchPointer object) : object_(std::move(object)) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (object != nullptr && IsEqualIID(iid, OwnInterface())) {
      AddRef();
      *object = this;
      return S_OK;
    }
    return ComClass::QueryInterface(iid, object);
  }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    return Guard([&] {
      for (UINT i = 0; i < count; ++i) ids[i] = IdOf(FromWide(names[i]));
      return S_OK;
    });
  }
  STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                      VARIANT* result, EXCEPINFO* information, UINT*) override {
    return Guard([&]() -> HRESULT {
      try {
        if (result != nullptr) VariantInit(result);
        if (member == DISPID_NEWENUM) {
          StoreEnumerator(result);
          return S_OK;
        }
        const Value answer = Answer(member, flags, *parameters);
        if (result != nullptr) StoreValue(answer, *result);
        return S_OK;
      } catch (const AutomationError& error) {
        if (error.number() == kMemberNotFound) return DISP_E_MEMBERNOTFOUND;
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

  DISPID IdOf(const String& name) {
    const auto [entry, added] =
        ids_.try_emplace(LowerCase(name), static_cast<DISPID>(names_.size()) + 1);
    if (added) names_.push_back(name);
    return entry->second;
  }
  String NameOf(DISPID id) const {
    if (id == DISPID_VALUE) return {};
    if (id < 1 || static_cast<size_t>(id) > names_.size()) throw AutomationError(kMemberNotFound);
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
  Arguments ReceivedArguments(const DISPPARAMS& parameters, bool is_put) const {
    Arguments arguments;
    // The new value of a property is named by the system, and the last of our positional ones.
    const UINT first_named = is_put ? 1 : 0;
    for (UINT i = first_named; i < parameters.cNamedArgs; ++i) {
      arguments.Add({NameOf(parameters.rgdispidNamedArgs[i]), ReceivedValue(parameters.rgvarg[i])});
    }
    for (UINT i = parameters.cArgs; i > parameters.cNamedArgs; --i) {
      arguments.Add(ReceivedValue(parameters.rgvarg[i - 1]));
    }
    if (is_put) arguments.Add(ReceivedValue(parameters.rgvarg[0]));
    return arguments;
  }
  void StoreEnumerator(VARIANT* result) const {
    ComPtr<EnumeratorServer> elements = MakeComObject<EnumeratorServer>(object_);
    if (result == nullptr) return;
    result->punkVal = elements.Detach();
    result->vt = VT_UNKNOWN;
  }
  Value Answer(DISPID member, WORD flags, const DISPPARAMS& parameters) {
    const bool is_put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    const InvokeKind kind = is_put                           ? InvokeKind::kPut
                            : (flags & DISPATCH_METHOD) != 0 ? InvokeKind::kCall
                                                             : InvokeKind::kGet;
    return object_->Invoke(kind, NameOf(member), ReceivedArguments(parameters, is_put));
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
