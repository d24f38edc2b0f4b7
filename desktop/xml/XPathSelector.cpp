#include "desktop/xml/XPathSelector.h"

#include <libxml/xpathInternals.h>

#include "automation/AutomationError.h"
#include "desktop/xml/LibxmlText.h"
#include "desktop/xml/PlainPath.h"
#include "desktop/xml/XmlParser.h"

namespace kestrelon::desktop {
namespace {

constexpr auto kUnspecifiedError = static_cast<int32_t>(0x80004005);

struct FreeExpression {
  void operator()(xmlXPathCompExprPtr expression) const { xmlXPathFreeCompExpr(expression); }
};
struct FreeResult {
  void operator()(xmlXPathObjectPtr result) const { xmlXPathFreeObject(result); }
};

void KeepFirstError(void* first_error, xmlErrorPtr error) {
  auto& text = *static_cast<std::string*>(first_error);
  if (!text.empty()) return;
  text = error->message == nullptr ? "error" : error->message;
  while (!text.empty() && text.back() == '\n') text.pop_back();
  if (error->domain == XML_FROM_XPATH) text += ", at character " + std::to_string(error->int1 + 1);
}

// libxml2 prints the name of an unknown function, which the caller's error says as well.
void PrintNothing(void*, const char*, ...) {}

AutomationError InvalidExpression(StringView expression, const std::string& reason) {
  return AutomationError(kUnspecifiedError, u"The XPath expression \"" + String(expression) +
                                                u"\" cannot be used: " + FromUtf8(reason));
}

}  // namespace

NamespaceBindings ParseNamespaceBindings(StringView text) {
  const XmlParseResult parsed = ParseXmlText(u"<namespaces " + String(text) + u"/>", {});
  const xmlNode* root = parsed.document ? xmlDocGetRootElement(parsed.document.get()) : nullptr;
  if (root == nullptr || root->properties != nullptr || root->children != nullptr) {
    throw AutomationError(kInvalidProcedureCall,
                          u"SelectionNamespaces takes declarations such as \"xmlns:a='urn:a'\", "
                          u"not \"" +
                              String(text) + u"\"");
  }
  NamespaceBindings bindings;
  for (const xmlNs* binding = root->nsDef; binding != nullptr; binding = binding->next) {
    // A default namespace means nothing to XPath.
    if (binding->prefix != nullptr)
      bindings.emplace_back(View(binding->prefix), View(binding->href));
  }
  return bindings;
}

void XPathSelector::SetNamespaces(NamespaceBindings namespaces) {
  namespaces_ = std::move(namespaces);
  context_.reset();
}

std::vector<xmlNodePtr> XPathSelector::Select(xmlNodePtr start, StringView expression,
                                              size_t limit) {
  const std::string text = ToUtf8(expression);
  if (const auto path = PlainPath::Parse(text)) return path->Select(document_, start, limit);
  return Evaluate(start, expression, text);
}

std::vector<xmlNodePtr> XPathSelector::Evaluate(xmlNodePtr start, StringView expression,
                                                const std::string& text) {
  xmlXPathContext& context = Context();
  std::string error;
  context.userData = &error;
  context.error = KeepFirstError;
  context.node = start;
  const std::unique_ptr<xmlXPathCompExpr, FreeExpression> compiled(
      xmlXPathCtxtCompile(&context, Chars(text)));
  std::unique_ptr<xmlXPathObject, FreeResult> result;
  if (compiled) result.reset(xmlXPathCompiledEval(compiled.get(), &context));
  if (!result) throw InvalidExpression(expression, error.empty() ? "it is no XPath" : error);
  if (result->type != XPATH_NODESET) {
    throw InvalidExpression(expression, "it gives a value, not nodes");
  }
  std::vector<xmlNodePtr> nodes;
  const xmlNodeSet* set = result->nodesetval;
  for (int i = 0; set != nullptr && i < set->nodeNr; ++i) {
    // Namespace nodes belong to the result, not to the document.
    if (set->nodeTab[i]->type != XML_NAMESPACE_DECL) nodes.push_back(set->nodeTab[i]);
  }
  return nodes;
}

xmlXPathContext& XPathSelector::Context() {
  if (!context_) {
    xmlSetGenericErrorFunc(nullptr, PrintNothing);
    context_.reset(xmlXPathNewContext(document_));
    if (!context_) throw AutomationError(kOutOfMemory);
    for (const auto& [prefix, uri] : namespaces_) {
      xmlXPathRegisterNs(context_.get(), Chars(prefix), Chars(uri));
    }
  }
  return *context_;
}

}  // namespace kestrelon::desktop
