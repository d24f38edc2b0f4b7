#include "tests/support/Documents.h"

#include "platform/windows/WindowsPlatform.h"

namespace kestrelon::testing {

Object EmptyXmlDocument() {
  return WindowsPlatform([] { return HWND(); }).CreateObject(u"Msxml2.DOMDocument", u"");
}

Object XmlDocumentOf(const std::string& markup) {
  Object document = EmptyXmlDocument();
  if (!document.Call(u"loadXML", FromUtf8(markup)).ToBoolean()) {
    throw AutomationError(kInvalidProcedureCall,
                          document.GetChild(u"parseError").Get(u"reason").ToText());
  }
  return document;
}

}  // namespace kestrelon::testing
