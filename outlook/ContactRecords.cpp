#include "outlook/ContactRecords.h"

namespace kestrelon {

bool AddUpdateContactXML(ControlContext&, String&, bool&, bool&) {
  throw AutomationError(kNotImplemented);
}

String GetXMLFieldValue(ControlContext&, const Object&, const String&) {
  throw AutomationError(kNotImplemented);
}

ContactMatch CheckOutLookContactExists(ControlContext&, const String&, const String&, const String&,
                                       const String&, bool&) {
  throw AutomationError(kNotImplemented);
}

}  // namespace kestrelon
