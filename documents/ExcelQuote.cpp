#include "documents/ExcelQuote.h"

namespace kestrelon {

bool ExcelQuote(ControlContext& /*context*/, HtmlDocument& /*oHTMLDoc*/, String& /*strColumns*/) {
  throw AutomationError(kNotImplemented);
}

}  // namespace kestrelon
