#include "frontends/activex/ControlObject.h"

#include "frontends/activex/FloatingPoint.h"
#include "frontends/activex/Identifiers.h"
#include "frontends/activex/MemberDispatch.h"
#include "platform/windows/ComErrors.h"

namespace kestrelon {
namespace {

HRESULT Fail(const AutomationError& error, EXCEPINFO* exception) {
  FillExceptionInfo(error, kProjectName, exception);
  return DISP_E_EXCEPTION;
}

// Set for the time of one call.
class BusyMark {
 public:
  explicit BusyMark(bool& is_busy) : is_busy_(is_busy) { is_busy_ = true; }
  ~BusyMark() { is_busy_ = false; }

 private:
  bool& is_busy_;
};

}  // namespace

STDMETHODIMP ControlObject::QueryInterface(REFIID iid, void** object) {
  // The default interface has no methods of its own: it is called through IDispatch.
  return ComClass::QueryInterface(IsEqualIID(iid, kMembersInterface) ? IID_IDispatch : iid, object);
}

STDMETHODIMP ControlObject::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

STDMETHODIMP ControlObject::GetTypeInfo(UINT index, LCID, ITypeInfo** information) {
  if (information == nullptr) return E_POINTER;
  *information = nullptr;
  return index == 0 ? type_library_.GetTypeInformation(kMembersInterface, information)
                    : DISP_E_BADINDEX;
}

STDMETHODIMP ControlObject::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) {
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  return Guard([&] { return FindDispatchIds(names, count, ids); });
}

STDMETHODIMP ControlObject::Invoke(DISPID dispid, REFIID reserved, LCID locale, WORD flags,
                                   DISPPARAMS* parameters, VARIANT* answer, EXCEPINFO* exception,
                                   UINT* failed_argument) {
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (parameters == nullptr) return E_POINTER;
  const HRESULT result = Guard([&]() -> HRESULT {
    const ComPtr<ControlObject> kept_alive(this);  // a page may let go of it meanwhile
    if (!host_.MayCall()) return Fail(AutomationError(kPermissionDenied), exception);
    if (is_busy_) {
      return Fail(AutomationError(RPC_E_SERVERCALL_RETRYLATER,
                                  u"The control is busy with another call. Call again when that "
                                  u"has returned."),
                  exception);
    }
    const BusyMark mark(is_busy_);
    const UsualFloatingPoint floating_point;
    return InvokeMember(control_, dispid, locale, flags, *parameters, answer, exception,
                        failed_argument);
  });
  // What a server left there that was called meanwhile is not the reason of this failure.
  if (FAILED(result)) SetErrorInfo(0, nullptr);
  return result;
}

STDMETHODIMP ControlObject::SetSite(IUnknown* site) {
  return Guard([&] {
    const ComPtr<ControlObject> kept_alive(this);
    host_.SetSite(site);
    return S_OK;
  });
}

STDMETHODIMP ControlObject::GetSite(REFIID iid, void** site) { return host_.GetSite(iid, site); }

STDMETHODIMP ControlObject::SetClientSite(IOleClientSite* site) {
  return Guard([&] {
    const ComPtr<ControlObject> kept_alive(this);
    host_.SetClientSite(site);
    return S_OK;
  });
}

STDMETHODIMP ControlObject::GetClientSite(IOleClientSite** site) {
  return host_.GetClientSite(site);
}

STDMETHODIMP ControlObject::GetInterfaceSafetyOptions(REFIID iid, DWORD* supported,
                                                      DWORD* enabled) {
  if (supported == nullptr || enabled == nullptr) return E_POINTER;
  *supported = *enabled = 0;
  if (!IsEqualIID(iid, IID_IDispatch)) return E_NOINTERFACE;
  return Guard([&] {
    const ComPtr<ControlObject> kept_alive(this);
    *supported = INTERFACESAFE_FOR_UNTRUSTED_CALLER;
    *enabled = host_.IsSafetyClaimed() ? INTERFACESAFE_FOR_UNTRUSTED_CALLER : 0;
    return S_OK;
  });
}

STDMETHODIMP ControlObject::SetInterfaceSafetyOptions(REFIID iid, DWORD mask, DWORD enabled) {
  if (!IsEqualIID(iid, IID_IDispatch)) return E_NOINTERFACE;
  if ((mask & ~DWORD{INTERFACESAFE_FOR_UNTRUSTED_CALLER}) != 0) return E_FAIL;
  if (mask == 0) return S_OK;
  return Guard([&] {
    const ComPtr<ControlObject> kept_alive(this);
    if (enabled != 0) return host_.ClaimSafety() ? S_OK : E_FAIL;
    host_.WithdrawSafety();
    return S_OK;
  });
}

STDMETHODIMP ControlObject::GetClassInfo(ITypeInfo** information) {
  return type_library_.GetTypeInformation(kControlClass, information);
}

STDMETHODIMP ControlObject::GetGUID(DWORD kind, GUID* guid) {
  if (guid == nullptr) return E_POINTER;
  *guid = GUID_NULL;
  if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID) return E_INVALIDARG;
  *guid = kEventsInterface;
  return S_OK;
}

STDMETHODIMP ControlObject::InterfaceSupportsErrorInfo(REFIID iid) {
  return IsEqualIID(iid, kMembersInterface) || IsEqualIID(iid, IID_IDispatch) ? S_OK : S_FALSE;
}

STDMETHODIMP ControlObject::EnumConnectionPoints(IEnumConnectionPoints** points) {
  return EnumeratePoint(events_.Get(), points);
}

STDMETHODIMP ControlObject::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
  if (point == nullptr) return E_POINTER;
  *point = nullptr;
  return IsEqualIID(iid, kEventsInterface) ? events_.CopyTo(point) : CONNECT_E_NOCONNECTION;
}

}  // namespace kestrelon
