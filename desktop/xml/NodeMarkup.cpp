#include "desktop/xml/NodeMarkup.h"

#include <libxml/xmlsave.h>

#include <memory>

#include "automation/AutomationError.h"
#include "desktop/xml/LibxmlText.h"

namespace kestrelon::desktop {
namespace {

constexpr StringView kWhiteSpace = u" \t\r\n";

struct FreeBuffer {
  void operator()(xmlBufferPtr buffer) const { xmlBufferFree(buffer); }
};

void AppendMarkup(const xmlNode& node, std::string& out) {
  const std::unique_ptr<xmlBuffer, FreeBuffer> buffer(xmlBufferCreate());
  xmlBufferSetAllocationScheme(buffer.get(), XML_BUFFER_ALLOC_DOUBLEIT);
  const auto writable = const_cast<xmlNodePtr>(&node);  // libxml2 only reads it
  if (!buffer || xmlNodeDump(buffer.get(), node.doc, writable, 0, 0) < 0) {
    throw AutomationError(kOutOfMemory);
  }
  out += View(xmlBufferContent(buffer.get()));
}

String Trimmed(const String& text) {
  const size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == String::npos) return {};
  return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

std::string TextBelow(const xmlNode& top) {
  std::string text;
  const xmlNode* node = top.children;
  while (node != nullptr) {
    if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) {
      text += View(node->content);
    }
    if (node->type == XML_ELEMENT_NODE && node->children != nullptr) {
      node = node->children;
      continue;
    }
    while (node != &top && node->next == nullptr) node = node->parent;
    node = node == &top ? nullptr : node->next;
  }
  return text;
}

bool IsNamed(const xmlAttr& attribute, std::string_view name) {
  const std::string_view prefix =
      attribute.ns == nullptr ? std::string_view() : View(attribute.ns->prefix);
  if (prefix.empty()) return View(attribute.name) == name;
  return name.starts_with(prefix) && name.substr(prefix.size()).starts_with(':') &&
         name.substr(prefix.size() + 1) == View(attribute.name);
}

}  // namespace

String NodeName(const xmlNode& node) {
  switch (node.type) {
    case XML_TEXT_NODE:
      return u"#text";
    case XML_CDATA_SECTION_NODE:
      return u"#cdata-section";
    case XML_COMMENT_NODE:
      return u"#comment";
    case XML_DOCUMENT_NODE:
      return u"#document";
    case XML_ELEMENT_NODE:
    case XML_ATTRIBUTE_NODE:
      if (node.ns != nullptr && node.ns->prefix != nullptr) {
        return Text(node.ns->prefix) + u":" + Text(node.name);
      }
      return Text(node.name);
    default:
      return Text(node.name);
  }
}

bool IsCharacterData(const xmlNode& node) {
  return node.type == XML_TEXT_NODE || node.type == XML_CDATA_SECTION_NODE ||
         node.type == XML_COMMENT_NODE || node.type == XML_PI_NODE;
}

String AttributeValue(const xmlNode& attribute) {
  const xmlNode* content = attribute.children;
  if (content == nullptr) return {};
  if (content->next == nullptr && content->type == XML_TEXT_NODE) return Text(content->content);
  return Text(LibxmlString(xmlNodeListGetString(attribute.doc, attribute.children, 1)).get());
}

String NodeText(const xmlNode& node) {
  if (node.type == XML_ATTRIBUTE_NODE) return AttributeValue(node);
  if (IsCharacterData(node)) return Text(node.content);
  return Trimmed(FromUtf8(TextBelow(node)));
}

String NodeMarkup(const xmlNode& node) {
  std::string markup;
  if (node.type != XML_DOCUMENT_NODE) {
    AppendMarkup(node, markup);
    // libxml2 writes the blank that parts an attribute from the name before it.
    if (node.type == XML_ATTRIBUTE_NODE) markup.erase(0, markup.find_first_not_of(' '));
    return FromUtf8(markup);
  }
  for (const xmlNode* child = node.children; child != nullptr; child = child->next) {
    AppendMarkup(*child, markup);
    markup += "\r\n";
  }
  return FromUtf8(markup);
}

const xmlAttr* FindAttribute(const xmlNode& element, StringView name) {
  const std::string wanted = ToUtf8(name);
  for (const xmlAttr* attribute = element.properties; attribute; attribute = attribute->next) {
    if (IsNamed(*attribute, wanted)) return attribute;
  }
  return nullptr;
}

std::string CheckedContent(const Value& value) {
  const String text = value.ToText();
  for (const char16_t unit : text) {
    const bool is_allowed = unit >= 0x20 || unit == u'\t' || unit == u'\r' || unit == u'\n';
    if (!is_allowed || unit == 0xFFFE || unit == 0xFFFF) {
      throw AutomationError(kInvalidProcedureCall,
                            u"The text holds a character that XML cannot hold (code " +
                                FromUtf8(std::to_string(unit)) + u")");
    }
  }
  return ToUtf8(text);
}

}  // namespace kestrelon::desktop
