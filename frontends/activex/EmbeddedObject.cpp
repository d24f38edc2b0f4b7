#include "frontends/activex/EmbeddedObject.h"

#include "frontends/activex/Identifiers.h"

namespace kestrelon {
STDMETHODIMP EmbeddedObject::SetHostNames(LPCOLESTR, LPCOLESTR) { return S_OK; }
STDMETHODIMP EmbeddedObject::Close(DWORD) { return S_OK; }
STDMETHODIMP EmbeddedObject::SetMoniker(DWORD, IMoniker*) { return S_OK; }
STDMETHODIMP EmbeddedObject::GetMoniker(DWORD, DWORD, IMoniker** moniker) {
  *moniker = nullptr;
  return E_FAIL;
}
STDMETHODIMP EmbeddedObject::InitFromData(IDataObject*, BOOL, DWORD) { return S_FALSE; }
STDMETHODIMP EmbeddedObject::GetClipboardData(DWORD, IDataObject** data) {
  *data = nullptr;
  return E_NOTIMPL;
}
STDMETHODIMP EmbeddedObject::DoVerb(LONG, LPMSG, IOleClientSite*, LONG, HWND, LPCRECT) {
  return S_OK;
}
STDMETHODIMP EmbeddedObject::EnumVerbs(IEnumOLEVERB** verbs) {
  *verbs = nullptr;
  return OLEOBJ_E_NOVERBS;
}
STDMETHODIMP EmbeddedObject::Update() { return S_OK; }
STDMETHODIMP EmbeddedObject::IsUpToDate() { return S_OK; }
STDMETHODIMP EmbeddedObject::GetUserClassID(CLSID* clsid) {
  *clsid = kControlClass;
  return S_OK;
}
STDMETHODIMP EmbeddedObject::GetUserType(DWORD form, LPOLESTR* name) {
  return OleRegGetUserType(kControlClass, form, name);
}
STDMETHODIMP EmbeddedObject::SetExtent(DWORD, SIZEL* size) {
  size_ = *size;
  return S_OK;
}
STDMETHODIMP EmbeddedObject::GetExtent(DWORD, SIZEL* size) {
  *size = size_;
  return S_OK;
}
STDMETHODIMP EmbeddedObject::Advise(IAdviseSink*, DWORD* connection) {
  *connection = 0;
  return OLE_E_ADVISENOTSUPPORTED;
}
STDMETHODIMP EmbeddedObject::Unadvise(DWORD) { return OLE_E_NOCONNECTION; }
STDMETHODIMP EmbeddedObject::EnumAdvise(IEnumSTATDATA** connections) {
  *connections = nullptr;
  return OLE_E_ADVISENOTSUPPORTED;
}
STDMETHODIMP EmbeddedObject::GetMiscStatus(DWORD, DWORD* status) {
  *status = kMiscStatus;
  return S_OK;
}
STDMETHODIMP EmbeddedObject::SetColorScheme(LOGPALETTE*) { return S_OK; }

}  // namespace kestrelon
