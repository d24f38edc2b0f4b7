#include "documents/QuoteTemplate.h"

namespace kestrelon {

void ExpandQuoteTemplate(ControlContext& /*context*/, const String& /*path*/,
                         const Object& /*xmlDoc*/) {
  throw AutomationError(kNotImplemented);
}

String GetQuoteRowValue(int16_t /*line*/, const Object& /*xmlDoc*/, const String& /*field_name*/,
                        const String& /*tag*/) {
  throw AutomationError(kNotImplemented);
}

}  // namespace kestrelon
