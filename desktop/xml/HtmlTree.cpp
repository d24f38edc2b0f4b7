#include "desktop/xml/HtmlTree.h"

#include "desktop/xml/LibxmlText.h"

namespace kestrelon::desktop {
namespace {

using Nodes = std::vector<xmlNodePtr>;

void CollectByTagName(const xmlNode& parent, std::string_view name, Nodes& found) {
  for (xmlNodePtr child = parent.children; child != nullptr; child = child->next) {
    if (child->type != XML_ELEMENT_NODE) continue;
    if (name == "*" || IsHtmlElement(*child, name)) found.push_back(child);
    CollectByTagName(*child, name, found);
  }
}

struct Sections {
  Nodes head;
  Nodes body;
  Nodes foot;
};

// Markup of the time puts forms and the like between a table and its rows.
void CollectRows(const xmlNode& parent, Nodes& rows, Sections& sections) {
  for (xmlNodePtr child = parent.children; child != nullptr; child = child->next) {
    if (child->type != XML_ELEMENT_NODE || IsHtmlElement(*child, "table")) continue;
    if (IsHtmlElement(*child, "tr")) {
      rows.push_back(child);
    } else if (IsHtmlElement(*child, "thead")) {
      CollectRows(*child, sections.head, sections);
    } else if (IsHtmlElement(*child, "tfoot")) {
      CollectRows(*child, sections.foot, sections);
    } else if (!IsTableCell(*child)) {
      CollectRows(*child, rows, sections);
    }
  }
}

void CollectCells(const xmlNode& parent, Nodes& cells) {
  for (xmlNodePtr child = parent.children; child != nullptr; child = child->next) {
    if (child->type != XML_ELEMENT_NODE || IsHtmlElement(*child, "table")) continue;
    if (IsTableCell(*child)) {
      cells.push_back(child);
    } else if (!IsHtmlElement(*child, "tr")) {
      CollectCells(*child, cells);
    }
  }
}

}  // namespace

HtmlTree::~HtmlTree() {
  for (const xmlNodePtr node : detached_) xmlFreeNode(node);
  xmlFreeDoc(document_);
}

template <typename Find>
HtmlTree::Elements HtmlTree::Remember(xmlNodePtr top, const std::string& what, const Find& find) {
  Elements& list = lists_[{top, what}];
  if (!list) {
    auto found = std::make_shared<Nodes>();
    find(*found);
    list = std::move(found);
  }
  return list;
}

HtmlTree::Elements HtmlTree::ByTagName(xmlNodePtr top, const std::string& name) {
  return Remember(top, name, [&](Nodes& found) { CollectByTagName(*top, name, found); });
}

HtmlTree::Elements HtmlTree::RowsOf(xmlNodePtr table) {
  return Remember(table, "its rows", [&](Nodes& found) {
    Sections sections;
    CollectRows(*table, sections.body, sections);
    for (const Nodes* rows : {&sections.head, &sections.body, &sections.foot}) {
      found.insert(found.end(), rows->begin(), rows->end());
    }
  });
}

HtmlTree::Elements HtmlTree::CellsOf(xmlNodePtr row) {
  return Remember(row, "its cells", [&](Nodes& found) { CollectCells(*row, found); });
}

void HtmlTree::Empty(xmlNodePtr parent) {
  lists_.clear();
  while (parent->children != nullptr) {
    detached_.push_back(parent->children);
    xmlUnlinkNode(parent->children);
  }
}

bool IsHtmlElement(const xmlNode& node, std::string_view name) {
  return node.type == XML_ELEMENT_NODE && View(node.name) == name;
}

bool IsTableCell(const xmlNode& node) {
  return IsHtmlElement(node, "td") || IsHtmlElement(node, "th");
}

}  // namespace kestrelon::desktop
