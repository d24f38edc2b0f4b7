// Mails that the CRM opens for the user to look over and send.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Opens a quote or report mail in HTML, with a picture of the screen on the clipboard. Always
// empty; a failure is told in a message box.
Value GenerateEmail(ControlContext& context, String& bodyhtml, String& address, String& Subject,
                    String& mailType, String& addressType);

// Each opens a mail and returns true; false when that fails, without a message.

// A new mail; "\'" in the address becomes "'", for the caller too.
bool SendEmail(ControlContext& context, String& strAddress);
// A plain mail with subject and body; `strFrom`, `strSent` and `strTo` are not used.
bool SendEmailFull(ControlContext& context, String& strAddress, String& strFrom, String& strSent,
                   String& strTo, String& strSubject, String& strBody);
// A reply that quotes the original message, in HTML when that is HTML.
bool SendEmailWithOriginal(ControlContext& context, String& strAddress, String& strFrom,
                           String& strSent, String& strTo, String& strSubject, String& strBody);
// The same, addressed only when it is already on the screen.
bool ForwardEmailWithOriginal(ControlContext& context, String& strAddress, String& strFrom,
                              String& strSent, String& strTo, String& strSubject, String& strBody);

// Makes sure that the user's contacts have a subfolder of this name. False when that fails.
bool CheckForFolder(ControlContext& context, Value& foldername);

// The address, or a placeholder for the user to fill in when it is "" or "null". `address_type`
// "Fax" and `mail_type` "Quote" count, in this case; anything else is e-mail and report.
String GetRecipientAddress(const String& address, const String& address_type,
                           const String& mail_type);

// "" for "", else the subject led by the kind of mail.
String GetMailSubject(const String& subject, const String& mail_type);

}  // namespace kestrelon
