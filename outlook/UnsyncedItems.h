// Outlook items that the CRM has not taken in yet: NAME#~ENTRYID#~ pairs, "" for none.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Appointments of the user's calendar that are not marked as the CRM's.
Value GetUnsyncedAppts(ControlContext& context);
// Tasks of the user's task folder without a CRM id.
Value GetUnsyncedTasks(ControlContext& context);
// Contacts of a folder without a CRM id; `foldertosearch` as for GetFolderContactItems.
Value GetUnsyncedContacts(ControlContext& context, String& foldertosearch);

}  // namespace kestrelon
