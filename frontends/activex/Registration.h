// The control's entries in the registry: class, ProgID and type library.
//
// The control is in no category of controls that are safe for scripting: whether it is, depends on
// the page, and the control itself answers that.
#pragma once

#include "platform/windows/Win32.h"

namespace kestrelon {

enum class Users { kAll, kThisOne };

// Enters the control for all users of the machine, or for this user alone without the rights to do
// that. A control already there is entered again. A failure leaves everything as it was.
HRESULT Register();
// Removes everything that Register enters, in both places; what is missing is no failure. A place
// that names another file which exists is that file's, and left alone. What a control of the other
// architecture shares with this one (ProgID, type library) stays as long as that is registered.
HRESULT Unregister();

// The same for one place.
HRESULT RegisterFor(Users users);
HRESULT UnregisterFor(Users users);

}  // namespace kestrelon
