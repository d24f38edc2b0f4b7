// HTML templates of quotes: a row for each line of a quote, and headers for its groups.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Expands the template in place with the lines of a quote XML. The template is ANSI text with its
// row between "<!-- QuoteRowStart -->" and "<!-- QuoteRowEnd -->", and behind that, if it groups,
// the header of a group between "<!-- QuoteGroupStart -->" and "<!-- QuoteGroupEnd -->". A group
// section without a tag is told in a message box and left as it is. Failures are the caller's, and
// the file is as it was then: error 62 for an empty file, 5 for a template without a row, for a
// group tag that does not end, and for values that ANSI cannot hold; 9 for a quote without lines, 6
// for more than 32,767; 91 for one without fields, 13 for a comment or text among them and 94 for a
// field without a name.
void ExpandQuoteTemplate(ControlContext& context, const String& path, const Object& xmlDoc);

// What line `line` (from 1) has in the attribute `field_name`, or where that is "", `tag`, both in
// lower case; "" for a line or value that is not there.
String GetQuoteRowValue(int16_t line, const Object& xmlDoc, const String& field_name,
                        const String& tag);

}  // namespace kestrelon
