// XSLT 1.0. A stylesheet reaches nothing but its source: document(), includes, imports and the
// elements that write files are refused.
#pragma once

#include <libxslt/xsltInternals.h>

#include "desktop/xml/XmlParser.h"

namespace kestrelon::desktop {

class TransformationResult {
 public:
  struct FreeStylesheet {
    void operator()(xsltStylesheetPtr stylesheet) const { xsltFreeStylesheet(stylesheet); }
  };
  using Stylesheet = std::unique_ptr<xsltStylesheet, FreeStylesheet>;

  TransformationResult(Stylesheet stylesheet, XmlDocumentPointer document)
      : stylesheet_(std::move(stylesheet)), document_(std::move(document)) {}

  // Error 0x80004005 when it is no document: when it has not exactly one top element.
  XmlDocumentPointer ToDocument() &&;
  // As xsl:output wants it, in UTF-16 whatever encoding that names.
  String ToText() &&;

 private:
  Stylesheet stylesheet_;
  XmlDocumentPointer document_;
};

// Transforms a document, or another node as the document that it and its children would be. Either
// node may be an element. Error 0x80004005 with the reason when the stylesheet is none or fails.
TransformationResult Transform(xmlNodePtr source, xmlNodePtr stylesheet);

}  // namespace kestrelon::desktop
