#include "desktop/xml/SortInstruction.h"

#include <libxslt/templates.h>
#include <libxslt/xsltutils.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>
#include <utility>
#include <vector>

#include "automation/AutomationError.h"
#include "desktop/xml/Collation.h"
#include "desktop/xml/LibxmlText.h"

namespace kestrelon::desktop {
namespace {

// One xsl:sort: a key of each node, as bytes that compare as the keys do.
struct SortLevel {
  std::vector<std::string> keys;
  bool is_descending = false;
};

// An attribute of xsl:sort, which may be computed.
std::string AttributeOf(xsltTransformContextPtr context, xmlNodePtr sort, const char* name) {
  const LibxmlString value(
      xsltEvalAttrValueTemplate(context, sort, reinterpret_cast<const xmlChar*>(name), nullptr));
  return std::string(View(value.get()));
}

// What is no number goes first.
std::string NumberKey(double number) {
  if (std::isnan(number)) return {};
  constexpr uint64_t kSign = uint64_t{1} << 63;
  const auto bits = std::bit_cast<uint64_t>(number + 0.0);  // one zero, not two
  const uint64_t ordered = (bits & kSign) != 0 ? ~bits : bits | kSign;
  std::string key;
  for (int shift = 56; shift >= 0; shift -= 8) key += static_cast<char>(ordered >> shift & 0xFF);
  return key;
}

// The sort keys of the current nodes as XPath values, which the caller frees.
std::vector<xmlXPathObjectPtr> EvaluateKeys(xsltTransformContextPtr context, xmlNodePtr sort) {
  // With a locale, libxslt would turn the texts into keys of its own.
  const auto instruction = static_cast<xsltStylePreCompPtr>(sort->psvi);
  const xsltLocale locale = std::exchange(instruction->locale, nullptr);
  xmlXPathObjectPtr* values = xsltComputeSortResult(context, sort);
  instruction->locale = locale;
  if (values == nullptr) return {};
  std::vector<xmlXPathObjectPtr> keys(values, values + context->nodeList->nodeNr);
  xmlFree(values);
  return keys;
}

SortLevel ReadLevel(xsltTransformContextPtr context, xmlNodePtr sort) {
  SortLevel level;
  level.is_descending = AttributeOf(context, sort, "order") == "descending";
  const bool is_number = AttributeOf(context, sort, "data-type") == "number";
  const bool upper_first = AttributeOf(context, sort, "case-order") == "upper-first";
  const std::string language = AttributeOf(context, sort, "lang");
  const Collation collation(
      language.empty() ? UserCollationLanguage() : language,
      upper_first ? Collation::FirstCase::kUpper : Collation::FirstCase::kLower);
  for (const xmlXPathObjectPtr value : EvaluateKeys(context, sort)) {
    if (value == nullptr) {
      level.keys.emplace_back();
    } else if (is_number) {
      level.keys.push_back(NumberKey(xmlXPathCastToNumber(value)));
    } else {
      level.keys.push_back(collation.KeyOf(Text(LibxmlString(xmlXPathCastToString(value)).get())));
    }
    xmlXPathFreeObject(value);
  }
  level.keys.resize(static_cast<size_t>(context->nodeList->nodeNr));
  return level;
}

void SortNodes(xsltTransformContextPtr context, xmlNodePtr* sorts, int sort_count) {
  const xmlNodeSet* nodes = context->nodeList;
  if (nodes == nullptr || nodes->nodeNr < 2) return;
  std::vector<SortLevel> levels;
  for (int i = 0; i < sort_count; ++i) levels.push_back(ReadLevel(context, sorts[i]));
  std::vector<size_t> order(static_cast<size_t>(nodes->nodeNr));
  std::iota(order.begin(), order.end(), size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
    for (const SortLevel& level : levels) {
      const int compared = level.keys[a].compare(level.keys[b]);
      if (compared != 0) return level.is_descending ? compared > 0 : compared < 0;
    }
    return false;
  });
  const std::vector<xmlNodePtr> unsorted(nodes->nodeTab, nodes->nodeTab + nodes->nodeNr);
  for (size_t i = 0; i < order.size(); ++i) nodes->nodeTab[i] = unsorted[order[i]];
}

// Called back by libxslt, through which no exception may pass.
void SortOrFail(xsltTransformContextPtr context, xmlNodePtr* sorts, int sort_count) noexcept {
  try {
    SortNodes(context, sorts, sort_count);
  } catch (const AutomationError& error) {
    xsltTransformError(context, nullptr, sorts[0], "%s\n", error.what());
  }
}

}  // namespace

void SortByLanguage(xsltTransformContextPtr context) { xsltSetCtxtSortFunc(context, SortOrFail); }

}  // namespace kestrelon::desktop
