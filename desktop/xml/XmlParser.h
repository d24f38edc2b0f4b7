// Parsing under the limits of this desktop.
#pragma once

#include <libxml/tree.h>

#include <cstdint>
#include <memory>
#include <string_view>

#include "automation/Text.h"

namespace kestrelon::desktop {

// Why a text is no document. `code` is 0 for none; lines and positions count from 1.
struct XmlParseError {
  int32_t code = 0;
  String reason;
  int32_t line = 0;
  int32_t position = 0;
};

struct FreeXmlDocument {
  void operator()(xmlDocPtr document) const { xmlFreeDoc(document); }
};

using XmlDocumentPointer = std::unique_ptr<xmlDoc, FreeXmlDocument>;

struct XmlParseResult {
  XmlDocumentPointer document;  // null after an error
  XmlParseError error;
};

struct XmlParseOptions {
  bool preserve_white_space = false;
};

// Says that the document needs no character references in its markup.
void MarkAsText(xmlDocPtr document);

// Bytes in their declared encoding.
XmlParseResult ParseXmlBytes(std::string_view bytes, XmlParseOptions options);
// Text; an encoding that it declares means nothing.
XmlParseResult ParseXmlText(StringView text, XmlParseOptions options);

}  // namespace kestrelon::desktop
