// Dialer components: the built-in one, which calls through a "tel:" link, and those that the
// configuration file names.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon::desktop {

// "Kestrelon.Dialer".
Object CreateLinkDialer();

// The dialer that the configuration file has under this name; an AutomationError when it has none.
Object CreateConfiguredDialer(StringView prog_id);

}  // namespace kestrelon::desktop
