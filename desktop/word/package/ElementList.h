// The two kinds of XML that hold a package together, content types and relationships: a root with a
// flat list of empty elements. Read by libxml2, edited in place: every byte that an edit does not
// mean stays as it is.
//
// Refused (kCorruptDocument): what is not well-formed or not UTF-8, a DOCTYPE, nesting deeper than
// 256, another root. Nothing is fetched and no entity is expanded.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrelon::desktop::word {

constexpr int kDeepestNesting = 256;

using Attributes = std::vector<std::pair<std::string_view, std::string_view>>;

struct ListElement {
  std::string name;  // without prefix
  std::vector<std::pair<std::string, std::string>> attributes;
  size_t begin = 0;  // where its text lies
  size_t end = 0;

  // Null when it is absent.
  const std::string* Find(std::string_view attribute) const;
};

class ElementList {
 public:
  // `part` names the text in errors; `root` is the local name of the root element, `space` the
  // namespace of the root and of the elements that are listed.
  ElementList(std::string text, std::string_view part, std::string_view root,
              std::string_view space);

  const std::string& text() const { return text_; }
  const std::vector<ListElement>& elements() const { return elements_; }
  bool changed() const { return changed_; }

  void Append(std::string_view name, const Attributes& attributes);
  void Replace(size_t index, const Attributes& attributes);
  void Erase(size_t index);

 private:
  class Reader;

  std::string Markup(std::string_view name, const Attributes& attributes) const;
  void Splice(size_t begin, size_t end, std::string_view markup);
  void OpenRoot();

  std::string text_;
  std::vector<ListElement> elements_;  // in the order of the text
  std::string prefix_;                 // of the root, with its colon
  size_t root_end_ = 0;                // behind the root's end tag
  bool changed_ = false;
};

}  // namespace kestrelon::desktop::word
