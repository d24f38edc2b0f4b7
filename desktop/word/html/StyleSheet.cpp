#include "desktop/word/html/StyleSheet.h"

#include <algorithm>

#include "automation/AutomationError.h"
#include "desktop/word/html/CssValue.h"

namespace kestrelon::desktop::word::html {
namespace {

constexpr size_t kMostRules = 10'000;

std::string_view View(const xmlChar* text) {
  return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

const xmlAttr* FindAttribute(const xmlNode& element, std::string_view name) {
  const xmlAttr* attribute = element.properties;
  while (attribute != nullptr && View(attribute->name) != name) attribute = attribute->next;
  return attribute;
}

std::string WithoutComments(std::string_view css) {
  std::string plain;
  while (true) {
    const size_t begin = css.find("/*");
    plain += css.substr(0, begin);
    if (begin == std::string_view::npos) break;
    const size_t end = css.find("*/", begin + 2);
    if (end == std::string_view::npos) break;
    css.remove_prefix(end + 2);
  }
  for (const std::string_view mark : {"<!--", "-->"}) {
    for (size_t at = plain.find(mark); at != std::string::npos; at = plain.find(mark, at)) {
      plain.replace(at, mark.size(), " ");
    }
  }
  return plain;
}

// Past the block of braces that opens at `open`.
size_t EndOfBlock(std::string_view css, size_t open) {
  int depth = 0;
  for (size_t i = open; i < css.size(); ++i) {
    if (css[i] == '{') ++depth;
    if (css[i] == '}' && --depth == 0) return i + 1;
  }
  return css.size();
}

Declarations ParseDeclarations(std::string_view text) {
  constexpr std::string_view kImportant = "!important";
  Declarations declarations;
  for (const std::string_view one : SplitAt(text, ';')) {
    const size_t colon = one.find(':');
    if (colon == std::string_view::npos) continue;
    Declaration declaration = {Lower(TrimBlanks(one.substr(0, colon))),
                               std::string(TrimBlanks(one.substr(colon + 1)))};
    declaration.important = Lower(declaration.value).ends_with(kImportant);
    if (declaration.important) {
      declaration.value.resize(declaration.value.size() - kImportant.size());
    }
    declarations.push_back(std::move(declaration));
  }
  return declarations;
}

}  // namespace

std::string_view AttributeOf(const xmlNode& element, const char* name) {
  const xmlAttr* const attribute = FindAttribute(element, name);
  // An HTML attribute has one text, because entities are resolved while parsing.
  if (attribute == nullptr || attribute->children == nullptr) return {};
  return View(attribute->children->content);
}

bool HasAttribute(const xmlNode& element, const char* name) {
  return FindAttribute(element, name) != nullptr;
}

bool IsText(const xmlNode& node) {
  return node.type == XML_TEXT_NODE || node.type == XML_CDATA_SECTION_NODE;
}

std::string_view TextOf(const xmlNode& node) { return View(node.content); }

std::string_view NameOf(const xmlNode& node) {
  return node.type == XML_ELEMENT_NODE ? View(node.name) : std::string_view();
}

void StyleSheet::Add(std::string_view css) {
  const std::string plain = WithoutComments(css);
  const std::string_view text = plain;
  for (size_t at = 0; at < text.size();) {
    const size_t end = text.find_first_of("{;}", at);
    if (end == std::string_view::npos) return;
    const std::string_view selectors = TrimBlanks(text.substr(at, end - at));
    at = end + 1;
    if (text[end] != '{') continue;
    at = EndOfBlock(text, end);
    if (selectors.starts_with('@')) continue;
    const size_t close = text[at - 1] == '}' ? at - 1 : at;
    const auto declarations = std::make_shared<const Declarations>(
        ParseDeclarations(text.substr(end + 1, close - end - 1)));
    for (const std::string_view selector : SplitAt(selectors, ',')) {
      AddRule(selector, declarations);
    }
  }
}

void StyleSheet::AddRule(std::string_view selector,
                         const std::shared_ptr<const Declarations>& declarations) {
  Rule rule = {{}, 0, declarations};
  for (const std::string_view word : Words(selector)) {
    Simple simple;
    if (!ParseSimple(word, simple)) return;
    rule.specificity += (simple.id.empty() ? 0 : 10000) +
                        static_cast<int>(std::min<size_t>(simple.classes.size(), 99)) * 100 +
                        (simple.element.empty() ? 0 : 1);
    rule.selector.insert(rule.selector.begin(), std::move(simple));
  }
  if (rule.selector.empty()) return;
  if (rules_.size() == kMostRules) {
    throw AutomationError(4198,
                          u"Command failed: the HTML file has more than 10,000 style rules. "
                          u"Leave those out that its text does not need.");
  }
  const Simple& own = rule.selector.front();
  const std::string key = !own.id.empty()        ? "#" + own.id
                          : !own.classes.empty() ? "." + own.classes.front()
                                                 : own.element;
  rules_by_key_[key].push_back(rules_.size());
  rules_.push_back(std::move(rule));
}

// False for a selector of a kind that is not known here.
bool StyleSheet::ParseSimple(std::string_view text, Simple& simple) {
  if (text.find_first_of(":[]>+~()\"'") != std::string_view::npos) return false;
  const size_t end = std::min(text.find_first_of(".#"), text.size());
  simple.element = Lower(text.substr(0, end));
  if (simple.element == "*") simple.element.clear();
  text.remove_prefix(end);
  while (!text.empty()) {
    const size_t next = std::min(text.find_first_of(".#", 1), text.size());
    const std::string name(text.substr(1, next - 1));
    if (name.empty()) return false;
    text.front() == '#' ? void(simple.id = name) : simple.classes.push_back(name);
    text.remove_prefix(next);
  }
  return true;
}

bool StyleSheet::Matches(const Simple& simple, const xmlNode& element) {
  if (!simple.element.empty() && simple.element != NameOf(element)) return false;
  if (!simple.id.empty() && simple.id != AttributeOf(element, "id")) return false;
  if (simple.classes.empty()) return true;
  const std::vector<std::string_view> classes = Words(AttributeOf(element, "class"));
  return std::all_of(simple.classes.begin(), simple.classes.end(), [&](const std::string& one) {
    return std::find(classes.begin(), classes.end(), one) != classes.end();
  });
}

bool StyleSheet::Matches(const Rule& rule, const xmlNode& element) {
  if (!Matches(rule.selector.front(), element)) return false;
  const xmlNode* around = element.parent;
  for (size_t i = 1; i < rule.selector.size(); ++i, around = around->parent) {
    while (around != nullptr &&
           !(around->type == XML_ELEMENT_NODE && Matches(rule.selector[i], *around))) {
      around = around->parent;
    }
    if (around == nullptr) return false;
  }
  return true;
}

void StyleSheet::Collect(const std::string& key, const xmlNode& element,
                         std::vector<size_t>& found) const {
  const auto rules = rules_by_key_.find(key);
  if (rules == rules_by_key_.end()) return;
  for (const size_t index : rules->second) {
    if (Matches(rules_[index], element)) found.push_back(index);
  }
}

std::vector<const Declaration*> StyleSheet::DeclarationsFor(const xmlNode& element) const {
  std::vector<const Declaration*> declarations;
  if (!rules_.empty()) {
    std::vector<size_t> found;
    Collect("", element, found);
    Collect(std::string(NameOf(element)), element, found);
    for (const std::string_view name : Words(AttributeOf(element, "class"))) {
      Collect("." + std::string(name), element, found);
    }
    if (HasAttribute(element, "id")) {
      Collect("#" + std::string(AttributeOf(element, "id")), element, found);
    }
    std::sort(found.begin(), found.end(), [&](size_t a, size_t b) {
      return std::pair(rules_[a].specificity, a) < std::pair(rules_[b].specificity, b);
    });
    for (const size_t index : found) {
      for (const Declaration& one : *rules_[index].declarations) declarations.push_back(&one);
    }
  }
  const std::string style(AttributeOf(element, "style"));
  if (!style.empty()) {
    const auto [known, is_new] = style_attributes_.try_emplace(style);
    if (is_new) known->second = ParseDeclarations(style);
    for (const Declaration& one : known->second) declarations.push_back(&one);
  }
  std::stable_partition(declarations.begin(), declarations.end(),
                        [](const Declaration* one) { return !one->important; });
  return declarations;
}

}  // namespace kestrelon::desktop::word::html
