// The control as COM sees it: one object for each page that creates or places it.
//
// It lives in the single-threaded apartment of its maker; objects on several threads share nothing
// but what never changes.
#pragma once

#include "Control/KestrelonControl.h"
#include "frontends/activex/EmbeddedObject.h"
#include "frontends/activex/EventPoint.h"
#include "frontends/activex/HostSite.h"
#include "frontends/activex/TypeLibrary.h"
#include "platform/windows/ComClass.h"
#include "platform/windows/WindowsPlatform.h"

namespace kestrelon {

template <>
inline bool Answers<IObjectSafety>(REFIID iid) {
  return IsEqualIID(iid, IID_IObjectSafety);
}
template <>
inline bool Answers<IProvideClassInfo2>(REFIID iid) {
  return IsEqualIID(iid, IID_IProvideClassInfo2) || IsEqualIID(iid, IID_IProvideClassInfo);
}

class ControlObject final
    : public ComClass<IDispatch, EmbeddedObject, IObjectSafety, IObjectWithSite, IProvideClassInfo2,
                      ISupportErrorInfo, IConnectionPointContainer> {
 public:
  ~ControlObject() override { events_->Disconnect(); }
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;

  // The members. A host that may not call gets error 70 "Permission denied", and nothing is done.
  // While a member waits for a message box or for another program, the page's timers may call
  // again: that fails with RPC_E_SERVERCALL_RETRYLATER, for the member's state is half made. What
  // there is to say of a failure is in `exception`; no error object is left on the thread.
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** information) override;
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID dispid, REFIID reserved, LCID locale, WORD flags,
                      DISPPARAMS* parameters, VARIANT* answer, EXCEPINFO* exception,
                      UINT* failed_argument) override;

  // The host.
  STDMETHODIMP SetSite(IUnknown* site) override;
  STDMETHODIMP GetSite(REFIID iid, void** site) override;
  STDMETHODIMP SetClientSite(IOleClientSite* site) override;
  STDMETHODIMP GetClientSite(IOleClientSite** site) override;
  // Safe for scripting, by untrusted callers too, only in a page that may call.
  STDMETHODIMP GetInterfaceSafetyOptions(REFIID iid, DWORD* supported, DWORD* enabled) override;
  STDMETHODIMP SetInterfaceSafetyOptions(REFIID iid, DWORD mask, DWORD enabled) override;

  // Descriptions.
  STDMETHODIMP GetClassInfo(ITypeInfo** information) override;
  STDMETHODIMP GetGUID(DWORD kind, GUID* guid) override;
  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) override;
  STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) override;
  STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;

 private:
  HostSite host_;
  WindowsPlatform platform_{[this] { return host_.Window(); }};
  KestrelonControl control_{platform_};
  TypeLibrary type_library_;
  const ComPtr<EventPoint> events_ = MakeComObject<EventPoint>(*this);
  bool is_busy_ = false;  // while a member works
};

}  // namespace kestrelon
