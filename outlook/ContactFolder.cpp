#include "outlook/ContactFolder.h"

namespace kestrelon {

void SetContactFolder(ControlContext&, String&) { throw AutomationError(kNotImplemented); }

void AddContact(ControlContext&, String&, String&, String&, String&, String&, String&, String&,
                String&, String&, String&, String&, String&, String&, String&, String&, String&,
                String&) {
  throw AutomationError(kNotImplemented);
}

bool AddContactAll(ControlContext&, HtmlDocument&) { throw AutomationError(kNotImplemented); }

}  // namespace kestrelon
