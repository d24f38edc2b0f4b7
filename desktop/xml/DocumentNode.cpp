#include "desktop/xml/DocumentNode.h"

#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"
#include "desktop/xml/NodeBuilding.h"
#include "desktop/xml/NodeMarkup.h"
#include "desktop/xml/XmlDocuments.h"

namespace kestrelon::desktop {
namespace {

XmlTreePointer EmptyTree() {
  const xmlDocPtr document = xmlNewDoc(nullptr);
  if (document == nullptr) throw AutomationError(kOutOfMemory);
  MarkAsText(document);
  return std::make_shared<XmlTree>(document);
}

class ParseError final : public ServerObject<ParseError> {
 public:
  explicit ParseError(XmlParseError error) : error_(std::move(error)) {}
  static const MemberTable<ParseError>& Members() {
    static const MemberTable<ParseError> table =
        MemberTable<ParseError>(u"IXMLDOMParseError")
            .Property(u"errorCode", &ParseError::GetErrorCode)
            .Property(u"", &ParseError::GetErrorCode)
            .Property(u"reason", &ParseError::GetReason)
            .Property(u"line", &ParseError::GetLine)
            .Property(u"linepos", &ParseError::GetLinePosition);
    return table;
  }

 private:
  Value GetErrorCode() { return error_.code; }
  Value GetReason() { return error_.reason; }
  Value GetLine() { return error_.line; }
  Value GetLinePosition() { return error_.position; }

  XmlParseError error_;
};

}  // namespace

DocumentNode::DocumentNode(XmlTreePointer tree) : ServerObject(tree, tree->node()) {}

const MemberTable<DocumentNode>& DocumentNode::Members() {
  static const MemberTable<DocumentNode> table =
      AddTo(MemberTable<DocumentNode>(u"DOMDocument"))
          .Property(u"async", &DocumentNode::GetAsync, &DocumentNode::PutAsync)
          .Property(u"preserveWhiteSpace", &DocumentNode::GetPreserveWhiteSpace,
                    &DocumentNode::PutPreserveWhiteSpace)
          .Property(u"documentElement", &DocumentNode::GetDocumentElement)
          .Property(u"parseError", &DocumentNode::GetParseError)
          .Method(u"loadXML", &DocumentNode::LoadXml, {u"bstrXML"})
          .Method(u"load", &DocumentNode::Load, {u"xmlSource"})
          .Method(u"createElement", &DocumentNode::CreateElement, {u"tagName"})
          .Method(u"createAttribute", &DocumentNode::CreateAttribute, {u"name"})
          .Method(u"createTextNode", &DocumentNode::CreateTextNode, {u"data"})
          .Method(u"save", &DocumentNode::Save, {u"destination"})
          .Method(u"setProperty", &DocumentNode::SetProperty, {u"name", u"value"});
  return table;
}

void DocumentNode::PutPreserveWhiteSpace(const Value& value) {
  options_.preserve_white_space = value.ToBoolean();
}

Value DocumentNode::GetDocumentElement() {
  return WrapNode(tree(), xmlDocGetRootElement(tree()->document()));
}

Value DocumentNode::GetParseError() { return Object(std::make_shared<ParseError>(error_)); }

Value DocumentNode::LoadXml(const MethodArguments& arguments) {
  return Take(ParseXmlText(arguments.Require(0).ToText(), options_));
}

Value DocumentNode::Load(const MethodArguments& arguments) {
  const String path = arguments.Require(0).ToText();
  XmlParseResult result;
  try {
    result = ParseXmlBytes(ReadWholeFile(PathFromText(path)), options_);
  } catch (const AutomationError& error) {
    result.error = {error.number(), path + u": " + error.description(), 0, 0};
  }
  return Take(std::move(result));
}

// UTF-8, which the declaration, where there is one, leaves as it is.
Value DocumentNode::Save(const MethodArguments& arguments) {
  WriteFileAtomically(PathFromText(arguments.Require(0).ToText()), ToUtf8(NodeMarkup(*node())));
  return {};
}

Value DocumentNode::SetProperty(const MethodArguments& arguments) {
  const String name = arguments.Require(0).ToText();
  const String value = arguments.Require(1).ToText();
  if (name == u"SelectionNamespaces") {
    tree()->selector().SetNamespaces(ParseNamespaceBindings(value));
  } else if (name != u"SelectionLanguage") {
    throw AutomationError(kInvalidProcedureCall, u"\"" + name +
                                                     u"\" is no property of this document; it has "
                                                     u"SelectionLanguage and SelectionNamespaces");
  } else if (value != u"XPath") {
    throw AutomationError(kInvalidProcedureCall,
                          u"SelectionLanguage can be \"XPath\" only, not \"" + value + u"\"");
  }
  return {};
}

Value DocumentNode::CreateElement(const MethodArguments& arguments) {
  return WrapNode(tree(), NewElement(*tree(), arguments.Require(0).ToText()));
}

Value DocumentNode::CreateAttribute(const MethodArguments& arguments) {
  return WrapNode(tree(), NewAttribute(*tree(), arguments.Require(0).ToText()));
}

Value DocumentNode::CreateTextNode(const MethodArguments& arguments) {
  return WrapNode(tree(), NewText(*tree(), arguments.Require(0)));
}

bool DocumentNode::Take(XmlParseResult result) {
  Replace(std::move(result.document));
  error_ = std::move(result.error);
  return error_.code == 0;
}

void DocumentNode::Replace(XmlDocumentPointer document) {
  XmlTreePointer replacement =
      document ? std::make_shared<XmlTree>(document.release()) : EmptyTree();
  replacement->selector().SetNamespaces(tree()->selector().namespaces());
  const xmlNodePtr top = replacement->node();
  MoveTo(std::move(replacement), top);
  error_ = {};
}

Object WrapNode(const XmlTreePointer& tree, xmlNodePtr node) {
  if (node == nullptr) return nullptr;
  if (node->type == XML_DOCUMENT_NODE) return Object(std::make_shared<DocumentNode>(tree));
  return Object(std::make_shared<XmlNode>(tree, node));
}

Object CreateXmlDocument() { return Object(std::make_shared<DocumentNode>(EmptyTree())); }

Object ParseXmlDocument(std::string_view bytes) {
  XmlParseResult result = ParseXmlBytes(bytes, {});
  if (!result.document) {
    throw AutomationError(kInvalidProcedureCall,
                          u"The XML is not well-formed: line " +
                              FromUtf8(std::to_string(result.error.line)) + u", column " +
                              FromUtf8(std::to_string(result.error.position)) + u": " +
                              result.error.reason);
  }
  return Object(
      std::make_shared<DocumentNode>(std::make_shared<XmlTree>(result.document.release())));
}

}  // namespace kestrelon::desktop
