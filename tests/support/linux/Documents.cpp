#include "tests/support/Documents.h"

#include "desktop/xml/XmlDocuments.h"

namespace kestrelon::testing {

Object EmptyXmlDocument() { return desktop::CreateXmlDocument(); }

Object XmlDocumentOf(const std::string& markup) { return desktop::ParseXmlDocument(markup); }

}  // namespace kestrelon::testing
