// Elements of a page: what a script reads and writes of form fields.
#pragma once

#include <libxml/tree.h>

#include <memory>
#include <string_view>

#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

// Shared by the page and its elements.
using HtmlTree = std::shared_ptr<xmlDoc>;

// An attribute's value; nullptr when it is absent. `name` is in lower case.
const xmlAttr* FindHtmlAttribute(const xmlNode& element, std::string_view name);
String HtmlAttributeText(const xmlAttr& attribute);

class HtmlElement final : public ServerObject<HtmlElement> {
 public:
  HtmlElement(HtmlTree tree, xmlNodePtr node) : tree_(std::move(tree)), node_(node) {}
  static const MemberTable<HtmlElement>& Members();

 private:
  Value GetId();
  Value GetTagName();
  Value GetInnerText();
  Value GetOuterHtml();
  Value GetAttribute(const MethodArguments& arguments);
  // Of form fields: what an input, button or option carries, the value of the chosen option of a
  // select, the text of a textarea with CR LF between its lines. Error 438 for other elements, 5
  // for a put of a value that no option of the select has.
  Value GetValue();
  void PutValue(const Value& value);

  HtmlTree tree_;
  xmlNodePtr node_;
};

}  // namespace kestrelon::desktop
