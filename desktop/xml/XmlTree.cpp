#include "desktop/xml/XmlTree.h"

namespace kestrelon::desktop {

XmlTree::~XmlTree() {
  for (const xmlNodePtr node : detached_) {
    if (node->parent == nullptr) xmlFreeNode(node);
  }
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

void XmlTree::Detach(xmlNodePtr node) {
  children_.clear();
  xmlUnlinkNode(node);
  detached_.push_back(node);
}

void XmlTree::Append(xmlNodePtr parent, xmlNodePtr child) {
  children_.clear();
  xmlAddChild(parent, child);
}

}  // namespace kestrelon::desktop
