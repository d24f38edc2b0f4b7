// The documents that pages hand over, from the desktop that the tests run on.
#pragma once

#include <string>

#include "automation/DispatchObject.h"

namespace kestrelon::testing {

// Two fields of the example template, one of them blank.
inline constexpr const char* kSmallLetterXml =
    "<Data><field name='n' templatetag='firstname'/><field name='b' templatetag='lastname'/>"
    "<Data><r fieldname='n' value='Ann'/><r fieldname='b' value=''/></Data></Data>";

Object EmptyXmlDocument();

// The document of UTF-8 markup. Error 5 when it is not well-formed.
Object XmlDocumentOf(const std::string& markup);

}  // namespace kestrelon::testing
