// The one write-only property of the control.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Keeps the host of an address of the form "http://host/…", and writes it back into the argument.
// Any failure is error 13 "Type mismatch" to the caller, and the stored name stays.
void ServerName(ControlContext& context, String& value);

}  // namespace kestrelon
