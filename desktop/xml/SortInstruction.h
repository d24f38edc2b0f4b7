// xsl:sort: text in the order of its language, numbers by value, ties as they stood.
#pragma once

#include <libxslt/xsltInternals.h>

namespace kestrelon::desktop {

// From now on the transformation sorts so. Text without a `lang` follows the user's language;
// without a `case-order`, lower case goes first where texts differ in nothing else.
void SortByLanguage(xsltTransformContextPtr context);

}  // namespace kestrelon::desktop
