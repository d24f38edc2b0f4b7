#include "desktop/word/document/BoundData.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "automation/Text.h"
#include "desktop/word/xml/XmlText.h"

namespace kestrelon::desktop::word {
namespace {

struct FreeXml {
  void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
  void operator()(xmlXPathContext* context) const { xmlXPathFreeContext(context); }
  void operator()(xmlXPathObject* object) const { xmlXPathFreeObject(object); }
  void operator()(xmlChar* text) const { xmlFree(text); }
};
template <class T>
using XmlPointer = std::unique_ptr<T, FreeXml>;

// Stores without properties of their own, by the ids that Word gives them.
constexpr std::u16string_view kCoreProperties = u"{6C3C8BC8-F283-45AE-878A-BAB7291924A1}";
constexpr std::u16string_view kExtendedProperties = u"{6668398D-A668-4E3E-A5EB-62B293D839F1}";

struct Binding {
  std::string store;     // "{GUID}"
  std::string path;      // XPath
  std::string prefixes;  // "xmlns:a='uri' xmlns:b='uri'"
};

const xmlChar* Xml(const std::string& text) {
  return reinterpret_cast<const xmlChar*>(text.c_str());
}

XmlPointer<xmlDoc> Parse(std::string_view xml) {
  if (xml.find("<!DOCTYPE") != std::string_view::npos) return nullptr;
  return XmlPointer<xmlDoc>(
      xmlReadMemory(xml.data(), static_cast<int>(xml.size()), nullptr, nullptr,
                    XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
}

std::string StoreIdOf(Package& package, const std::string& item) {
  const std::string properties = package.RelatedPart(item, "/customXmlProps");
  if (properties.empty() || !package.HasPart(properties)) return {};
  const XmlPointer<xmlDoc> document = Parse(package.Content(properties));
  if (document == nullptr) return {};
  const XmlPointer<xmlChar> id(
      xmlGetProp(xmlDocGetRootElement(document.get()), reinterpret_cast<const xmlChar*>("itemID")));
  return id == nullptr ? std::string() : reinterpret_cast<const char*>(id.get());
}

// The part that a store id stands for; "" when there is none.
std::string FindStore(Package& package, const std::string& main_part, const std::string& id) {
  const String wanted = FromUtf8(id);
  if (EqualIgnoringCase(wanted, kCoreProperties)) {
    return package.RelatedPart("", "/core-properties");
  }
  if (EqualIgnoringCase(wanted, kExtendedProperties)) {
    return package.RelatedPart("", "/extended-properties");
  }
  for (const Relationship& relationship : package.Relationships(main_part)) {
    if (relationship.external || !relationship.type.ends_with("/customXml")) continue;
    const std::string& item = relationship.target;
    if (package.HasPart(item) && EqualIgnoringCase(FromUtf8(StoreIdOf(package, item)), wanted)) {
      return item;
    }
  }
  return {};
}

bool RegisterPrefixes(xmlXPathContext* context, const std::string& prefixes) {
  constexpr std::string_view kDeclaration = "xmlns:";
  for (size_t at = prefixes.find(kDeclaration); at != std::string::npos;
       at = prefixes.find(kDeclaration, at)) {
    const size_t name = at + kDeclaration.size();
    const size_t equals = prefixes.find('=', name);
    const size_t quote = prefixes.find_first_of("'\"", equals);
    if (equals == std::string::npos || quote == std::string::npos) return false;
    const size_t end = prefixes.find(prefixes[quote], quote + 1);
    if (end == std::string::npos) return false;
    const std::string prefix = prefixes.substr(name, equals - name);
    const std::string uri = prefixes.substr(quote + 1, end - quote - 1);
    if (xmlXPathRegisterNs(context, Xml(prefix), Xml(uri)) != 0) return false;
    at = end;
  }
  return true;
}

bool HasElements(const xmlNode* node) {
  for (const xmlNode* child = node->children; child != nullptr; child = child->next) {
    if (child->type == XML_ELEMENT_NODE) return true;
  }
  return false;
}

// False when the path leads to nothing that can hold plain text.
bool SetValue(xmlDoc* document, const Binding& binding, const std::string& value) {
  const XmlPointer<xmlXPathContext> context(xmlXPathNewContext(document));
  if (!RegisterPrefixes(context.get(), binding.prefixes)) return false;
  xmlSetStructuredErrorFunc(context.get(), [](void*, xmlErrorPtr) {});
  const XmlPointer<xmlXPathObject> found(xmlXPathEvalExpression(Xml(binding.path), context.get()));
  xmlSetStructuredErrorFunc(nullptr, nullptr);
  if (found == nullptr || xmlXPathNodeSetIsEmpty(found->nodesetval)) return false;
  xmlNode* const node = found->nodesetval->nodeTab[0];
  if (node->type == XML_ATTRIBUTE_NODE) {
    xmlSetNsProp(node->parent, node->ns, node->name, Xml(value));
    return true;
  }
  const bool is_text = node->type == XML_TEXT_NODE;
  if (!is_text && (node->type != XML_ELEMENT_NODE || HasElements(node))) return false;
  xmlNodeSetContent(node, nullptr);
  xmlNodeAddContent(node, Xml(value));
  return true;
}

bool StoreValue(Package& package, const std::string& main_part, const Binding& binding,
                const std::string& value) {
  const std::string store = FindStore(package, main_part, binding.store);
  if (store.empty() || !package.HasPart(store)) return false;
  const XmlPointer<xmlDoc> document = Parse(package.Content(store));
  if (document == nullptr || !SetValue(document.get(), binding, value)) return false;
  xmlChar* bytes = nullptr;
  int length = 0;
  xmlDocDumpMemoryEnc(document.get(), &bytes, &length, "UTF-8");
  if (bytes == nullptr) return false;
  const XmlPointer<xmlChar> owned(bytes);
  package.Replace(store,
                  std::string(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length)));
  return true;
}

// The text of a control as its value holds it: paragraphs and breaks are line ends.
void AppendText(const XmlTree& tree, NodeId node, String& text) {
  for (NodeId child = tree.first_child(node); child != kNoNode; child = tree.next(child)) {
    switch (tree.name(child)) {
      case Name::kText:
        DecodeXml(tree.LeafContent(child), text);
        break;
      case Name::kTab:
        text += u'\t';
        break;
      case Name::kBreak:
      case Name::kCarriageReturn:
        text += u'\n';
        break;
      case Name::kParagraph:
        if (!text.empty()) text += u'\n';
        AppendText(tree, child, text);
        break;
      case Name::kDeleted:
      case Name::kMovedFrom:
      case Name::kFallback:
      case Name::kRunProperties:
      case Name::kParagraphProperties:
        break;
      default:
        AppendText(tree, child, text);
    }
  }
}

}  // namespace

void UpdateBoundData(Package& package, const std::string& main_part, DocumentPart& part) {
  XmlTree& tree = part.tree;
  for (const NodeId control : part.touched_controls) {
    const NodeId properties = tree.Child(control, Name::kControlProperties);
    const NodeId content = tree.Child(control, Name::kControlContent);
    if (!tree.IsAttached(control) || properties == kNoNode || content == kNoNode) continue;
    // What a rich control is bound to is a document of its own.
    const NodeId rich = tree.Child(properties, Name::kRichDataBinding);
    if (rich != kNoNode) tree.Remove(rich);
    const NodeId bound = tree.Child(properties, Name::kDataBinding);
    if (bound == kNoNode) continue;
    const Binding binding = {tree.Attribute(bound, "storeItemID").value_or(""),
                             tree.Attribute(bound, "xpath").value_or(""),
                             tree.Attribute(bound, "prefixMappings").value_or("")};
    String text;
    AppendText(tree, content, text);
    const bool is_rich = tree.Child(properties, Name::kRichText) != kNoNode;
    const bool stored = !is_rich && StoreValue(package, main_part, binding, ToUtf8(text));
    if (!stored) tree.Remove(bound);
  }
  part.touched_controls.clear();
}

}  // namespace kestrelon::desktop::word
