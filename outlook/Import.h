// One Outlook contact or task as a record for the CRM: fields that end in "#~".
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// `foldername` is the folder's entry id, "" for the default folder; the second argument the item's
// entry id. A failure is told in a message box; the fields read before it are returned.
String ImportContact(ControlContext& context, String& foldername, String& contactname);
String ImportTask(ControlContext& context, String& foldername, String& taskName);

}  // namespace kestrelon
