// What a container of controls wants of a control that shows nothing and stores nothing.
#pragma once

#include "frontends/activex/HostSite.h"
#include "platform/windows/ComClass.h"

namespace kestrelon {

// Everything of IOleObject but the site, which is the control's own affair. The control answers no
// interface for storing or initialising: a host would then ask whether its data is safe to take.
class EmbeddedObject : public IOleObject {
 public:
  // Also what is registered.
  static constexpr DWORD kMiscStatus = OLEMISC_INVISIBLEATRUNTIME | OLEMISC_SETCLIENTSITEFIRST |
                                       OLEMISC_INSIDEOUT | OLEMISC_NOUIACTIVATE;

  STDMETHODIMP SetHostNames(LPCOLESTR application, LPCOLESTR document) override;
  STDMETHODIMP Close(DWORD save) override;
  STDMETHODIMP SetMoniker(DWORD which, IMoniker* moniker) override;
  STDMETHODIMP GetMoniker(DWORD assign, DWORD which, IMoniker** moniker) override;
  STDMETHODIMP InitFromData(IDataObject* data, BOOL creation, DWORD reserved) override;
  STDMETHODIMP GetClipboardData(DWORD reserved, IDataObject** data) override;
  STDMETHODIMP DoVerb(LONG verb, LPMSG message, IOleClientSite* site, LONG index, HWND parent,
                      LPCRECT position) override;
  STDMETHODIMP EnumVerbs(IEnumOLEVERB** verbs) override;
  STDMETHODIMP Update() override;
  STDMETHODIMP IsUpToDate() override;
  STDMETHODIMP GetUserClassID(CLSID* clsid) override;
  STDMETHODIMP GetUserType(DWORD form, LPOLESTR* name) override;
  STDMETHODIMP SetExtent(DWORD aspect, SIZEL* size) override;
  STDMETHODIMP GetExtent(DWORD aspect, SIZEL* size) override;
  STDMETHODIMP Advise(IAdviseSink* sink, DWORD* connection) override;
  STDMETHODIMP Unadvise(DWORD connection) override;
  STDMETHODIMP EnumAdvise(IEnumSTATDATA** connections) override;
  STDMETHODIMP GetMiscStatus(DWORD aspect, DWORD* status) override;
  STDMETHODIMP SetColorScheme(LOGPALETTE* palette) override;

 private:
  SIZEL size_{};  // in 1/100 mm; kept for the container
};

template <>
inline bool Answers<EmbeddedObject>(REFIID iid) {
  return IsEqualIID(iid, IID_IOleObject);
}

}  // namespace kestrelon
