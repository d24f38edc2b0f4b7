#include "desktop/http/HttpRequest.h"

namespace kestrelon::desktop {

Object CreateHttpRequest() { throw AutomationError(kCannotCreateObject); }

}  // namespace kestrelon::desktop
