// Saving Word documents.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Ends in "pdf", in any case.
bool IsPdfPath(const String& path);

// Exports the document as PDF. A failure is told to the user in a message box; False then.
bool ExportPdf(ControlContext& context, const Object& document, const String& path);

// Saves the document under `path`; a PDF path is exported to, and only where that fails does it
// receive a Word document. A failing save is the caller's.
void SaveOrExport(ControlContext& context, const Object& document, const String& path);

}  // namespace kestrelon
