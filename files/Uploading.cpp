#include "files/Uploading.h"

namespace kestrelon {

bool UploadFile(ControlContext& /*context*/, String& /*filePath*/, String& /*ImportDirectory*/) {
  throw AutomationError(kNotImplemented);
}

}  // namespace kestrelon
