#include "documents/ReportPdf.h"

namespace kestrelon {

Value CreateHTMforPDF(ControlContext& /*context*/, String& /*theBody*/, String& /*theUniqueName*/,
                      String& /*address*/, String& /*Subject*/, String& /*mailType*/,
                      String& /*addressType*/) {
  throw AutomationError(kNotImplemented);
}

}  // namespace kestrelon
