// Quotes: a Word template filled with the lines and tags of a quote XML, then saved or mailed.
#pragma once

#include "Control/ObjectState.h"
#include "Control/PageDocuments.h"

namespace kestrelon {

// A quote in Word, which is shown in the end, and before it is filled when strMakeWordVisible is
// "true". Saved under strSavePath unless that is "", as PDF when that ends in "pdf". "success"; ""
// after a failure, which is told in a message box.
String WordQuote(ControlContext& context, XmlDocument& xmlDoc, String& strTemplate,
                 String& strSavePath, String& strMakeWordVisible, String& strReplaceinheader);

// A quote in a mail that is displayed, never sent: attached as Word document, HTML page or PDF when
// mailType, in any case, is "attach", "attachhtml" or "attachpdf", else as its HTML body. Word is
// shown while it works when strMakeWordVisible is "1", and quits. Result as for WordQuote. The file
// is called strQuoteFileName, without what does not fit into a name, or where that is "", as the
// template.
// strFormat is accepted and not used.
String WordQuoteHtml(ControlContext& context, XmlDocument& xmlDoc, String& address, String& Subject,
                     String& mailType, String& addressType, String& strTemplate, String& strFormat,
                     String& strSavePath, String& strReplaceinheader, String& strMakeWordVisible,
                     String& strQuoteFileName);

}  // namespace kestrelon
