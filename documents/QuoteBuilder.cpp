#include "documents/QuoteBuilder.h"

namespace kestrelon {

bool BuildQuoteDocument(ControlContext& /*context*/, const Object& /*xmlDoc*/,
                        const Object& /*wordApp*/, const Object& /*document*/,
                        const String& /*strTemplate*/, const String& /*strReplaceinheader*/) {
  throw AutomationError(kNotImplemented);
}

}  // namespace kestrelon
