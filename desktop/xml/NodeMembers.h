// What every node answers, the document included, and the object of a plain node.
#pragma once

#include "desktop/server/ServerObject.h"
#include "desktop/xml/XmlTree.h"

namespace kestrelon::desktop {

// The object of a node of `tree`; Nothing for nullptr.
Object WrapNode(const XmlTreePointer& tree, xmlNodePtr node);

class NodeMembers : public DispatchObject {
 public:
  NodeMembers(XmlTreePointer tree, xmlNodePtr node) : tree_(std::move(tree)), node_(node) {}

  template <class Server>
  static MemberTable<Server> AddTo(MemberTable<Server> table) {
    return std::move(table)
        .Property(u"nodeName", &Server::GetNodeName)
        .Property(u"nodeType", &Server::GetNodeType)
        .Property(u"nodeValue", &Server::GetNodeValue, &Server::PutNodeValue)
        .Property(u"text", &Server::GetText, &Server::PutText)
        .Property(u"xml", &Server::GetXml)
        .Property(u"attributes", &Server::GetAttributes)
        .Property(u"childNodes", &Server::GetChildNodes)
        .Property(u"firstChild", &Server::GetFirstChild)
        .Property(u"lastChild", &Server::GetLastChild)
        .Property(u"nextSibling", &Server::GetNextSibling)
        .Property(u"previousSibling", &Server::GetPreviousSibling)
        .Property(u"parentNode", &Server::GetParentNode)
        .Method(u"hasChildNodes", &Server::HasChildNodes)
        .Method(u"appendChild", &Server::AppendChild, {u"newChild"})
        .Method(u"selectNodes", &Server::SelectNodes, {u"queryString"})
        .Method(u"selectSingleNode", &Server::SelectSingleNode, {u"queryString"})
        .Method(u"transformNode", &Server::TransformNode, {u"stylesheet"})
        .Method(u"transformNodeToObject", &Server::TransformNodeToObject,
                {u"stylesheet", u"outputObject"});
  }

  Value GetNodeName();
  Value GetNodeType();
  Value GetNodeValue();
  void PutNodeValue(const Value& value);
  Value GetText();
  void PutText(const Value& value);
  Value GetXml();
  Value GetAttributes();
  Value GetChildNodes();
  Value GetFirstChild();
  Value GetLastChild();
  Value GetNextSibling();
  Value GetPreviousSibling();
  Value GetParentNode();
  Value HasChildNodes(const MethodArguments& arguments);
  Value SelectNodes(const MethodArguments& arguments);
  Value SelectSingleNode(const MethodArguments& arguments);
  Value AppendChild(const MethodArguments& arguments);
  Value TransformNode(const MethodArguments& arguments);
  Value TransformNodeToObject(const MethodArguments& arguments);

  const XmlTreePointer& tree() const { return tree_; }
  xmlNodePtr node() const { return node_; }
  // From now on the object of another node.
  void MoveTo(XmlTreePointer tree, xmlNodePtr node) {
    tree_ = std::move(tree);
    node_ = node;
  }

 private:
  XmlTreePointer tree_;
  xmlNodePtr node_;
};

// The node that a caller hands over. Error 13 when it is none of this desktop's.
NodeMembers& NodeOf(const Value& value);

// A node of any type but a document. Members that only elements have are error 438 on the others.
class XmlNode final : public ServerObject<XmlNode, NodeMembers> {
 public:
  using ServerObject::ServerObject;
  static const MemberTable<XmlNode>& Members();
  String TypeName() const override;

 private:
  Value GetAttribute(const MethodArguments& arguments);
  Value SetAttribute(const MethodArguments& arguments);
  Value SetAttributeNode(const MethodArguments& arguments);
  void RequireElement() const;
};

}  // namespace kestrelon::desktop
