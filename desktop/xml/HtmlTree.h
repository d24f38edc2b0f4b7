// A page's parsed markup: owner of its nodes, with the lists of elements that scripts walk over.
// Shared by the page, its elements and its collections.
#pragma once

#include <libxml/tree.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrelon::desktop {

class HtmlTree {
 public:
  using Elements = std::shared_ptr<const std::vector<xmlNodePtr>>;

  // Takes ownership of `document`.
  explicit HtmlTree(xmlDocPtr document) : document_(document) {}
  ~HtmlTree();
  HtmlTree(const HtmlTree&) = delete;
  HtmlTree& operator=(const HtmlTree&) = delete;

  xmlDocPtr document() const { return document_; }

  // Elements inside `top` in document order, found on first use: a script that asks for the list
  // anew at each step walks the page once. `name` is in lower case, "*" for all.
  Elements ByTagName(xmlNodePtr top, const std::string& name);
  // The rows of a table or of a section of it, those of its head first and those of its foot last;
  // the cells of a row. What belongs to a table inside is not among them.
  Elements RowsOf(xmlNodePtr table);
  Elements CellsOf(xmlNodePtr row);

  // Takes out all children; elements among them live on for the objects that hold them.
  void Empty(xmlNodePtr parent);

 private:
  template <typename Find>
  Elements Remember(xmlNodePtr top, const std::string& what, const Find& find);

  xmlDocPtr document_;
  std::map<std::pair<xmlNodePtr, std::string>, Elements> lists_;
  std::vector<xmlNodePtr> detached_;  // freed with the tree
};

using HtmlTreePointer = std::shared_ptr<HtmlTree>;

// `name` is in lower case.
bool IsHtmlElement(const xmlNode& node, std::string_view name);
bool IsTableCell(const xmlNode& node);

}  // namespace kestrelon::desktop
