#include "outlook/Selection.h"

namespace kestrelon {

String GetOutlookSelection(ControlContext&) { throw AutomationError(kNotImplemented); }

String GetOutlookSelectionString(ControlContext&) { throw AutomationError(kNotImplemented); }

}  // namespace kestrelon
