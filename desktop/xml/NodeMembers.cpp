#include "desktop/xml/NodeMembers.h"

#include "desktop/xml/DocumentNode.h"
#include "desktop/xml/LibxmlText.h"
#include "desktop/xml/NodeBuilding.h"
#include "desktop/xml/NodeList.h"
#include "desktop/xml/NodeMarkup.h"
#include "desktop/xml/Transformation.h"

namespace kestrelon::desktop {

NodeMembers& NodeOf(const Value& value) {
  DispatchPointer pointer = value.ToObject().pointer();
  while (pointer != nullptr && pointer->Wrapped() != nullptr) pointer = pointer->Wrapped();
  // The caller's own reference keeps the node object.
  const auto node = dynamic_cast<NodeMembers*>(pointer.get());
  if (node == nullptr) throw AutomationError(kTypeMismatch);
  return *node;
}

Value NodeMembers::GetNodeName() { return NodeName(*node_); }

// libxml2 numbers the types as the DOM does; only documents have two kinds there.
Value NodeMembers::GetNodeType() { return static_cast<int32_t>(node_->type); }

Value NodeMembers::GetNodeValue() {
  if (node_->type == XML_ATTRIBUTE_NODE) return AttributeValue(*node_);
  if (!IsCharacterData(*node_)) return Value::Null{};
  return Text(node_->content);
}

void NodeMembers::PutNodeValue(const Value& value) {
  const std::string text = CheckedContent(value);
  if (node_->type == XML_ATTRIBUTE_NODE) {
    SetAttributeValue(node_, text);
  } else if (IsCharacterData(*node_)) {
    xmlNodeSetContent(node_, Chars(text));
  } else {
    throw AutomationError(kInvalidProcedureCall, u"A node of this type has no value to set");
  }
}

Value NodeMembers::GetText() { return NodeText(*node_); }

void NodeMembers::PutText(const Value& value) {
  if (node_->type != XML_ELEMENT_NODE) return PutNodeValue(value);
  const std::string text = CheckedContent(value);
  while (node_->children != nullptr) tree_->Detach(node_->children);
  if (text.empty()) return;
  tree_->Append(node_, tree_->Adopt(xmlNewDocText(tree_->document(), Chars(text))));
}

Value NodeMembers::GetXml() { return NodeMarkup(*node_); }

Value NodeMembers::GetAttributes() {
  if (node_->type != XML_ELEMENT_NODE) return Object();
  return Object(std::make_shared<AttributeMap>(tree_, node_));
}

Value NodeMembers::GetChildNodes() { return Object(NodeList::OfChildren(tree_, node_)); }

Value NodeMembers::GetFirstChild() {
  return WrapNode(tree_, node_->type == XML_ATTRIBUTE_NODE ? nullptr : node_->children);
}

Value NodeMembers::GetLastChild() {
  return WrapNode(tree_, node_->type == XML_ATTRIBUTE_NODE ? nullptr : node_->last);
}

Value NodeMembers::GetNextSibling() {
  return WrapNode(tree_, node_->type == XML_ATTRIBUTE_NODE ? nullptr : node_->next);
}

Value NodeMembers::GetPreviousSibling() {
  return WrapNode(tree_, node_->type == XML_ATTRIBUTE_NODE ? nullptr : node_->prev);
}

// An attribute belongs to its element but has no parent.
Value NodeMembers::GetParentNode() {
  return WrapNode(tree_, node_->type == XML_ATTRIBUTE_NODE ? nullptr : node_->parent);
}

Value NodeMembers::HasChildNodes(const MethodArguments&) {
  return node_->type != XML_ATTRIBUTE_NODE && node_->children != nullptr;
}

Value NodeMembers::SelectNodes(const MethodArguments& arguments) {
  return Object(std::make_shared<NodeList>(
      tree_, tree_->selector().Select(node_, arguments.Require(0).ToText())));
}

Value NodeMembers::SelectSingleNode(const MethodArguments& arguments) {
  const auto nodes = tree_->selector().Select(node_, arguments.Require(0).ToText(), 1);
  return WrapNode(tree_, nodes.empty() ? nullptr : nodes.front());
}

Value NodeMembers::AppendChild(const MethodArguments& arguments) {
  NodeMembers& child = NodeOf(arguments.Require(0));
  AppendNode(tree_, node_, child);
  return arguments[0];
}

Value NodeMembers::TransformNode(const MethodArguments& arguments) {
  return Transform(node_, NodeOf(arguments.Require(0)).node_).ToText();
}

Value NodeMembers::TransformNodeToObject(const MethodArguments& arguments) {
  const auto output = dynamic_cast<DocumentNode*>(&NodeOf(arguments.Require(1)));
  if (output == nullptr) throw AutomationError(kTypeMismatch);
  output->Replace(Transform(node_, NodeOf(arguments.Require(0)).node_).ToDocument());
  return {};
}

const MemberTable<XmlNode>& XmlNode::Members() {
  static const MemberTable<XmlNode> table =
      AddTo(MemberTable<XmlNode>(u"IXMLDOMNode"))
          .Method(u"getAttribute", &XmlNode::GetAttribute, {u"name"})
          .Method(u"setAttribute", &XmlNode::SetAttribute, {u"name", u"value"})
          .Method(u"setAttributeNode", &XmlNode::SetAttributeNode, {u"DOMAttribute"});
  return table;
}

String XmlNode::TypeName() const {
  switch (node()->type) {
    case XML_ELEMENT_NODE:
      return u"IXMLDOMElement";
    case XML_ATTRIBUTE_NODE:
      return u"IXMLDOMAttribute";
    case XML_TEXT_NODE:
      return u"IXMLDOMText";
    case XML_CDATA_SECTION_NODE:
      return u"IXMLDOMCDATASection";
    case XML_COMMENT_NODE:
      return u"IXMLDOMComment";
    case XML_PI_NODE:
      return u"IXMLDOMProcessingInstruction";
    default:
      return u"IXMLDOMNode";
  }
}

Value XmlNode::GetAttribute(const MethodArguments& arguments) {
  RequireElement();
  const xmlAttr* attribute = FindAttribute(*node(), arguments.Require(0).ToText());
  if (attribute == nullptr) return Value::Null{};
  return AttributeValue(*reinterpret_cast<const xmlNode*>(attribute));
}

Value XmlNode::SetAttribute(const MethodArguments& arguments) {
  RequireElement();
  const String name = arguments.Require(0).ToText();
  const std::string value = CheckedContent(arguments.Require(1));
  if (const xmlAttr* attribute = FindAttribute(*node(), name)) {
    xmlSetNsProp(node(), attribute->ns, attribute->name, Chars(value));
    return {};
  }
  const std::string qualified = ToUtf8(name);
  const size_t colon = qualified.find(':');
  if (xmlValidateQName(Chars(qualified), 0) != 0 || qualified == "xmlns" ||
      qualified.starts_with("xmlns:")) {
    throw AutomationError(kInvalidProcedureCall,
                          u"\"" + name + u"\" is no name that an attribute can be given");
  }
  if (colon == std::string::npos) {
    xmlSetProp(node(), Chars(qualified), Chars(value));
    return {};
  }
  const xmlNsPtr binding = xmlSearchNs(node()->doc, node(), Chars(qualified.substr(0, colon)));
  if (binding == nullptr) {
    throw AutomationError(kInvalidProcedureCall,
                          u"The namespace prefix of \"" + name + u"\" is not declared");
  }
  xmlSetNsProp(node(), binding, Chars(qualified.substr(colon + 1)), Chars(value));
  return {};
}

Value XmlNode::SetAttributeNode(const MethodArguments& arguments) {
  RequireElement();
  return WrapNode(tree(), AppendAttributeNode(tree(), node(), NodeOf(arguments.Require(0))));
}

void XmlNode::RequireElement() const {
  if (node()->type != XML_ELEMENT_NODE) throw AutomationError(kMemberNotFound);
}

}  // namespace kestrelon::desktop
