// The control's entries in the registry.
#pragma once

#include "platform/windows/Win32.h"

namespace kestrelon {

// Enters class, ProgID and type library, for all users of the machine, or for this user alone
// without the rights to do that.
HRESULT Register();
// Removes everything that Register enters.
HRESULT Unregister();

}  // namespace kestrelon
