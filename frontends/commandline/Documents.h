// The documents that a page would hand over, made from markup or files.
#pragma once

#include <string>

#include "Control/Interface.h"
#include "automation/TracingObject.h"

namespace kestrelon::commandline {

inline bool IsDocument(ParameterType type) {
  return type == ParameterType::kXmlDocument || type == ParameterType::kHtmlDocument;
}

// The content of a file. Error 53 or 70 with the path in the description.
std::string ReadFile(const std::string& path);

// A document for the parameter, traced under its name when there is a sink. Error 5 with line and
// reason when the markup is malformed.
Value DocumentFromText(const Parameter& parameter, const std::string& markup,
                       const TraceSink& trace);
// The same from a file, in the encoding that it declares; 53 or 70 when it cannot be read.
Value DocumentFromFile(const Parameter& parameter, const std::string& path, const TraceSink& trace);

}  // namespace kestrelon::commandline
