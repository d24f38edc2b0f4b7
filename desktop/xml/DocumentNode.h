// The DOMDocument: a node, and what loads, saves and configures it.
#pragma once

#include "desktop/xml/NodeMembers.h"
#include "desktop/xml/XmlParser.h"

namespace kestrelon::desktop {

class DocumentNode final : public ServerObject<DocumentNode, NodeMembers> {
 public:
  // The document object of a tree.
  explicit DocumentNode(XmlTreePointer tree);

  static const MemberTable<DocumentNode>& Members();

  // Takes this content in the place of its own.
  void Replace(XmlDocumentPointer document);

 private:
  Value GetAsync() { return async_; }
  void PutAsync(const Value& value) { async_ = value.ToBoolean(); }
  Value GetPreserveWhiteSpace() { return options_.preserve_white_space; }
  void PutPreserveWhiteSpace(const Value& value);
  Value GetDocumentElement();
  Value GetParseError();
  Value LoadXml(const MethodArguments& arguments);
  Value Load(const MethodArguments& arguments);
  Value CreateElement(const MethodArguments& arguments);
  Value CreateAttribute(const MethodArguments& arguments);
  Value CreateTextNode(const MethodArguments& arguments);
  Value Save(const MethodArguments& arguments);
  Value SetProperty(const MethodArguments& arguments);

  // Takes the outcome of a parse; true when there is a document. After a failure it is empty.
  bool Take(XmlParseResult result);

  XmlParseError error_;
  XmlParseOptions options_;
  bool async_ = true;  // kept for callers that ask; loading always completes at once
};

}  // namespace kestrelon::desktop
