#include "outlook/ContactRemoval.h"

namespace kestrelon {

String RemoveContact(ControlContext&, String&, bool&) { throw AutomationError(kNotImplemented); }

bool CreateContactAsvCard(ControlContext&, HtmlDocument&) {
  throw AutomationError(kNotImplemented);
}

}  // namespace kestrelon
