#include "desktop/xml/XmlParser.h"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <string>

#include "automation/AutomationError.h"
#include "desktop/xml/LibxmlText.h"

namespace kestrelon::desktop {
namespace {

// Longer input is refused: libxml2 counts it in int.
constexpr size_t kLargestInput = size_t{1} << 30;

struct FreeContext {
  void operator()(xmlParserCtxtPtr context) const { xmlFreeParserCtxt(context); }
};

void KeepFirstError(void* user_data, xmlErrorPtr error) {
  const auto context = static_cast<xmlParserCtxtPtr>(user_data);
  auto& kept = *static_cast<XmlParseError*>(context->_private);
  if (kept.code != 0 || error->level < XML_ERR_ERROR) return;
  kept.code = error->code;
  kept.line = error->line;
  kept.position = error->int2;
  std::string_view reason = error->message == nullptr ? "malformed" : error->message;
  while (reason.ends_with('\n')) reason.remove_suffix(1);
  kept.reason = FromUtf8(reason);
}

void RefuseDoctype(void* user_data, const xmlChar*, const xmlChar*, const xmlChar*) {
  const auto context = static_cast<xmlParserCtxtPtr>(user_data);
  auto& kept = *static_cast<XmlParseError*>(context->_private);
  if (kept.code == 0) {
    kept = {XML_DTD_NO_DTD, u"A DOCTYPE is not allowed", context->input->line, context->input->col};
  }
  xmlStopParser(context);
}

bool IsWhiteSpace(const xmlChar* text) {
  return View(text).find_first_not_of(" \t\r\n") == std::string_view::npos;
}

// The node after `node` in document order; with `skip_children`, after everything inside it.
xmlNodePtr NextInDocument(xmlNodePtr node, bool skip_children) {
  if (!skip_children && node->children != nullptr) return node->children;
  while (node != nullptr && node->next == nullptr) {
    node = node->parent;
    if (node == nullptr || node->type == XML_DOCUMENT_NODE) return nullptr;
  }
  return node == nullptr ? nullptr : node->next;
}

bool PreservesWhiteSpace(xmlNodePtr element) {
  // xsl:text is there for its white space.
  if (element->ns != nullptr && View(element->name) == "text" &&
      View(element->ns->href) == "http://www.w3.org/1999/XSL/Transform") {
    return true;
  }
  // Otherwise an xml:space attribute asks for it; most documents have none, and then this is cheap.
  for (const xmlAttr* attribute = element->properties; attribute; attribute = attribute->next) {
    if (attribute->ns != nullptr && View(attribute->name) == "space" &&
        View(attribute->ns->prefix) == "xml" && attribute->children != nullptr) {
      return View(attribute->children->content) == "preserve";
    }
  }
  return false;
}

void DropWhiteSpace(xmlDocPtr document) {
  xmlNodePtr node = document->children;
  while (node != nullptr) {
    const bool preserved = node->type == XML_ELEMENT_NODE && PreservesWhiteSpace(node);
    const bool has_no_children = node->type != XML_ELEMENT_NODE;
    const xmlNodePtr next = NextInDocument(node, preserved || has_no_children);
    if (node->type == XML_TEXT_NODE && IsWhiteSpace(node->content)) {
      xmlUnlinkNode(node);
      xmlFreeNode(node);
    }
    node = next;
  }
}

// The DOM has the XML declaration as its first node; the encoding goes, as text has none.
void AddDeclaration(xmlDocPtr document) {
  constexpr int kNoDeclaration = -1;  // -2 is a declaration that says nothing of it
  if (document->standalone == kNoDeclaration) return;
  std::string content = "version=\"" + std::string(View(document->version)) + "\"";
  if (document->standalone >= 0) {
    content += document->standalone == 1 ? " standalone=\"yes\"" : " standalone=\"no\"";
  }
  const xmlNodePtr declaration =
      xmlNewDocPI(document, reinterpret_cast<const xmlChar*>("xml"), Chars(content));
  xmlAddPrevSibling(document->children, declaration);
}

XmlParseResult Refused(xmlParserErrors code, String reason, int32_t position = 1) {
  XmlParseResult result;
  result.error = {code, std::move(reason), 1, position};
  return result;
}

// In any other encoding a NUL byte is a NUL character, at which libxml2 would stop without a word.
bool IsWide(std::string_view bytes) {
  return bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE") ||
         bytes.starts_with(std::string_view("<\0", 2)) ||
         bytes.starts_with(std::string_view("\0", 1));
}

XmlParseResult Parse(std::string_view bytes, const char* encoding, int encoding_options,
                     XmlParseOptions options) {
  if (bytes.size() > kLargestInput) {
    return Refused(XML_ERR_NO_MEMORY, u"The document is larger than 1 GiB");
  }
  const size_t null = IsWide(bytes) ? std::string_view::npos : bytes.find('\0');
  if (null != std::string_view::npos) {
    return Refused(XML_ERR_INVALID_CHAR, u"The text holds a NUL character",
                   static_cast<int32_t>(null) + 1);
  }
  XmlParseResult result;
  const std::unique_ptr<xmlParserCtxt, FreeContext> context(xmlNewParserCtxt());
  if (!context) throw AutomationError(kOutOfMemory);
  context->_private = &result.error;
  context->sax->serror = KeepFirstError;
  context->sax->internalSubset = RefuseDoctype;
  result.document.reset(xmlCtxtReadMemory(
      context.get(), bytes.data(), static_cast<int>(bytes.size()), nullptr, encoding,
      XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | encoding_options));
  if (!result.document && result.error.code == 0) {
    return Refused(XML_ERR_DOCUMENT_EMPTY, u"The document is empty");
  }
  if (result.error.code != 0) {
    result.document.reset();
    return result;
  }
  if (!options.preserve_white_space) DropWhiteSpace(result.document.get());
  AddDeclaration(result.document.get());
  return result;
}

}  // namespace

void MarkAsText(xmlDocPtr document) {
  xmlFree(const_cast<xmlChar*>(document->encoding));
  document->encoding = xmlStrdup(reinterpret_cast<const xmlChar*>("UTF-8"));
}

XmlParseResult ParseXmlBytes(std::string_view bytes, XmlParseOptions options) {
  return Parse(bytes, nullptr, 0, options);
}

XmlParseResult ParseXmlText(StringView text, XmlParseOptions options) {
  if (text.starts_with(u'\xFEFF')) text.remove_prefix(1);
  return Parse(ToUtf8(text), "UTF-8", XML_PARSE_IGNORE_ENC, options);
}

}  // namespace kestrelon::desktop
