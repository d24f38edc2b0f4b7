#include "documents/Quotes.h"

namespace kestrelon {

String WordQuote(ControlContext& /*context*/, XmlDocument& /*xmlDoc*/, String& /*strTemplate*/,
                 String& /*strSavePath*/, String& /*strMakeWordVisible*/,
                 String& /*strReplaceinheader*/) {
  throw AutomationError(kNotImplemented);
}

String WordQuoteHtml(ControlContext& /*context*/, XmlDocument& /*xmlDoc*/, String& /*address*/,
                     String& /*Subject*/, String& /*mailType*/, String& /*addressType*/,
                     String& /*strTemplate*/, String& /*strFormat*/, String& /*strSavePath*/,
                     String& /*strReplaceinheader*/, String& /*strMakeWordVisible*/,
                     String& /*strQuoteFileName*/) {
  throw AutomationError(kNotImplemented);
}

}  // namespace kestrelon
