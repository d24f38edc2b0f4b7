#include "desktop/xml/PlainPath.h"

#include "desktop/xml/LibxmlText.h"

namespace kestrelon::desktop {
namespace {

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool IsNameCharacter(char c) {
  return IsLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

// Takes `text` apart from the left.
class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  bool AtEnd() const { return rest_.empty(); }
  bool Skip(std::string_view token) {
    if (!rest_.starts_with(token)) return false;
    rest_.remove_prefix(token.size());
    return true;
  }
  // An ASCII name without prefix; "" when there is none.
  std::string_view TakeName() {
    if (rest_.empty() || !IsLetter(rest_.front())) return {};
    size_t length = 1;
    while (length < rest_.size() && IsNameCharacter(rest_[length])) ++length;
    return Take(length);
  }
  // What stands between quotes; nothing when there is no such text, or one that XPath refuses.
  std::optional<std::string_view> TakeLiteral() {
    if (rest_.empty() || (rest_.front() != '\'' && rest_.front() != '"')) return std::nullopt;
    const size_t end = rest_.find(rest_.front(), 1);
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view literal = Take(end + 1).substr(1, end - 1);
    for (const char c : literal) {
      if (static_cast<unsigned char>(c) < 0x20) return std::nullopt;
    }
    return literal;
  }

 private:
  std::string_view Take(size_t length) {
    const std::string_view taken = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return taken;
  }

  std::string_view rest_;
};

bool HasValue(const xmlAttr& attribute, std::string_view value) {
  const xmlNode* text = attribute.children;
  if (text == nullptr) return value.empty();
  if (text->next == nullptr && text->type == XML_TEXT_NODE) return View(text->content) == value;
  const auto node = reinterpret_cast<const xmlNode*>(&attribute);
  return View(LibxmlString(xmlNodeGetContent(node)).get()) == value;
}

}  // namespace

std::optional<PlainPath> PlainPath::Parse(std::string_view expression) {
  Reader reader(expression);
  PlainPath path;
  path.is_absolute_ = reader.Skip("/");
  do {
    Step step;
    step.element = reader.TakeName();
    if (step.element.empty()) return std::nullopt;
    if (reader.Skip("[@")) {
      step.attribute = reader.TakeName();
      if (step.attribute.empty() || !reader.Skip("=")) return std::nullopt;
      const auto literal = reader.TakeLiteral();
      if (!literal || !reader.Skip("]")) return std::nullopt;
      step.value = *literal;
    }
    path.steps_.push_back(step);
  } while (reader.Skip("/"));
  if (!reader.AtEnd()) return std::nullopt;
  return path;
}

std::vector<xmlNodePtr> PlainPath::Select(xmlDocPtr document, xmlNodePtr start,
                                          size_t limit) const {
  std::vector<xmlNodePtr> found;
  Walk(is_absolute_ ? reinterpret_cast<xmlNodePtr>(document) : start, 0, limit, found);
  return found;
}

// A name without prefix is one without namespace, also where a default namespace is declared.
bool PlainPath::Matches(const Step& step, const xmlNode& node) {
  if (node.type != XML_ELEMENT_NODE || node.ns != nullptr || View(node.name) != step.element) {
    return false;
  }
  if (step.attribute.empty()) return true;
  for (const xmlAttr* attribute = node.properties; attribute; attribute = attribute->next) {
    if (attribute->ns == nullptr && View(attribute->name) == step.attribute) {
      return HasValue(*attribute, step.value);
    }
  }
  return false;
}

void PlainPath::Walk(xmlNodePtr parent, size_t depth, size_t limit,
                     std::vector<xmlNodePtr>& found) const {
  if (parent->type == XML_ATTRIBUTE_NODE) return;  // its text is no child of it to XPath
  const Step& step = steps_[depth];
  for (xmlNodePtr child = parent->children; child && found.size() < limit; child = child->next) {
    if (!Matches(step, *child)) continue;
    if (depth + 1 == steps_.size()) {
      found.push_back(child);
    } else {
      Walk(child, depth + 1, limit, found);
    }
  }
}

}  // namespace kestrelon::desktop
