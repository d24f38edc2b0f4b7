// New nodes, and their places in a tree.
//
// A name's prefix finds its namespace when the node comes under an element that declares it, and
// an attribute "xmlns" or "xmlns:p" becomes such a declaration: so a tree that was built is the one
// that its markup would be read as.
#pragma once

#include "desktop/xml/NodeMembers.h"

namespace kestrelon::desktop {

// Nodes that stand nowhere yet. Error 5 for what is no name, or for a character that XML cannot
// hold.
xmlNodePtr NewElement(XmlTree& tree, const String& name);
xmlNodePtr NewAttribute(XmlTree& tree, const String& name);
xmlNodePtr NewText(XmlTree& tree, const Value& text);

// Moves a node to the end of `parent`; an attribute is given to it. From another document, the
// object gets a copy, and objects of nodes inside keep the original.
// Error 5 where such a node cannot be a child.
void AppendNode(const XmlTreePointer& tree, xmlNodePtr parent, NodeMembers& child);
// Gives an attribute to an element; the attribute that it replaces, or nullptr.
xmlNodePtr AppendAttributeNode(const XmlTreePointer& tree, xmlNodePtr element,
                               NodeMembers& attribute);

// Sets the value of an attribute, wherever it stands.
void SetAttributeValue(xmlNodePtr attribute, const std::string& value);

}  // namespace kestrelon::desktop
