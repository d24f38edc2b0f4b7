#include "documents/TemplateLists.h"

namespace kestrelon {

String GetTemplateList(ControlContext& /*context*/, String& /*folderpath*/, String& /*listtype*/) {
  throw AutomationError(kNotImplemented);
}

bool FindFile(ControlContext& /*context*/, String& /*path*/) {
  throw AutomationError(kNotImplemented);
}

}  // namespace kestrelon
