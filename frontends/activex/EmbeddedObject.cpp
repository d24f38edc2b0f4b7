#include "frontends/activex/EmbeddedObject.h"

#include "frontends/activex/Identifiers.h"

namespace kestrelon {
namespace {

// For what the control has none of.
template <typename Interface>
HRESULT None(Interface** object, HRESULT result) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  return result;
}

}  // namespace

STDMETHODIMP EmbeddedObject::SetHostNames(LPCOLESTR, LPCOLESTR) { return S_OK; }
STDMETHODIMP EmbeddedObject::Close(DWORD) { return S_OK; }
STDMETHODIMP EmbeddedObject::SetMoniker(DWORD, IMoniker*) { return S_OK; }
STDMETHODIMP EmbeddedObject::GetMoniker(DWORD, DWORD, IMoniker** moniker) {
  return None(moniker, E_FAIL);
}
STDMETHODIMP EmbeddedObject::InitFromData(IDataObject*, BOOL, DWORD) { return S_FALSE; }
STDMETHODIMP EmbeddedObject::GetClipboardData(DWORD, IDataObject** data) {
  return None(data, E_NOTIMPL);
}
// Hosts show and activate whatever they place, and take a failure for a broken control.
STDMETHODIMP EmbeddedObject::DoVerb(LONG, LPMSG, IOleClientSite*, LONG, HWND, LPCRECT) {
  return S_OK;
}
STDMETHODIMP EmbeddedObject::EnumVerbs(IEnumOLEVERB** verbs) {
  return None(verbs, OLEOBJ_E_NOVERBS);
}
STDMETHODIMP EmbeddedObject::Update() { return S_OK; }
STDMETHODIMP EmbeddedObject::IsUpToDate() { return S_OK; }
STDMETHODIMP EmbeddedObject::GetUserClassID(CLSID* clsid) {
  if (clsid == nullptr) return E_POINTER;
  *clsid = kControlClass;
  return S_OK;
}
STDMETHODIMP EmbeddedObject::GetUserType(DWORD form, LPOLESTR* name) {
  return name == nullptr ? E_POINTER : OleRegGetUserType(kControlClass, form, name);
}
STDMETHODIMP EmbeddedObject::SetExtent(DWORD aspect, SIZEL* size) {
  if (size == nullptr) return E_POINTER;
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  size_ = *size;
  return S_OK;
}
STDMETHODIMP EmbeddedObject::GetExtent(DWORD aspect, SIZEL* size) {
  if (size == nullptr) return E_POINTER;
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  *size = size_;
  return S_OK;
}
STDMETHODIMP EmbeddedObject::Advise(IAdviseSink*, DWORD* connection) {
  if (connection == nullptr) return E_POINTER;
  *connection = 0;
  return OLE_E_ADVISENOTSUPPORTED;
}
STDMETHODIMP EmbeddedObject::Unadvise(DWORD) { return OLE_E_NOCONNECTION; }
STDMETHODIMP EmbeddedObject::EnumAdvise(IEnumSTATDATA** connections) {
  return None(connections, OLE_E_ADVISENOTSUPPORTED);
}
STDMETHODIMP EmbeddedObject::GetMiscStatus(DWORD, DWORD* status) {
  if (status == nullptr) return E_POINTER;
  *status = kMiscStatus;
  return S_OK;
}
STDMETHODIMP EmbeddedObject::SetColorScheme(LOGPALETTE*) { return S_OK; }

}  // namespace kestrelon
