#include "desktop/converter/HtmlStyles.h"

#include <algorithm>

#include "automation/Text.h"
#include "desktop/converter/HtmlTags.h"

namespace kestrelon::desktop {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\f";

// Takes the text up to the end of `mark` off the front; all of it where there is none.
std::string_view TakeUpTo(std::string_view& text, std::string_view mark) {
  const size_t at = text.find(mark);
  const std::string_view taken =
      text.substr(0, at == std::string_view::npos ? at : at + mark.size());
  text.remove_prefix(taken.size());
  return taken;
}

// A rule such as "@page {…}" or "@import …;", with the rules inside it.
std::string_view TakeAtRule(std::string_view& css) {
  size_t depth = 0;
  size_t end = 0;
  for (; end < css.size(); ++end) {
    if (css[end] == '{') ++depth;
    const bool closes = css[end] == '}' && (depth == 0 || --depth == 0);
    if (closes || (css[end] == ';' && depth == 0)) break;
  }
  const std::string_view rule = css.substr(0, end + 1);
  css.remove_prefix(rule.size());
  return rule;
}

std::string WithoutComments(std::string_view css) {
  std::string plain;
  while (!css.empty()) {
    const size_t start = css.find("/*");
    plain += css.substr(0, start);
    css.remove_prefix(std::min(start, css.size()));
    TakeUpTo(css, "*/");
  }
  return plain;
}

std::string_view Trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

// "td.total" as ".total".
std::string_view ByClass(std::string_view selector) {
  const bool is_single = selector.find_first_of(kBlanks) == std::string_view::npos;
  const size_t dot = selector.find('.');
  if (!is_single || dot == std::string_view::npos) return selector;
  const String element = LowerCase(FromUtf8(selector.substr(0, dot)));
  const bool is_in_table = element == u"td" || element == u"th" || element == u"tr";
  return is_in_table ? selector.substr(dot) : selector;
}

// What stands in the rule if it holds rules for paper. Of those for other media nothing is left:
// the office suite would lose the rule that follows.
std::string_view RulesForPaper(std::string_view rule) {
  const size_t opening = rule.find('{');
  const String condition = LowerCase(FromUtf8(rule.substr(0, opening)));
  const bool is_for_paper =
      condition.starts_with(u"@media") &&
      (condition.find(u"print") != String::npos || condition.find(u"all") != String::npos);
  if (!is_for_paper) return {};
  return rule.substr(opening + 1, rule.rfind('}') - opening - 1);
}

bool HoldsRules(std::string_view at_rule) {
  const size_t opening = at_rule.find('{');
  return opening != std::string_view::npos &&
         at_rule.find('{', opening + 1) != std::string_view::npos;
}

void AppendRule(std::string_view rule, std::string& simple) {
  const size_t opening = std::min(rule.find('{'), rule.size());
  std::string_view selectors = rule.substr(0, opening);
  while (!selectors.empty()) {
    std::string_view selector = TakeUpTo(selectors, ",");
    if (selector.ends_with(',')) selector.remove_suffix(1);
    simple.append(ByClass(Trimmed(selector))).append(rule.substr(opening)).append("\n");
  }
}

std::string Simplify(std::string_view plain) {
  std::string simple;
  for (std::string_view css = Trimmed(plain); !css.empty(); css = Trimmed(css)) {
    if (css.starts_with("<!--") || css.starts_with("-->")) {
      TakeUpTo(css, "--");
      css.remove_prefix(css.starts_with('>') ? 1 : 0);
      continue;
    }
    if (css.front() != '@') {
      AppendRule(TakeUpTo(css, "}"), simple);
      continue;
    }
    const std::string_view rule = TakeAtRule(css);
    if (!HoldsRules(rule)) {
      simple += rule;
      continue;
    }
    std::string_view inner = Trimmed(RulesForPaper(rule));
    // One level is what pages have.
    for (; !inner.empty() && inner.front() != '@'; inner = Trimmed(inner)) {
      AppendRule(TakeUpTo(inner, "}"), simple);
    }
  }
  return simple;
}

}  // namespace

std::string SimplifyStyles(std::string_view html) {
  std::string page;
  for (size_t from = 0; from < html.size();) {
    const size_t tag = FindTag(html, "<style", from);
    const size_t start = std::min(html.find('>', tag), html.size());
    page += html.substr(from, start - from);
    from = FindTag(html, "</style", start);
    if (start == html.size()) break;
    page += ">" + Simplify(WithoutComments(html.substr(start + 1, from - start - 1)));
  }
  return page;
}

}  // namespace kestrelon::desktop
