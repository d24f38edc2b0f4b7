// Exporting CRM contacts, one record XML each, into the bound contacts folder.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Writes a record into the folder, over the contact that matches it or as a new one. True when it
// is written, or matches and overwriting was not asked for. A failure is told in a message box.
// Anything but true counts as false in the flags; the second is cleared where the record lacks a
// name or an e-mail address to match by.
bool AddUpdateContactXML(ControlContext& context, String& ContactRecordXML,
                         bool& overwriteKestrelonIDMatch, bool& overwriteEmailNameMatch);

// The value of a field of the record; "" when it is missing, or after a failure, which a message
// box tells.
String GetXMLFieldValue(ControlContext& context, const Object& document, const String& field_name);

enum class ContactMatch : int16_t { kFailed = -1, kNone = 0, kFound = 1 };

// Looks a contact up in the match index of the bound folder, by CRM id or by names and e-mail
// address; the contact that matches first in the folder's order becomes the current contact.
// A message box tells why it failed.
ContactMatch CheckOutLookContactExists(ControlContext& context, const String& id,
                                       const String& first_name, const String& last_name,
                                       const String& email, bool& match_by_name_and_email);

}  // namespace kestrelon
