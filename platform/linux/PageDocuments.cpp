#include "platform/linux/PageDocuments.h"

#include "desktop/xml/XmlDocuments.h"

namespace kestrelon {

Object XmlPageDocumentFromText(StringView markup) {
  const Object document = desktop::CreateXmlDocument();
  if (document.Call(u"loadXML", markup).ToBoolean()) return document;
  const Object error = document.GetChild(u"parseError");
  throw AutomationError(kInvalidProcedureCall, u"The XML is not well-formed: line " +
                                                   error.Get(u"line").ToText() + u", column " +
                                                   error.Get(u"linepos").ToText() + u": " +
                                                   Trim(error.Get(u"reason").ToText()));
}

Object XmlPageDocumentFromBytes(std::string_view markup) {
  return desktop::ParseXmlDocument(markup);
}

Object HtmlPageDocument(std::string_view markup) { return desktop::ParseHtmlDocument(markup); }

String MarkupOf(const Object& document) {
  String markup;
  const auto is_no_xml = IgnoreFailures([&] { markup = document.Get(u"xml").ToText(); });
  if (!is_no_xml) return markup;
  return document.GetChild(u"documentElement").Get(u"outerHTML").ToText();
}

}  // namespace kestrelon
