#include "outlook/Stamps.h"

namespace kestrelon {

String SetImportID(ControlContext&, String&, String&, String&) {
  throw AutomationError(kNotImplemented);
}

bool SetItemAsKestrelon(ControlContext&, String&, String&, String&, String&, String&) {
  throw AutomationError(kNotImplemented);
}

String CheckIfSynchronised(ControlContext&, String&, String&) {
  throw AutomationError(kNotImplemented);
}

}  // namespace kestrelon
