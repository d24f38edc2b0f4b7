#include "desktop/xml/NodeList.h"

#include "desktop/xml/NodeBuilding.h"
#include "desktop/xml/NodeMarkup.h"
#include "desktop/xml/NodeMembers.h"

namespace kestrelon::desktop {
namespace {

Object WrapAttribute(const XmlTreePointer& tree, const xmlAttr* attribute) {
  return WrapNode(tree, reinterpret_cast<xmlNodePtr>(const_cast<xmlAttr*>(attribute)));
}

}  // namespace

class NodeList::Walk final : public Enumerator {
 public:
  explicit Walk(std::shared_ptr<const NodeList> list) : list_(std::move(list)) {}
  std::optional<Value> Next() override {
    const Object node = list_->NodeAt(next_);
    if (!node) return std::nullopt;
    ++next_;
    return Value(node);
  }

 private:
  std::shared_ptr<const NodeList> list_;
  int64_t next_ = 0;
};

DispatchPointer NodeList::OfChildren(XmlTreePointer tree, xmlNodePtr parent) {
  auto list = std::make_shared<NodeList>(std::move(tree), std::vector<xmlNodePtr>());
  list->parent_ = parent;
  return list;
}

const MemberTable<NodeList>& NodeList::Members() {
  static const MemberTable<NodeList> table = MemberTable<NodeList>(u"IXMLDOMNodeList")
                                                 .Property(u"length", &NodeList::GetLength)
                                                 .Method(u"item", &NodeList::Item, {u"index"})
                                                 .Method(u"", &NodeList::Item, {u"index"})
                                                 .Method(u"nextNode", &NodeList::NextNode)
                                                 .Method(u"reset", &NodeList::Reset);
  return table;
}

std::unique_ptr<Enumerator> NodeList::Enumerate() {
  return std::make_unique<Walk>(shared_from_this());
}

const std::vector<xmlNodePtr>& NodeList::Nodes() const {
  return parent_ == nullptr ? selection_ : tree_->ChildrenOf(parent_);
}

Object NodeList::NodeAt(int64_t index) const {
  const std::vector<xmlNodePtr>& nodes = Nodes();
  if (index < 0 || index >= static_cast<int64_t>(nodes.size())) return nullptr;
  return WrapNode(tree_, nodes[static_cast<size_t>(index)]);
}

Value NodeList::GetLength() { return static_cast<int64_t>(Nodes().size()); }

Value NodeList::Item(const MethodArguments& arguments) {
  return NodeAt(arguments.Require(0).ToLong());
}

Value NodeList::NextNode(const MethodArguments&) {
  const Object node = NodeAt(next_);
  if (node) ++next_;
  return node;
}

Value NodeList::Reset(const MethodArguments&) {
  next_ = 0;
  return {};
}

const MemberTable<AttributeMap>& AttributeMap::Members() {
  static const MemberTable<AttributeMap> table =
      MemberTable<AttributeMap>(u"IXMLDOMNamedNodeMap")
          .Property(u"length", &AttributeMap::GetLength)
          .Method(u"item", &AttributeMap::Item, {u"index"})
          .Method(u"", &AttributeMap::Item, {u"index"})
          .Method(u"getNamedItem", &AttributeMap::GetNamedItem, {u"name"})
          .Method(u"setNamedItem", &AttributeMap::SetNamedItem, {u"newItem"});
  return table;
}

std::unique_ptr<Enumerator> AttributeMap::Enumerate() {
  std::vector<Value> attributes;
  for (const xmlAttr* attribute = element_->properties; attribute; attribute = attribute->next) {
    attributes.push_back(WrapAttribute(tree_, attribute));
  }
  return std::make_unique<VectorEnumerator>(std::move(attributes));
}

Value AttributeMap::GetLength() {
  int32_t length = 0;
  for (const xmlAttr* attribute = element_->properties; attribute; attribute = attribute->next) {
    ++length;
  }
  return length;
}

Value AttributeMap::Item(const MethodArguments& arguments) {
  int32_t index = arguments.Require(0).ToLong();
  const xmlAttr* attribute = index < 0 ? nullptr : element_->properties;
  while (attribute != nullptr && index-- > 0) attribute = attribute->next;
  return WrapAttribute(tree_, attribute);
}

Value AttributeMap::GetNamedItem(const MethodArguments& arguments) {
  return WrapAttribute(tree_, FindAttribute(*element_, arguments.Require(0).ToText()));
}

Value AttributeMap::SetNamedItem(const MethodArguments& arguments) {
  AppendAttributeNode(tree_, element_, NodeOf(arguments.Require(0)));
  return arguments[0];
}

}  // namespace kestrelon::desktop
