// What the user has selected in Outlook, for the CRM's screen that adds mails.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Both: "" when nothing or more than ten items are selected, "No Outlook" when Outlook was not
// running or an item could not be read; the user is told in a message box each time.

// ENTRYID,STOREID of each item, joined by ",".
String GetOutlookSelection(ControlContext& context);

// ENTRYID\STOREID\SUBJECT\SENDER\TO\ of each item, joined by "\\".
String GetOutlookSelectionString(ControlContext& context);

}  // namespace kestrelon
