// The external table template of a quote: an HTML file that the Word template names, and that is
// expanded and put in its place. Failures are the caller's.
#pragma once

#include <optional>

#include "Control/ObjectState.h"

namespace kestrelon {

// Looks for "<htmltable>" in Word's active document and takes it out, together with the rest of its
// paragraph, which is the path of the table template; the selection stays where it stood. A
// relative path counts from the folder of `strTemplate`. Nothing when there is no such tag.
std::optional<String> TakeTableTemplatePath(const Object& wordApp, const String& strTemplate);

// A template on a web or FTP server is brought into the temporary folder under its own name,
// whatever the server's status says of it; the new path. Any other path is returned unchanged.
String FetchTemplateFile(ControlContext& context, const String& path);

// A file of the control's own in the temporary folder that holds the template: the user's own file
// is neither changed nor deleted.
String CopyTableTemplate(ControlContext& context, const String& path);

// Puts the HTML file into the document where the selection is.
void InsertTableFile(const Object& wordApp, const String& path);

}  // namespace kestrelon
