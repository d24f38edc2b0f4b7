// The contacts folder that the CRM writes to, and contacts that are written without looking for
// existing ones.
#pragma once

#include "Control/ObjectState.h"
#include "Control/PageDocuments.h"

namespace kestrelon {

// Binds the subfolder of this name of the user's contacts, or the contacts themselves for
// "Contacts" and for a name that none has, and deletes the temporary contacts in it. A failure is
// told in a message box and keeps what was bound before.
void SetContactFolder(ControlContext& context, String& foldername);

// Writes a contact into the bound folder; one of type "Temporary" lives until the next
// SetContactFolder. Failures reach the caller.
void AddContact(ControlContext& context, String& id, String& LastName, String& contactType,
                String& straccount, String& Email, String& FirstName, String& title,
                String& Position, String& Phone, String& mobile, String& businessaddressstreet,
                String& businessaddressstreet2, String& businessaddressstreet3,
                String& businessaddresscity, String& businessaddressstate,
                String& businessaddresspostalcode, String& businessaddresscountry);

// Writes a contact from the fields of a page into the bound folder. False after a failure.
bool AddContactAll(ControlContext& context, HtmlDocument& oHTMLDoc);

}  // namespace kestrelon
