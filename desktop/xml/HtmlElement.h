// Elements of a page: what a script reads of texts and tables, and writes of form fields.
#pragma once

#include <libxml/tree.h>

#include <string_view>

#include "desktop/server/ServerObject.h"
#include "desktop/xml/HtmlTree.h"

namespace kestrelon::desktop {

// An attribute's value; nullptr when it is absent. `name` is in lower case.
const xmlAttr* FindHtmlAttribute(const xmlNode& element, std::string_view name);
String HtmlAttributeText(const xmlAttr& attribute);

class HtmlElement final : public ServerObject<HtmlElement> {
 public:
  HtmlElement(HtmlTreePointer tree, xmlNodePtr node) : tree_(std::move(tree)), node_(node) {}
  static const MemberTable<HtmlElement>& Members();

 private:
  Value GetId();
  Value GetTagName();
  Value GetInnerText();
  Value GetOuterHtml();
  Value GetAttribute(const MethodArguments& arguments);
  Value GetElementsByTagName(const MethodArguments& arguments);
  // Of tables and their sections, of rows, and of cells (1 or more, as a browser bounds them).
  // Error 438 for other elements.
  Value GetRows();
  Value GetCells();
  Value GetColSpan();
  Value GetRowSpan();
  // Of form fields: what an input, button or option carries, the value of the chosen option of a
  // select, the text of a textarea with CR LF between its lines. Error 438 for other elements, 5
  // for a put of a value that no option of the select has.
  Value GetValue();
  void PutValue(const Value& value);

  HtmlTreePointer tree_;
  xmlNodePtr node_;
};

// Elements of a page, counted from 0; an index out of range gives Nothing.
class HtmlCollection final : public ServerObject<HtmlCollection> {
 public:
  HtmlCollection(HtmlTreePointer tree, HtmlTree::Elements elements)
      : tree_(std::move(tree)), elements_(std::move(elements)) {}
  static const MemberTable<HtmlCollection>& Members();
  std::unique_ptr<Enumerator> Enumerate() override;

 private:
  Value GetLength() { return static_cast<int64_t>(elements_->size()); }
  Value Item(const MethodArguments& arguments);
  Object At(size_t index) const;

  HtmlTreePointer tree_;
  HtmlTree::Elements elements_;
};

// What `getElementsByTagName(name)` finds inside `top`.
Object ElementsByTagName(const HtmlTreePointer& tree, xmlNodePtr top, const Value& name);

}  // namespace kestrelon::desktop
