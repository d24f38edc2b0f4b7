#include "desktop/tapi/Dialer.h"

namespace kestrelon::desktop {

Object CreateLinkDialer() { throw AutomationError(kCannotCreateObject); }

Object CreateConfiguredDialer(StringView /*prog_id*/) { return {}; }

}  // namespace kestrelon::desktop
