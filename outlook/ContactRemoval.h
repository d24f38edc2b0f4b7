// Ending a contact's link with the CRM, and sending contacts as vCards.
#pragma once

#include "Control/ObjectState.h"
#include "Control/PageDocuments.h"

namespace kestrelon {

// Takes the stamp of a CRM id off the contacts that carry it, or deletes them, in the user's
// contacts and their subfolders. A sentence for the page to show.
String RemoveContact(ControlContext& context, String& strContactID, bool& strDelete);

// Opens a mail with a contact made from the fields of a page as a vCard. False after a failure.
bool CreateContactAsvCard(ControlContext& context, HtmlDocument& oHTMLDoc);

}  // namespace kestrelon
