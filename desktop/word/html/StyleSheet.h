// The rules of a page's style elements and style attributes.
//
// Selectors are elements, classes and ids, joined (td.amount), after one another (table td) and in
// lists; a rule with any other selector is passed over, and so are rules for media and fonts.
#pragma once

#include <libxml/tree.h>

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrelon::desktop::word::html {

struct Declaration {
  std::string property;  // in lower case
  std::string value;
  bool important = false;
};
using Declarations = std::vector<Declaration>;

// An attribute's value; "" when it is absent. `name` is in lower case.
std::string_view AttributeOf(const xmlNode& element, const char* name);
bool IsText(const xmlNode& node);
// Of a node of text.
std::string_view TextOf(const xmlNode& node);
bool HasAttribute(const xmlNode& element, const char* name);
// The element's name in lower case; "" for what is no element.
std::string_view NameOf(const xmlNode& node);

class StyleSheet {
 public:
  // Error 4198 for more than 10,000 rules.
  void Add(std::string_view css);
  // Every declaration for the element, each after those that it overrides.
  std::vector<const Declaration*> DeclarationsFor(const xmlNode& element) const;

 private:
  // "td.amount"; parts that are "" match anything.
  struct Simple {
    std::string element;
    std::string id;
    std::vector<std::string> classes;
  };
  struct Rule {
    std::vector<Simple> selector;  // the element's own part first, then those around it
    int specificity;
    std::shared_ptr<const Declarations> declarations;
  };

  void AddRule(std::string_view selector, const std::shared_ptr<const Declarations>& declarations);
  static bool ParseSimple(std::string_view text, Simple& simple);
  static bool Matches(const Simple& simple, const xmlNode& element);
  static bool Matches(const Rule& rule, const xmlNode& element);
  void Collect(const std::string& key, const xmlNode& element, std::vector<size_t>& found) const;

  std::vector<Rule> rules_;
  // By what the last part of the selector asks for: "#id", ".class", else the element or "".
  std::unordered_map<std::string, std::vector<size_t>> rules_by_key_;
  mutable std::unordered_map<std::string, Declarations> style_attributes_;
};

}  // namespace kestrelon::desktop::word::html
