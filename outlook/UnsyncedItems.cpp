#include "outlook/UnsyncedItems.h"

namespace kestrelon {

Value GetUnsyncedAppts(ControlContext&) { throw AutomationError(kNotImplemented); }

Value GetUnsyncedTasks(ControlContext&) { throw AutomationError(kNotImplemented); }

Value GetUnsyncedContacts(ControlContext&, String&) { throw AutomationError(kNotImplemented); }

}  // namespace kestrelon
