// Filling a quote document: its lines, then its tags.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Puts the quote's lines into `document`, either as an HTML table template where "<htmltable>"
// stands or into its first table, and replaces its tags. True when it is done; failures are told in
// message boxes, which name the step.
bool BuildQuoteDocument(ControlContext& context, const Object& xmlDoc, const Object& wordApp,
                        const Object& document, const String& strTemplate,
                        const String& strReplaceinheader);

}  // namespace kestrelon
