#include "documents/PdfExport.h"

#include "Control/ErrorReporting.h"
#include "documents/WordConstants.h"

namespace kestrelon {

bool IsPdfPath(const String& path) { return LowerCase(Right(path, 3)) == u"pdf"; }

bool ExportPdf(ControlContext& context, const Object& document, const String& path) {
  return Attempt(
      [&] {
        document.Call(u"ExportAsFixedFormat", Named(u"OutputFileName", path),
                      Named(u"ExportFormat", wdExportFormatPDF));
      },
      [&](const AutomationError&) {
        ShowMessage(context,
                    u"Unable to export to PDF.  PDF Export requires Word 2007 or above with "
                    u"Microsoft's free 'Save as PDF' add-in",
                    kInformation, u"Kestrelon");
      });
}

void SaveOrExport(ControlContext& context, const Object& document, const String& path) {
  if (IsPdfPath(path) && ExportPdf(context, document, path)) return;
  document.Call(u"SaveAs", path);
}

}  // namespace kestrelon
