// The documents that a page hands to the control, where there is no browser to make them.
#pragma once

#include <string_view>

#include "automation/DispatchObject.h"

namespace kestrelon {

// An XML DOM document of text that is at hand, or of the bytes of a file in the encoding that they
// declare. Error 5 with line, column and reason when it is malformed.
Object XmlPageDocumentFromText(StringView markup);
Object XmlPageDocumentFromBytes(std::string_view markup);

// The HTML document of a page.
Object HtmlPageDocument(std::string_view markup);

// The markup of a document made here as it stands now; error 438 for any other object.
String MarkupOf(const Object& document);

}  // namespace kestrelon
