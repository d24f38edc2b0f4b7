// Opening files in the program that they belong to.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Opens a file through the shell, or a Word or Excel document of the managed storage in Word or
// Excel. "" when it was handed over, else why the shell could not; a missing Word or Excel is told
// in a message box.
String OpenFile(ControlContext& context, String& filePath, bool& ManagedStorage);

}  // namespace kestrelon
