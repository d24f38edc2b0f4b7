// Letters: a Word template filled from a record XML, then saved, shown or mailed.
#pragma once

#include "Control/ObjectState.h"
#include "Control/PageDocuments.h"

namespace kestrelon {

// A letter from a "Data"-rooted record. Saved under strSavePath unless that is ""; then shown in
// Word, or, with an e-mail address, put into a mail that is displayed, never sent: as its HTML body
// when strMailMode is exactly "HTML", else as an attached Word document. Every failure is told to
// the user in a message box; after one, Word and Outlook are left as they are.
void CreateLetterXML(ControlContext& context, XmlDocument& xmlDoc, String& template_,
                     String& strEmailAddress, String& strMailMode, String& strSavePath,
                     String& ReplaceinHeader, String& EmailSubject);

// A letter from a "record"-rooted record, whose list tables are filled too; saved under strSavePath
// unless that is "", then shown in Word. The mail parameters are accepted and not used.
void CreateSeminarLetterXML(ControlContext& context, XmlDocument& xmlDoc, String& template_,
                            String& strEmailAddress, String& strMailMode, String& strSavePath,
                            String& ReplaceinHeader);

// Retired: tells the user so.
void CreateContactLetter(ControlContext& context, HtmlDocument& oHTMLDoc, String& template_);

}  // namespace kestrelon
