// Placing calls through a dialer component that the page names, and the lines that there are.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Creates the dialer that the item "object" of sParameters ("key=value;…") names, keeps it, and
// hands it the whole parameter text. Always empty; a failure is told in a message box.
Value MakeCall(ControlContext& context, Value& sParameters);

// Ends the call of the dialer that was created last. Always empty, also without one.
Value HangupCall(ControlContext& context);

// The version of the dialer `sObject`; "" when it cannot be asked.
String GetDialerVersion(ControlContext& context, Value& sObject);

// The names of the telephony lines, separated by "~"; "" when they cannot be listed.
String GetTapiDrivers(ControlContext& context);

}  // namespace kestrelon
