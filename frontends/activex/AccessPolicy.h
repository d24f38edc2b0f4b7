// Which pages may call the control. The system's zones and the machine's registry decide, never the
// page or the user's part of the registry alone.
#pragma once

#include "platform/windows/Win32.h"

namespace kestrelon {

// Whether a page at `address` may call. These may:
//
// - "file:" on a drive of this machine; on another machine as its zone says;
// - "http:" and "https:" in the zones Local intranet and Trusted sites, or with an origin on the
//   allow-list.
//
// Every other scheme is refused, whatever its zone: such an address can hold another one, or none.
// So is what cannot be read, holds a user's name, control characters, or a host with more in it
// than letters, digits and what joins them, or is no address at all.
//
// The allow-list is the values of one registry key of the machine, in its 64-bit view for both
// modules: "SOFTWARE\Policies\Kestrelon\KestrelonControl2005\AllowedSites" where that exists, else
// "SOFTWARE\Kestrelon\KestrelonControl2005\AllowedSites". A value of the type REG_SZ is an origin,
// "https://host" or "https://host:port", which must be the page's own exactly; other values match
// nothing.
bool IsAllowedAddress(const String& address);

// Whether the control's kill flag for browsers is set, in either view of the machine's registry;
// also when that cannot be told.
bool IsKilled();

}  // namespace kestrelon
