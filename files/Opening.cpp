#include "files/Opening.h"

namespace kestrelon {

String OpenFile(ControlContext& /*context*/, String& /*filePath*/, bool& /*ManagedStorage*/) {
  throw AutomationError(kNotImplemented);
}

}  // namespace kestrelon
