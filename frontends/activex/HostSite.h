// Who hosts a control, and whether it may call: the access to the user's desktop is not for every
// page of the web.
#pragma once

#include "platform/windows/Win32.h"

namespace kestrelon {

// What leads from a control to its host. A host gives one site or both: script engines and browsers
// the first (IObjectWithSite), containers of controls the second (IOleObject).
//
// - Without a site, or with one that leads to no page (PageAddress.h), the host is an application
//   or a script of the user's own, which may do as it likes anyway.
// - A page may call when the control's kill flag is not set and every address found for it is
//   allowed (AccessPolicy.h): both are looked up when the site is set, and at every call again,
//   since a page can navigate. A page once refused stays refused as long as its site is set, even
//   when it navigates back; so does one that can no longer be found.
// - With both sites set, each must be such that its host may call.
// - A control whose page has taken its site away serves nobody until it is sited again.
// - A control that has claimed to be safe for untrusted callers serves allowed pages alone, which
//   makes the claim true also before the host gives a site, as script engines want it.
class HostSite {
 public:
  void SetSite(IUnknown* site);
  HRESULT GetSite(REFIID iid, void** site) const;
  void SetClientSite(IOleClientSite* site);
  HRESULT GetClientSite(IOleClientSite** site) const;

  // Whether the host may call now.
  bool MayCall();

  // Makes the claim to be safe for untrusted callers. False, and nothing changed, when it cannot be
  // made to this host: it is neither an allowed page nor one that has not given its site yet.
  bool ClaimSafety();
  void WithdrawSafety() { is_safety_claimed_ = false; }
  // Whether the claim is made, and holds for the host as it is now.
  bool IsSafetyClaimed();

  // The window that the host shows its page or document in; null where it has none.
  HWND Window() const;

 private:
  // Of two sites, the one that stands later here decides.
  enum class Host { kNone, kApplication, kAllowedPage, kRefused };

  struct Seat {
    ComPtr<IUnknown> site;
    bool is_page = false;  // it has led to a page since it was set
    bool is_refused = false;
  };

  void Set(Seat& seat, IUnknown* site);
  Host Examine();
  Host Examine(Seat& seat);

  Seat site_;
  Seat client_site_;
  uint32_t sitings_ = 0;    // how often a site was set
  bool is_let_go_ = false;  // a page took its site away, and nobody sited it since
  bool is_safety_claimed_ = false;
};

}  // namespace kestrelon
