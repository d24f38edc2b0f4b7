// One parsed document: owner of its nodes, with what makes walks and queries over them cheap. Every
// node object shares ownership of its tree.
#pragma once

#include <libxml/tree.h>

#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "automation/Text.h"
#include "desktop/xml/XPathSelector.h"

namespace kestrelon::desktop {

// The node after `node` among `top` and all inside it, in document order; nullptr at the end.
xmlNodePtr NextInside(xmlNodePtr top, xmlNodePtr node);

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
  // Takes over a new node of this document that stands nowhere yet; error 7 for nullptr.
  xmlNodePtr Adopt(xmlNodePtr node);
  // Takes a node out of the document; it lives on for the objects that still hold it.
  void Detach(xmlNodePtr node);
  // Puts a node that stands nowhere behind the last child of `parent`.
  void Append(xmlNodePtr parent, xmlNodePtr child);
  // Gives an attribute that stands nowhere to `element`; returns the one of that name that it
  // replaces, or nullptr.
  xmlNodePtr AppendAttribute(xmlNodePtr element, xmlNodePtr attribute);

  XPathSelector& selector() { return selector_; }

 private:
  xmlDocPtr document_;
  std::unordered_map<const xmlNode*, std::vector<xmlNodePtr>> children_;
  std::unordered_set<xmlNodePtr> detached_;  // without a parent; freed with the tree
  XPathSelector selector_{document_};
};

using XmlTreePointer = std::shared_ptr<XmlTree>;

}  // namespace kestrelon::desktop
