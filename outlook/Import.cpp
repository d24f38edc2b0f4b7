#include "outlook/Import.h"

namespace kestrelon {

String ImportContact(ControlContext&, String&, String&) { throw AutomationError(kNotImplemented); }

String ImportTask(ControlContext&, String&, String&) { throw AutomationError(kNotImplemented); }

}  // namespace kestrelon
