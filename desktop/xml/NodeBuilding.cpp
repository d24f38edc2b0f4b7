#include "desktop/xml/NodeBuilding.h"

#include "desktop/xml/LibxmlText.h"
#include "desktop/xml/NodeMarkup.h"

namespace kestrelon::desktop {
namespace {

AutomationError CannotBeChild(const xmlNode& child, const xmlNode& parent) {
  return AutomationError(
      kInvalidProcedureCall,
      u"The node \"" + NodeName(child) + u"\" cannot be put into \"" + NodeName(parent) + u"\"");
}

std::string CheckedName(const String& name) {
  std::string utf8 = ToUtf8(name);
  if (xmlValidateQName(Chars(utf8), 0) != 0) {
    throw AutomationError(kInvalidProcedureCall,
                          u"\"" + name + u"\" is no name that a node can have");
  }
  return utf8;
}

// What an attribute declares that became a namespace declaration and stays for the objects that
// hold it; else nullptr.
xmlNsPtr DeclarationOf(const xmlNode& attribute) {
  return static_cast<xmlNsPtr>(attribute._private);
}

bool IsDeclaration(const xmlNode& attribute) {
  const std::string_view name = View(attribute.name);
  return name == "xmlns" || name.starts_with("xmlns:");
}

// Finds the namespace of a name that has none yet, as seen from `element`.
void BindName(xmlNodePtr node, xmlNodePtr element) {
  if (node->ns != nullptr) return;
  const std::string name(View(node->name));
  const size_t colon = name.find(':');
  const bool has_prefix = colon != std::string::npos;
  if (!has_prefix && node->type == XML_ATTRIBUTE_NODE) return;
  const std::string prefix = has_prefix ? name.substr(0, colon) : std::string();
  const xmlNsPtr found = xmlSearchNs(node->doc, element, has_prefix ? Chars(prefix) : nullptr);
  if (found == nullptr) return;
  if (has_prefix) xmlNodeSetName(node, Chars(name.substr(colon + 1)));
  node->ns = found;
}

void BindNamesInside(xmlNodePtr top) {
  for (xmlNodePtr node = top; node != nullptr; node = NextInside(top, node)) {
    if (node->type != XML_ELEMENT_NODE) continue;
    BindName(node, node);
    for (xmlAttrPtr attribute = node->properties; attribute; attribute = attribute->next) {
      BindName(reinterpret_cast<xmlNodePtr>(attribute), node);
    }
  }
}

bool HasDeclarationsInScope(const xmlNode* element) {
  for (; element != nullptr && element->type == XML_ELEMENT_NODE; element = element->parent) {
    if (element->nsDef != nullptr) return true;
  }
  return false;
}

void Declare(xmlNodePtr element, xmlNodePtr attribute) {
  const std::string_view name = View(attribute->name);
  const std::string prefix(name.substr(std::min(name.size(), sizeof "xmlns:" - 1)));
  const std::string uri = ToUtf8(AttributeValue(*attribute));
  const xmlNsPtr declaration =
      xmlNewNs(element, Chars(uri), prefix.empty() ? nullptr : Chars(prefix));
  if (declaration == nullptr) throw CannotBeChild(*attribute, *element);
  attribute->_private = declaration;
  BindNamesInside(element);
}

bool IsInside(const xmlNode* node, const xmlNode* top) {
  while (node != nullptr && node != top) node = node->parent;
  return node == top;
}

bool CanBeChild(const xmlNode& child, const xmlNode& parent) {
  const bool fits_document =
      child.type == XML_ELEMENT_NODE || child.type == XML_COMMENT_NODE || child.type == XML_PI_NODE;
  if (parent.type == XML_DOCUMENT_NODE) {
    const xmlNode* root = xmlDocGetRootElement(parent.doc);
    return fits_document && (child.type != XML_ELEMENT_NODE || root == nullptr || root == &child);
  }
  if (parent.type != XML_ELEMENT_NODE) return false;
  if (!fits_document && !IsCharacterData(child)) return false;
  // A node without children holds nothing, so the parent is not in it.
  return &child != &parent && (child.children == nullptr || !IsInside(&parent, &child));
}

// Makes `moved` the object of a node of `tree` that stands nowhere.
void TakeIn(const XmlTreePointer& tree, NodeMembers& moved) {
  const xmlNodePtr node = moved.node();
  if (node->parent != nullptr) moved.tree()->Detach(node);
  if (moved.tree() == tree) return;
  const xmlNodePtr copy = node->type == XML_ATTRIBUTE_NODE
                              ? reinterpret_cast<xmlNodePtr>(xmlNewDocProp(
                                    tree->document(), Chars(ToUtf8(NodeName(*node))), nullptr))
                              : xmlDocCopyNode(node, tree->document(), 1);
  moved.MoveTo(tree, tree->Adopt(copy));
  if (node->type == XML_ATTRIBUTE_NODE) SetAttributeValue(copy, ToUtf8(AttributeValue(*node)));
}

}  // namespace

xmlNodePtr NewElement(XmlTree& tree, const String& name) {
  return tree.Adopt(xmlNewDocNode(tree.document(), nullptr, Chars(CheckedName(name)), nullptr));
}

xmlNodePtr NewAttribute(XmlTree& tree, const String& name) {
  return tree.Adopt(reinterpret_cast<xmlNodePtr>(
      xmlNewDocProp(tree.document(), Chars(CheckedName(name)), nullptr)));
}

xmlNodePtr NewText(XmlTree& tree, const Value& text) {
  return tree.Adopt(xmlNewDocText(tree.document(), Chars(CheckedContent(text))));
}

void AppendNode(const XmlTreePointer& tree, xmlNodePtr parent, NodeMembers& child) {
  if (child.node()->type == XML_ATTRIBUTE_NODE) {
    AppendAttributeNode(tree, parent, child);
    return;
  }
  if (!CanBeChild(*child.node(), *parent)) throw CannotBeChild(*child.node(), *parent);
  const bool had_place = child.node()->parent != nullptr;
  TakeIn(tree, child);
  tree->Append(parent, child.node());
  if (child.node()->type != XML_ELEMENT_NODE) return;
  if (had_place) xmlReconciliateNs(tree->document(), child.node());
  if (HasDeclarationsInScope(parent)) BindNamesInside(child.node());
}

xmlNodePtr AppendAttributeNode(const XmlTreePointer& tree, xmlNodePtr element,
                               NodeMembers& attribute) {
  const bool fits =
      element->type == XML_ELEMENT_NODE && attribute.node()->type == XML_ATTRIBUTE_NODE;
  if (!fits) throw CannotBeChild(*attribute.node(), *element);
  TakeIn(tree, attribute);
  if (IsDeclaration(*attribute.node())) {
    Declare(element, attribute.node());
    return nullptr;
  }
  const xmlNodePtr replaced = tree->AppendAttribute(element, attribute.node());
  BindName(attribute.node(), element);
  return replaced;
}

void SetAttributeValue(xmlNodePtr attribute, const std::string& value) {
  xmlFreeNodeList(attribute->children);
  attribute->children = attribute->last = nullptr;
  if (!value.empty()) {
    const xmlNodePtr text = xmlNewDocText(attribute->doc, Chars(value));
    if (text == nullptr) throw AutomationError(kOutOfMemory);
    text->parent = attribute;
    attribute->children = attribute->last = text;
  }
  if (const xmlNsPtr declaration = DeclarationOf(*attribute)) {
    xmlFree(const_cast<xmlChar*>(declaration->href));
    declaration->href = xmlStrdup(Chars(value));
  }
}

}  // namespace kestrelon::desktop
