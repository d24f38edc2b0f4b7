// Queries over one document.
#pragma once

#include <libxml/xpath.h>

#include <limits>
#include <memory>
#include <string>
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
  // The nodes that `expression`, read from `start`, selects, in document order. `limit` is
  // how many of the first the caller needs; it may get more. Error 0x80004005 with the reason when
  // the expression is no XPath or selects no nodes but a value.
  std::vector<xmlNodePtr> Select(xmlNodePtr start, StringView expression,
                                 size_t limit = std::numeric_limits<size_t>::max());

 private:
  struct Free {
    void operator()(xmlXPathContextPtr context) const { xmlXPathFreeContext(context); }
  };
  xmlXPathContext& Context();
  // `text` is the expression in UTF-8.
  std::vector<xmlNodePtr> Evaluate(xmlNodePtr start, StringView expression,
                                   const std::string& text);

  xmlDocPtr document_;
  NamespaceBindings namespaces_;
  std::unique_ptr<xmlXPathContext, Free> context_;
};

}  // namespace kestrelon::desktop
