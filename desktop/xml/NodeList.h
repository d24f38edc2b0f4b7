// Collections of nodes: children (live), the result of a query, attributes.
#pragma once

#include "desktop/server/ServerObject.h"
#include "desktop/xml/XmlTree.h"

namespace kestrelon::desktop {

// Counts from 0; an index out of range gives Nothing.
class NodeList final : public ServerObject<NodeList> {
 public:
  // The result of a query, fixed.
  NodeList(XmlTreePointer tree, std::vector<xmlNodePtr> selection)
      : tree_(std::move(tree)), selection_(std::move(selection)) {}
  // The children of `parent` as they are at each call.
  static DispatchPointer OfChildren(XmlTreePointer tree, xmlNodePtr parent);

  static const MemberTable<NodeList>& Members();
  std::unique_ptr<Enumerator> Enumerate() override;

 private:
  class Walk;

  const std::vector<xmlNodePtr>& Nodes() const;
  Object NodeAt(int64_t index) const;
  Value GetLength();
  Value Item(const MethodArguments& arguments);
  Value NextNode(const MethodArguments& arguments);
  Value Reset(const MethodArguments& arguments);

  XmlTreePointer tree_;
  xmlNodePtr parent_ = nullptr;  // of a list of children
  std::vector<xmlNodePtr> selection_;
  int64_t next_ = 0;
};

// The attributes of an element, live; namespace declarations are not among them.
class AttributeMap final : public ServerObject<AttributeMap> {
 public:
  AttributeMap(XmlTreePointer tree, xmlNodePtr element)
      : tree_(std::move(tree)), element_(element) {}

  static const MemberTable<AttributeMap>& Members();
  std::unique_ptr<Enumerator> Enumerate() override;

 private:
  Value GetLength();
  Value Item(const MethodArguments& arguments);
  Value GetNamedItem(const MethodArguments& arguments);
  Value SetNamedItem(const MethodArguments& arguments);

  XmlTreePointer tree_;
  xmlNodePtr element_;
};

}  // namespace kestrelon::desktop
