// Reports as PDF: a page's HTML, converted by Acrobat and mailed.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Makes theUniqueName.pdf of an HTML text and displays a mail that carries it, addressed and titled
// as GenerateEmail does. Always empty; a failure is told in a message box, and leaves what was made
// in the temporary folder. theUniqueName becomes the name of the PDF, for the caller too: without
// "#", and without what a path cannot hold when there is a ":" in it.
Value CreateHTMforPDF(ControlContext& context, String& theBody, String& theUniqueName,
                      String& address, String& Subject, String& mailType, String& addressType);

}  // namespace kestrelon
