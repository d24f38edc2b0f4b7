// Getting hold of Outlook and Word, and letting go of them.
#pragma once

#include <optional>

#include "Control/ObjectState.h"

namespace kestrelon {

// Releases the Outlook references of the object state, the bound contact folder included, and asks
// nothing of Outlook itself. Never fails.
void CleanUpOutlook(ControlContext& context);

// "True" when Outlook is running; it is not started. Otherwise "False".
String CheckForOutlook(ControlContext& context);

// "True" when Word can be created, which starts an invisible Word; otherwise "False".
String CheckForWord(ControlContext& context);

// A new Excel, kept in the object state and handed to the page; Nothing when there is no Excel.
Object CreateExcelApp(ControlContext& context);

// A new Word or Excel; Nothing after telling the user that it cannot be started.
Object StartWord(ControlContext& context);
Object StartExcel(ControlContext& context);

// The result word of an Outlook member that failed with `pending`: "NoOutlook" when Outlook could
// not be created, and the failure stays pending; otherwise the member's code in decimal, and
// nothing is pending any more. `step_text` is accepted and not used: the step reached is not
// reported.
String GetOutlookErrorResult(std::optional<AutomationError>& pending, const String& step_text,
                             int16_t method_code);

}  // namespace kestrelon
