// Outlook appointments and tasks for the CRM's activities.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Opens a new appointment form that links back to a CRM account. `AccountInfo`: pieces separated by
// "¬", each KEY=VALUE (ac_id, guid, location, subject) or an account id alone; later pieces win.
// "" when the form is open, "NoOutlook", or "7" for any other failure.
String NewAppointment(ControlContext& context, String& AccountInfo, String& ServerName,
                      String& VirtualDirectory, bool& SecureMode);

// Stamps the appointment that is selected in Outlook for the CRM's mail scan. "success", what went
// wrong, or empty when not exactly one item is selected.
Value AddAppointment(ControlContext& context, Value& acid);

// Opens a task by its entry id. "" when it is open, else a text for the user, "NoOutlook" or "8".
String OpenTask(ControlContext& context, String& TaskID);

// Opens an appointment: an entry id of the user's own calendar, or USER@ENTRYID for the calendar of
// another user. "" when it is open, else a text for the user, "NoOutlook" or "9".
String OpenAppointment(ControlContext& context, String& AppointmentID);

// A new GUID, 36 characters without braces; "" when the system gives none.
String NewGuidString(ControlContext& context);

}  // namespace kestrelon
