#include "frontends/commandline/Documents.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/linux/PageDocuments.h"

namespace kestrelon::commandline {

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

Value ParseDocument(const Parameter& parameter, std::string_view markup, const TraceSink& trace) {
  const Object document = parameter.type == ParameterType::kXmlDocument
                              ? ParseXmlPageDocument(markup)
                              : ParseHtmlPageDocument(markup);
  return trace ? TraceObject(document, ToUtf8(parameter.name), trace) : document;
}

}  // namespace kestrelon::commandline
