#include "desktop/xml/XmlTree.h"

#include "automation/AutomationError.h"
#include "desktop/xml/NodeMarkup.h"

namespace kestrelon::desktop {

xmlNodePtr NextInside(xmlNodePtr top, xmlNodePtr node) {
  if (node->type == XML_ELEMENT_NODE && node->children != nullptr) return node->children;
  while (node != top && node->next == nullptr) node = node->parent;
  return node == top ? nullptr : node->next;
}

XmlTree::~XmlTree() {
  for (const xmlNodePtr node : detached_) xmlFreeNode(node);
  xmlFreeDoc(document_);
}

const std::vector<xmlNodePtr>& XmlTree::ChildrenOf(xmlNodePtr parent) {
  const auto [entry, is_new] = children_.try_emplace(parent);
  if (is_new && parent->type != XML_ATTRIBUTE_NODE) {
    for (xmlNodePtr child = parent->children; child != nullptr; child = child->next) {
      entry->second.push_back(child);
    }
  }
  return entry->second;
}

xmlNodePtr XmlTree::Adopt(xmlNodePtr node) {
  if (node == nullptr) throw AutomationError(kOutOfMemory);
  detached_.insert(node);
  return node;
}

void XmlTree::Detach(xmlNodePtr node) {
  children_.erase(node->parent);
  xmlUnlinkNode(node);
  detached_.insert(node);
  // A transformation numbers the elements in document order; the numbers end with the place.
  for (xmlNodePtr inside = node; inside != nullptr; inside = NextInside(node, inside)) {
    if (inside->type == XML_ELEMENT_NODE) inside->content = nullptr;
  }
}

// Linked by hand: xmlAddChild would join a text to the text before it, and free the node that an
// object still holds.
void XmlTree::Append(xmlNodePtr parent, xmlNodePtr child) {
  detached_.erase(child);
  child->parent = parent;
  child->prev = parent->last;
  child->next = nullptr;
  (parent->last == nullptr ? parent->children : parent->last->next) = child;
  parent->last = child;
  const auto indexed = children_.find(parent);
  if (indexed != children_.end()) indexed->second.push_back(child);
}

xmlNodePtr XmlTree::AppendAttribute(xmlNodePtr element, xmlNodePtr attribute) {
  const auto replaced = reinterpret_cast<xmlNodePtr>(
      const_cast<xmlAttr*>(FindAttribute(*element, NodeName(*attribute))));
  if (replaced != nullptr) Detach(replaced);
  detached_.erase(attribute);
  xmlAddChild(element, attribute);
  return replaced;
}

}  // namespace kestrelon::desktop
