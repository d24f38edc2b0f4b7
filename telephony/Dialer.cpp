#include "telephony/Dialer.h"

namespace kestrelon {

Value MakeCall(ControlContext& /*context*/, Value& /*sParameters*/) {
  throw AutomationError(kNotImplemented);
}

Value HangupCall(ControlContext& /*context*/) { throw AutomationError(kNotImplemented); }

String GetDialerVersion(ControlContext& /*context*/, Value& /*sObject*/) {
  throw AutomationError(kNotImplemented);
}

String GetTapiDrivers(ControlContext& /*context*/) { throw AutomationError(kNotImplemented); }

}  // namespace kestrelon
