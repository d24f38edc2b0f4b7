// Stamps that tell which Outlook items the CRM has taken in.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Writes a CRM id on an imported "contact" or "task". "" or the failure's text; any other type is
// left alone.
String SetImportID(ControlContext& context, String& strItemID, String& strEntryID,
                   String& strItemType);

// Marks an item as the CRM's and writes the ids that go with its type. False after a failure, which
// a message box tells.
bool SetItemAsKestrelon(ControlContext& context, String& ItemType, String& StoreID,
                        String& OutlookID, String& AccountID, String& ItemID);

// Where the contact or task with the CRM id `strEntryID` is: "NAME in folder Contacts.", "NAME in
// folder SUBFOLDER", "false" when there is none, "unknown" after a failure.
String CheckIfSynchronised(ControlContext& context, String& strEntryID, String& strItemType);

}  // namespace kestrelon
