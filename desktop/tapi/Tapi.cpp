#include "desktop/tapi/Tapi.h"

namespace kestrelon::desktop {

Object CreateTapi() { throw AutomationError(kCannotCreateObject); }

}  // namespace kestrelon::desktop
