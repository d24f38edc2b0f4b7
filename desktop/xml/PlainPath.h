// The queries that pages and members ask by the dozen, answered without XPath's machinery: child
// steps to named elements, each with at most one attribute test. The nodes are those that XPath
// would select.
//
//   /record/field[@name='CITY']   Data/quoterows   field
#pragma once

#include <libxml/tree.h>

#include <optional>
#include <string_view>
#include <vector>

namespace kestrelon::desktop {

class PlainPath {
 public:
  // The path that `expression`, UTF-8, stands for; nothing for any other XPath, or none at all.
  // The path refers to the text of the expression.
  static std::optional<PlainPath> Parse(std::string_view expression);

  // What the path, read from `start`, selects in document order, but for the `limit` first only.
  std::vector<xmlNodePtr> Select(xmlDocPtr document, xmlNodePtr start, size_t limit) const;

 private:
  struct Step {
    std::string_view element;
    std::string_view attribute;  // "" for no test
    std::string_view value;
  };
  static bool Matches(const Step& step, const xmlNode& node);
  void Walk(xmlNodePtr parent, size_t depth, size_t limit, std::vector<xmlNodePtr>& found) const;

  bool is_absolute_ = false;
  std::vector<Step> steps_;
};

}  // namespace kestrelon::desktop
