// HTML templates of quotes: a row for each line of a quote, and headers for its groups.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Expands the template in place with the lines of a quote XML. The template is ANSI text with its
// row between "<!-- QuoteRowStart -->" and "<!-- QuoteRowEnd -->", and behind that, if it groups,
// the header of a group between "<!-- QuoteGroupStart -->" and "<!-- QuoteGroupEnd -->". Failures
// are the caller's, and the file is as it was then: error 9 for a quote without lines, 62 for an
// empty file.
void ExpandQuoteTemplate(ControlContext& context, const String& path, const Object& xmlDoc);

// What line `line` (from 1) has in the attribute `field_name`, or where that is "", `tag`, both in
// lower case; "" for a line or value that is not there.
String GetQuoteRowValue(int16_t line, const Object& xmlDoc, const String& field_name,
                        const String& tag);

}  // namespace kestrelon
