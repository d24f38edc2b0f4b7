// The XML of one part as a tree over its bytes: an element that nothing changes is written back
// just as it was read.
//
// A node is a start tag, its children and an end tag, each a place in the bytes of the part or in
// the bytes added since. Elements whose inside is no one's business (run properties, text) are
// leaves: their content is bytes. Nodes are never freed, so an id stays good as long as the tree.
//
// Refused with error 5792: anything not well-formed, DOCTYPE, nesting deeper than 256, an encoding
// other than UTF-8 and UTF-16.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/word/xml/Names.h"

namespace kestrelon::desktop::word {

using NodeId = uint32_t;
constexpr NodeId kNoNode = 0;

struct XmlNode {
  NodeId parent = kNoNode;
  NodeId previous = kNoNode;
  NodeId next = kNoNode;
  NodeId first_child = kNoNode;
  NodeId last_child = kNoNode;
  uint32_t open = 0;  // start tag; all of a gap
  uint32_t open_length = 0;
  uint32_t close = 0;  // end tag; where an empty-element tag ends
  uint32_t close_length = 0;
  Name name = Name::kGap;
  bool changed = false;  // something inside is no longer as the bytes from open to close have it
};

class XmlTree {
 public:
  // `part` is named in errors.
  XmlTree(std::string source, std::string_view part);
  XmlTree(const XmlTree&) = delete;
  XmlTree& operator=(const XmlTree&) = delete;

  NodeId root() const { return root_; }
  Name name(NodeId node) const { return nodes_[node].name; }
  NodeId parent(NodeId node) const { return nodes_[node].parent; }
  NodeId first_child(NodeId node) const { return nodes_[node].first_child; }
  NodeId next(NodeId node) const { return nodes_[node].next; }
  // The first child of that name; kNoNode when there is none.
  NodeId Child(NodeId node, Name name) const;
  // The root is reached by way of parents.
  bool IsAttached(NodeId node) const;
  // How many elements are around it, itself included.
  size_t DepthOf(NodeId node) const;

  std::string_view OpenTag(NodeId node) const;
  // The bytes between the tags of a leaf.
  std::string_view LeafContent(NodeId node) const;
  // The prefix of the element's name with its colon; "" when it has none.
  std::string_view Prefix(NodeId node) const;
  // The URI of the namespace of the element.
  std::string NamespaceOf(NodeId node) const;
  // The first child element of that local name; kNoNode when there is none.
  NodeId ChildNamed(NodeId node, std::string_view local) const;
  // The value of the attribute with that local name, whatever its prefix.
  std::optional<std::string> Attribute(NodeId node, std::string_view local) const;
  // The start tag without the attributes of these local names.
  std::string OpenTagWithout(NodeId node, std::initializer_list<std::string_view> locals) const;

  // The element as bytes.
  void AppendTo(NodeId node, std::string& bytes) const;
  // The whole part.
  std::string Write() const;
  bool changed() const { return nodes_[0].changed; }

  // New nodes belong nowhere until they are inserted. `markup` is one whole element.
  NodeId NewLeaf(Name name, std::string_view markup);
  NodeId NewElement(Name name, std::string_view open_tag, std::string_view close_tag);
  NodeId CopyOf(NodeId node);
  // An element with the same start tag and nothing in it. The ids of rows and paragraphs, which are
  // theirs alone, are left out.
  NodeId NewEmptyLike(NodeId node);
  // The elements that `markup` consists of, as they may stand in `parent`: with the prefixes that
  // are declared there. Error 5792 when it is not well-formed, and as for a part.
  struct Fragment {
    std::vector<NodeId> elements;
    size_t height;  // how deep they nest
  };
  Fragment NewElements(NodeId parent, std::string_view markup);
  // A prefix with its colon for attributes of the element's namespace, which need one even where
  // elements do without; declared in the root where none is.
  std::string EnsurePrefix(NodeId node);
  // As the child of `parent` before `next`, last for kNoNode.
  void Insert(NodeId parent, NodeId next, NodeId node);
  void InsertAfter(NodeId sibling, NodeId node) {
    Insert(nodes_[sibling].parent, nodes_[sibling].next, node);
  }
  // Takes it out of its parent.
  void Remove(NodeId node);
  // Replaces a leaf's bytes by another whole element.
  void SetLeaf(NodeId node, std::string_view markup);

 private:
  friend class XmlReader;

  std::string_view Bytes(uint32_t offset, uint32_t length) const;
  uint32_t AddBytes(std::string_view bytes);
  void MarkChanged(NodeId node);
  void OpenUp(NodeId node);
  std::optional<std::string> DeclaredUri(NodeId node, std::string_view prefix) const;
  std::string DeclarationsAround(NodeId node) const;

  std::string source_;
  std::string added_;           // offsets from kAdded on
  size_t shared_ = 0;           // bytes that copies have in common with their originals
  std::vector<XmlNode> nodes_;  // nodes_[0] stands for the part
  NodeId root_ = kNoNode;
};

}  // namespace kestrelon::desktop::word
