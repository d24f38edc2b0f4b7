#include "frontends/activex/HostSite.h"

namespace kestrelon {

void HostSite::SetSite(IUnknown* site) { site_ = site; }

HRESULT HostSite::GetSite(REFIID iid, void** site) const {
  *site = nullptr;
  return site_ == nullptr ? E_FAIL : site_->QueryInterface(iid, site);
}

void HostSite::SetClientSite(IOleClientSite* site) { client_site_ = site; }

HRESULT HostSite::GetClientSite(IOleClientSite** site) const { return client_site_.CopyTo(site); }

bool HostSite::MayCall() const { return site_ == nullptr && client_site_ == nullptr; }

bool HostSite::IsAllowedPage() const { return false; }

HWND HostSite::Window() const { return nullptr; }

}  // namespace kestrelon
