// Who hosts a control, and whether it may call: the access to the user's desktop is not for every
// page of the web.
#pragma once

#include "platform/windows/Win32.h"

namespace kestrelon {

// What leads from a control to its host. A host gives one site or both: script engines and browsers
// the first (IObjectWithSite), containers of controls the second (IOleObject).
//
// - Without a site the host is an application or a script of the user's own, which may do as it
//   likes anyway.
// - A site that leads to a page serves it when its address is allowed (AccessPolicy.h), when the
//   site is set and at every call again, since a page can navigate. A page once refused stays
//   refused as long as it is the host, and a control that a page has let go of serves nobody until
//   it is sited again.
class HostSite {
 public:
  void SetSite(IUnknown* site);
  HRESULT GetSite(REFIID iid, void** site) const;
  void SetClientSite(IOleClientSite* site);
  HRESULT GetClientSite(IOleClientSite** site) const;

  // Whether the host may call now.
  bool MayCall() const;
  // Whether the host is a page that may: what the control's claim to be safe for scripting means.
  bool IsAllowedPage() const;
  // The window that the host shows its page or document in; null where it has none.
  HWND Window() const;

 private:
  ComPtr<IUnknown> site_;
  ComPtr<IOleClientSite> client_site_;
};

}  // namespace kestrelon
