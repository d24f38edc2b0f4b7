// Queries over one document.
#pragma once

#include <libxml/xpath.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "automation/Text.h"

namespace kestrelon::desktop {

// Prefix and namespace, UTF-8.
using NamespaceBindings = std::vector<std::pair<std::string, std::string>>;

// The bindings of "xmlns:a='urn:a' xmlns:b='urn:b'". Error 5 when the text is anything else.
NamespaceBindings ParseNamespaceBindings(StringView text);

class XPathSelector {
 public:
  explicit XPathSelector(xmlDocPtr document) : document_(document) {}

  const NamespaceBindings& namespaces() const { return namespaces_; }
  void SetNamespaces(NamespaceBindings namespaces);
  // The nodes that `expression`, read from `start`, selects, in document order. Error 0x80004005
  // with the reason when the expression is no XPath or selects no nodes but a value.
  std::vector<xmlNodePtr> Select(xmlNodePtr start, StringView expression);

 private:
  struct Free {
    void operator()(xmlXPathContextPtr context) const { xmlXPathFreeContext(context); }
    void operator()(xmlXPathCompExprPtr expression) const { xmlXPathFreeCompExpr(expression); }
  };
  using Expression = std::unique_ptr<xmlXPathCompExpr, Free>;

  xmlXPathContext& Context();
  // nullptr when it is no XPath. Valid until the next call.
  xmlXPathCompExprPtr Compile(xmlXPathContext& context, StringView text);

  xmlDocPtr document_;
  NamespaceBindings namespaces_;
  std::unique_ptr<xmlXPathContext, Free> context_;
  // A walk asks the same few questions of every node.
  std::unordered_map<String, Expression> compiled_;
};

}  // namespace kestrelon::desktop
