#include "desktop/xml/XPathSelector.h"

#include <libxml/xpathInternals.h>

#include "automation/AutomationError.h"
#include "desktop/xml/LibxmlText.h"
#include "desktop/xml/XmlParser.h"

namespace kestrelon::desktop {
namespace {

constexpr auto kUnspecifiedError = static_cast<int32_t>(0x80004005);

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
  compiled_.clear();
  context_.reset();
}

std::vector<xmlNodePtr> XPathSelector::Select(xmlNodePtr start, StringView expression) {
  xmlXPathContext& context = Context();
  std::string error;
  context.userData = &error;
  context.error = KeepFirstError;
  context.node = start;
  const xmlXPathCompExprPtr compiled = Compile(context, expression);
  std::unique_ptr<xmlXPathObject, FreeResult> result;
  if (compiled != nullptr) result.reset(xmlXPathCompiledEval(compiled, &context));
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

xmlXPathCompExprPtr XPathSelector::Compile(xmlXPathContext& context, StringView text) {
  constexpr size_t kMostKept = 16;
  const String key(text);
  const auto known = compiled_.find(key);
  if (known != compiled_.end()) return known->second.get();
  Expression expression(xmlXPathCtxtCompile(&context, Chars(ToUtf8(text))));
  if (!expression) return nullptr;
  if (compiled_.size() == kMostKept) compiled_.clear();
  return compiled_.emplace(key, std::move(expression)).first->second.get();
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
