#include "outlook/Appointments.h"

namespace kestrelon {

String NewAppointment(ControlContext&, String&, String&, String&, bool&) {
  throw AutomationError(kNotImplemented);
}

Value AddAppointment(ControlContext&, Value&) { throw AutomationError(kNotImplemented); }

String OpenTask(ControlContext&, String&) { throw AutomationError(kNotImplemented); }

String OpenAppointment(ControlContext&, String&) { throw AutomationError(kNotImplemented); }

String NewGuidString(ControlContext&) { throw AutomationError(kNotImplemented); }

}  // namespace kestrelon
