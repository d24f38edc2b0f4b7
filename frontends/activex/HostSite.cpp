#include "frontends/activex/HostSite.h"

#include <algorithm>

#include "frontends/activex/AccessPolicy.h"
#include "frontends/activex/PageAddress.h"

namespace kestrelon {

void HostSite::SetSite(IUnknown* site) { Set(site_, site); }

HRESULT HostSite::GetSite(REFIID iid, void** site) const {
  if (site == nullptr) return E_POINTER;
  *site = nullptr;
  const ComPtr<IUnknown> kept = site_.site;
  return kept == nullptr ? E_FAIL : kept->QueryInterface(iid, site);
}

void HostSite::SetClientSite(IOleClientSite* site) { Set(client_site_, site); }

HRESULT HostSite::GetClientSite(IOleClientSite** site) const {
  if (site == nullptr) return E_POINTER;
  *site = nullptr;
  const ComPtr<IUnknown> kept = client_site_.site;
  return kept == nullptr ? S_OK
                         : kept->QueryInterface(IID_IOleClientSite, reinterpret_cast<void**>(site));
}

bool HostSite::MayCall() {
  const Host host = Examine();
  return host == Host::kAllowedPage || (host != Host::kRefused && !is_safety_claimed_);
}

bool HostSite::ClaimSafety() {
  const Host host = Examine();
  if (host != Host::kAllowedPage && (host != Host::kNone || IsKilled())) return false;
  is_safety_claimed_ = true;
  return true;
}

bool HostSite::IsSafetyClaimed() {
  if (!is_safety_claimed_) return false;
  const Host host = Examine();
  return host == Host::kAllowedPage || (host == Host::kNone && !IsKilled());
}

HWND HostSite::Window() const {
  // Asking a site may take both away.
  const ComPtr<IUnknown> sites[] = {client_site_.site, site_.site};
  for (const ComPtr<IUnknown>& site : sites) {
    const HWND window = site == nullptr ? nullptr : WindowOf(*site.Get());
    if (window != nullptr) return window;
  }
  return nullptr;
}

void HostSite::Set(Seat& seat, IUnknown* site) {
  Seat left;  // let go of only when the new state stands: its host may call back
  if (seat.site.Get() != site) {
    std::swap(seat, left);
    seat.site = site;
  }
  ++sitings_;
  is_let_go_ = site == nullptr && (is_let_go_ || left.is_page);
  Examine(seat);
}

HostSite::Host HostSite::Examine() {
  if (is_let_go_) return Host::kRefused;
  const Host first = Examine(site_);
  return std::max(first, Examine(client_site_));
}

HostSite::Host HostSite::Examine(Seat& seat) {
  if (seat.site == nullptr) return Host::kNone;
  if (seat.is_refused) return Host::kRefused;
  const uint32_t siting = sitings_;
  const std::vector<String> addresses = PageAddressesOf(*seat.site.Get());
  // The host gave another site meanwhile: what was asked is no answer for that.
  if (siting != sitings_) return Host::kRefused;
  if (addresses.empty() && !seat.is_page) return Host::kApplication;
  seat.is_page = true;
  seat.is_refused = addresses.empty() || IsKilled() ||
                    !std::all_of(addresses.begin(), addresses.end(), IsAllowedAddress);
  return seat.is_refused ? Host::kRefused : Host::kAllowedPage;
}

}  // namespace kestrelon
