// One parsed document: owner of its nodes, with what makes walks and queries over them cheap. Every
// node object shares ownership of its tree.
#pragma once

#include <libxml/tree.h>

#include <memory>
#include <unordered_map>
#include <vector>

#include "automation/Text.h"
#include "desktop/xml/XPathSelector.h"

namespace kestrelon::desktop {

class XmlTree {
 public:
  // Takes ownership of `document`.
  explicit XmlTree(xmlDocPtr document) : document_(document) {}
  ~XmlTree();
  XmlTree(const XmlTree&) = delete;
  XmlTree& operator=(const XmlTree&) = delete;

  xmlDocPtr document() const { return document_; }
  xmlNodePtr node() const { return reinterpret_cast<xmlNodePtr>(document_); }

  // The children in their order, indexed on first use: a walk by index costs what a walk by
  // sibling does, whichever list object it goes through. Attributes show none. Valid until the next
  // change of the structure.
  const std::vector<xmlNodePtr>& ChildrenOf(xmlNodePtr parent);
  // Takes a node out of the document; it lives on for the objects that still hold it.
  void Detach(xmlNodePtr node);
  void Append(xmlNodePtr parent, xmlNodePtr child);

  XPathSelector& selector() { return selector_; }

 private:
  xmlDocPtr document_;
  std::unordered_map<const xmlNode*, std::vector<xmlNodePtr>> children_;
  std::vector<xmlNodePtr> detached_;
  XPathSelector selector_{document_};
};

using XmlTreePointer = std::shared_ptr<XmlTree>;

}  // namespace kestrelon::desktop
