#include "platform/linux/PageDocuments.h"

#include "desktop/xml/XmlDocument.h"

namespace kestrelon {

Object ParseXmlPageDocument(std::string_view markup) { return desktop::ParseXmlDocument(markup); }

Object ParseHtmlPageDocument(std::string_view markup) { return desktop::ParseHtmlDocument(markup); }

}  // namespace kestrelon
