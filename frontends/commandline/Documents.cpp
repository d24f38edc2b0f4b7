#include "frontends/commandline/Documents.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/linux/PageDocuments.h"

namespace kestrelon::commandline {
namespace {

Object Traced(const Object& document, const Parameter& parameter, const TraceSink& trace) {
  return trace ? TraceObject(document, ToUtf8(parameter.name), trace) : document;
}

}  // namespace

std::string ReadFile(const std::string& path) {
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (!file || std::filesystem::is_directory(path)) {
    const AutomationError error(errno == ENOENT ? kFileNotFound : kPermissionDenied);
    throw AutomationError(error.number(), error.description() + u": " + FromUtf8(path));
  }
  std::ostringstream content;
  content << file.rdbuf();
  return std::move(content).str();
}

Value DocumentFromText(const Parameter& parameter, const std::string& markup,
                       const TraceSink& trace) {
  return Traced(parameter.type == ParameterType::kXmlDocument
                    ? XmlPageDocumentFromText(FromUtf8(markup))
                    : HtmlPageDocument(markup),
                parameter, trace);
}

Value DocumentFromFile(const Parameter& parameter, const std::string& path,
                       const TraceSink& trace) {
  const std::string bytes = ReadFile(path);
  return Traced(parameter.type == ParameterType::kXmlDocument ? XmlPageDocumentFromBytes(bytes)
                                                              : HtmlPageDocument(bytes),
                parameter, trace);
}

}  // namespace kestrelon::commandline
