// The documents that a page hands to the control, where there is no browser to make them.
#pragma once

#include <string_view>

#include "automation/DispatchObject.h"

namespace kestrelon {

// An XML DOM document, in the encoding that the markup declares (UTF-8 when it declares none).
// Error 5 with line and reason when it is malformed.
Object ParseXmlPageDocument(std::string_view markup);

// The HTML document of a page.
Object ParseHtmlPageDocument(std::string_view markup);

}  // namespace kestrelon
